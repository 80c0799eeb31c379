#include "FreeTextAnnotation.h"

#include "AnnotationFont.h"
#include "PageTextPainting.h"

FreeTextAnnotation::FreeTextAnnotation(const QRectF& bounds)
    : PDFAnnotation(bounds, PDFAnnotationSubtype::freeText), m_systemFont(platformFont(AnnotationFont::system, 16)) {
    m_values.defaultLineWidth = 0; // other readers would draw a frame where the file says nothing
}

void FreeTextAnnotation::draw(PDFDisplayBox /*box*/, QPainter& painter) const {
    PageTextPainting::drawWrapped(painter, contents(), bounds().adjusted(6, 4, -6, -4), font().value_or(m_systemFont),
                                  fontColor().value_or(QColor(Qt::black)));
}

std::shared_ptr<PDFAnnotation> FreeTextAnnotation::copy() const {
    return copied(std::make_shared<FreeTextAnnotation>(bounds()));
}
