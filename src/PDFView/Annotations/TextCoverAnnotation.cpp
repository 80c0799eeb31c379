#include "TextCoverAnnotation.h"

TextCoverAnnotation::TextCoverAnnotation(const QRectF& bounds) : PDFAnnotation(bounds, PDFAnnotationSubtype::square) {
    m_values.defaultLineWidth = 0; // nor has a reader that makes its own picture of it anything to show
}

void TextCoverAnnotation::draw(PDFDisplayBox /*box*/, QPainter& /*painter*/) const {}

std::shared_ptr<PDFAnnotation> TextCoverAnnotation::copy() const {
    return copied(std::make_shared<TextCoverAnnotation>(bounds()));
}
