#include "PagePainter.h"

#include "PageTiles.h"

#include <QCoreApplication>
#include <QPainter>
#include <QPainterPath>

static constexpr int selectionAlpha = 88;

static void paintSelection(QPainter& painter, const PlacedPage& page, const std::vector<QRectF>& selected,
                           QColor color) {
    if (selected.empty())
        return;
    // One path, so that lines whose boxes overlap aren't darker where they do.
    QPainterPath path;
    path.setFillRule(Qt::WindingFill);
    for (const QRectF& rect : selected)
        path.addRect(page.pageToPixels.mapRect(rect).translated(page.rect.topLeft()).toAlignedRect() &
                     page.rect.toAlignedRect());
    color.setAlpha(selectionAlpha);
    painter.fillPath(path, color);
}

void PagePainter::paint(QPainter& painter, const PlacedPage& page, const std::vector<QRectF>& selected,
                        PageTiles& tiles, const QRectF& view, const QRectF& exposed, const Style& style) {
    if (style.shadows)
        m_shadow.paint(painter, page.rect, view, style.devicePixelRatio);
    const QRectF area = page.rect & exposed;
    if (area.isEmpty())
        return;
    tiles.paint(painter, page, area);
    if (!page.page || tiles.isUnreadable(page.look.content)) {
        painter.save();
        QFont font = style.font;
        font.setPixelSize(static_cast<int>(13 * style.devicePixelRatio));
        painter.setFont(font);
        painter.setPen(Qt::darkGray);
        painter.drawText(page.rect & view, Qt::AlignCenter | Qt::TextWordWrap,
                         QCoreApplication::translate("PDFView", "This page can’t be shown."));
        painter.restore();
    }
    paintSelection(painter, page, selected, style.selection);
}
