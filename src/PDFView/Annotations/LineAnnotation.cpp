#include "LineAnnotation.h"

#include "AnnotationDrawing.h"

LineAnnotation::LineAnnotation(const QRectF& bounds) : PDFAnnotation(bounds, PDFAnnotationSubtype::line) {
    m_values.defaultLineWidth = 2;
}

void LineAnnotation::fitBounds() {
    const std::optional<AnnotationDrawing> drawing = AnnotationDrawing::of(values());
    const QRectF extent = drawing ? drawing->extent() : QRectF();
    setBounds(extent.isNull() ? QRectF(startPoint(), endPoint()) : extent); // of a colour that isn't seen
}

std::shared_ptr<PDFAnnotation> LineAnnotation::copy() const {
    return copied(std::make_shared<LineAnnotation>(bounds()));
}
