#include "PageTextPainting.h"

#include <QPainter>
#include <QTextOption>

namespace {

void setFont(QPainter& painter, QFont font) {
    const double size = font.pointSizeF() > 0 ? font.pointSizeF() : font.pixelSize();
    font.setPointSizeF(size * 72.0 / painter.device()->logicalDpiY());
    // Fitted to the pixels of one device, letters would have other widths than on the next.
    font.setHintingPreference(QFont::PreferNoHinting);
    painter.setRenderHint(QPainter::TextAntialiasing);
    painter.setFont(font);
}

/// `draw` is given the box as the painter has it then: its upper left corner is the origin, and y goes down.
template <typename Draw>
void drawText(QPainter& painter, const QString& text, const QRectF& box, const QFont& font, const QColor& color,
              Draw draw) {
    if (text.isEmpty() || !box.isValid())
        return;
    painter.save();
    painter.translate(box.left(), box.bottom());
    painter.scale(1, -1);
    const QRectF upright(QPointF(), box.size());
    painter.setClipRect(upright, Qt::IntersectClip);
    setFont(painter, font);
    painter.setPen(color);
    draw(upright);
    painter.restore();
}

} // namespace

void PageTextPainting::drawWrapped(QPainter& painter, const QString& text, const QRectF& box, const QFont& font,
                                   const QColor& color) {
    QTextOption option(Qt::AlignLeft | Qt::AlignTop);
    option.setWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
    drawText(painter, text, box, font, color, [&](const QRectF& upright) { painter.drawText(upright, text, option); });
}

void PageTextPainting::drawLine(QPainter& painter, const QString& text, const QRectF& box, const QFont& font,
                                const QColor& color) {
    constexpr int flags = int(Qt::AlignLeft | Qt::AlignVCenter) | Qt::TextSingleLine;
    drawText(painter, text, box, font, color, [&](const QRectF& upright) { painter.drawText(upright, flags, text); });
}

void PageTextPainting::drawAt(QPainter& painter, const QString& text, QPointF at, const QFont& font,
                              const QColor& color) {
    painter.save();
    painter.translate(at);
    painter.scale(1, -1);
    setFont(painter, font);
    painter.setPen(color);
    painter.drawText(QPointF(), text);
    painter.restore();
}
