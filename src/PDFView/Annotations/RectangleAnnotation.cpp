#include "RectangleAnnotation.h"

RectangleAnnotation::RectangleAnnotation(const QRectF& bounds) : PDFAnnotation(bounds, PDFAnnotationSubtype::square) {
    m_values.defaultLineWidth = 2;
}

std::shared_ptr<PDFAnnotation> RectangleAnnotation::copy() const {
    return copied(std::make_shared<RectangleAnnotation>(bounds()));
}
