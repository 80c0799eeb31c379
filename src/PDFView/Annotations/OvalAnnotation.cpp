#include "OvalAnnotation.h"

OvalAnnotation::OvalAnnotation(const QRectF& bounds) : PDFAnnotation(bounds, PDFAnnotationSubtype::circle) {
    m_values.defaultLineWidth = 2;
}

std::shared_ptr<PDFAnnotation> OvalAnnotation::copy() const {
    return copied(std::make_shared<OvalAnnotation>(bounds()));
}
