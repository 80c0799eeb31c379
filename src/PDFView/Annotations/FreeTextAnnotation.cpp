#include "FreeTextAnnotation.h"

#include "AnnotationFont.h"
#include "PageTextPainting.h"

// Points between the bounds and the text, on each side.
static constexpr double marginX = 6;
static constexpr double marginY = 4;

FreeTextAnnotation::FreeTextAnnotation(const QRectF& bounds)
    : PDFAnnotation(bounds, PDFAnnotationSubtype::freeText), m_systemFont(platformFont(AnnotationFont::system, 16)) {
    m_values.defaultLineWidth = 0; // other readers would draw a frame where the file says nothing
}

void FreeTextAnnotation::draw(PDFDisplayBox /*box*/, QPainter& painter) const {
    PageTextPainting::drawWrapped(painter, contents(), uprightBounds().adjusted(marginX, marginY, -marginX, -marginY),
                                  font().value_or(m_systemFont), fontColor().value_or(QColor(Qt::black)));
}

QSizeF FreeTextAnnotation::boxFor(const QString& text, const QFont& font, double width) {
    return PageTextPainting::wrappedSize(text, font, width - 2 * marginX) + QSizeF(2 * marginX, 2 * marginY);
}

std::shared_ptr<PDFAnnotation> FreeTextAnnotation::copy() const {
    return copied(std::make_shared<FreeTextAnnotation>(bounds()));
}
