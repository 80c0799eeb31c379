#include "PageTextPainting.h"

#include <QPainter>

namespace {

void drawText(QPainter& painter, const QString& text, const QRectF& box, QFont font, const QColor& color, int flags) {
    if (text.isEmpty() || !box.isValid())
        return;
    const double size = font.pointSizeF() > 0 ? font.pointSizeF() : font.pixelSize();
    font.setPointSizeF(size * 72.0 / painter.device()->logicalDpiY());
    // Fitted to the pixels of one device, letters would have other widths than on the next.
    font.setHintingPreference(QFont::PreferNoHinting);
    painter.save();
    painter.setRenderHint(QPainter::TextAntialiasing);
    painter.translate(box.left(), box.bottom());
    painter.scale(1, -1);
    const QRectF upright(QPointF(), box.size());
    painter.setClipRect(upright, Qt::IntersectClip);
    painter.setFont(font);
    painter.setPen(color);
    painter.drawText(upright, flags, text);
    painter.restore();
}

} // namespace

void PageTextPainting::drawWrapped(QPainter& painter, const QString& text, const QRectF& box, const QFont& font,
                                   const QColor& color) {
    drawText(painter, text, box, font, color, int(Qt::AlignLeft | Qt::AlignTop) | Qt::TextWordWrap);
}

void PageTextPainting::drawLine(QPainter& painter, const QString& text, const QRectF& box, const QFont& font,
                                const QColor& color) {
    drawText(painter, text, box, font, color, int(Qt::AlignLeft | Qt::AlignVCenter) | Qt::TextSingleLine);
}
