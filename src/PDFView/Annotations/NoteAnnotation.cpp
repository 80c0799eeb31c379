#include "NoteAnnotation.h"

#include "AnnotationFont.h"
#include "PageTextPainting.h"

#include <QPainter>

namespace {

constexpr QColor shadowColor{43, 39, 30, 41}; // 16 percent opaque
constexpr double shadowOffset = 3;            // points to the right and down, as all lengths here
constexpr double cornerRadius = 4;
constexpr double outlineWidth = 1.2;
constexpr double tabHeight = 7;
constexpr double tabOpacity = 0.85;
constexpr double textSize = 13;

QPainterPath rounded(const QRectF& rect) {
    QPainterPath path;
    path.addRoundedRect(rect, cornerRadius, cornerRadius);
    return path;
}

/// The strip along the upper edge of the paper, with the paper's upper corners.
QPainterPath tab(const QRectF& paper) {
    const QRectF strip(paper.left(), paper.bottom() - tabHeight, paper.width(), tabHeight);
    const QSizeF circle(2 * cornerRadius, 2 * cornerRadius);
    const double low = strip.bottom() - circle.height();
    QPainterPath path(strip.topLeft());
    // Angles are counted clockwise here, since y goes up.
    path.arcTo(QRectF(QPointF(strip.left(), low), circle), 180, 90);
    path.arcTo(QRectF(QPointF(strip.right() - circle.width(), low), circle), 270, 90);
    path.lineTo(strip.topRight());
    path.closeSubpath();
    return path;
}

} // namespace

NoteAnnotation::NoteAnnotation(const QRectF& bounds) : PDFAnnotation(bounds, PDFAnnotationSubtype::text) {}

QRectF NoteAnnotation::uprightPaper() const {
    return uprightBounds().adjusted(0, shadowOffset, -shadowOffset, 0);
}

QRectF NoteAnnotation::paperRect() const {
    return uprightToPage().mapRect(uprightPaper());
}

void NoteAnnotation::draw(PDFDisplayBox /*box*/, QPainter& painter) const {
    const QRectF paper = uprightPaper();
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.fillPath(rounded(paper.translated(shadowOffset, -shadowOffset)), shadowColor);
    painter.fillPath(rounded(paper), paperCream);
    painter.strokePath(rounded(paper), QPen(ink, outlineWidth, Qt::SolidLine, Qt::FlatCap, Qt::MiterJoin));
    if (auto tabColor = color()) {
        tabColor->setAlphaF(float(tabOpacity));
        painter.fillPath(tab(paper), *tabColor);
    }
    painter.restore();
    QRectF words = paper.adjusted(10, 6, -10, -6).translated(0, -tabHeight / 2);
    words.setHeight(words.height() - tabHeight); // from the top
    PageTextPainting::drawWrapped(painter, contents(), words,
                                  platformFont(AnnotationFont::marker, textSize, QFont::Medium), ink);
}

std::shared_ptr<PDFAnnotation> NoteAnnotation::copy() const {
    return copied(std::make_shared<NoteAnnotation>(bounds()));
}
