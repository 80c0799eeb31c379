#include "LineAnnotation.h"

LineAnnotation::LineAnnotation(const QRectF& bounds) : PDFAnnotation(bounds, PDFAnnotationSubtype::line) {
    m_values.defaultLineWidth = 2;
}

std::shared_ptr<PDFAnnotation> LineAnnotation::copy() const {
    return copied(std::make_shared<LineAnnotation>(bounds()));
}
