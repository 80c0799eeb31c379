#pragma once

#include "PageShadow.h"
#include "TilePlan.h"

#include <QColor>
#include <QFont>
#include <QRectF>

#include <vector>

class PageTiles;
class QPainter;

/// Paints pages into the view. The painter is set to device pixels of the view throughout.
class PagePainter {
public:
    struct Style {
        double devicePixelRatio = 1;
        bool shadows = true;
        QColor selection; ///< opaque; painted so that the text shows through
        QFont font;       ///< for a sentence on a page that can't be shown
    };

    /// The shadow of the sheet, its picture with all annotations, and the selected text.
    /// `view` is the whole view, `exposed` the part of it to paint, `selected` rectangles in page coordinates.
    void paint(QPainter& painter, const PlacedPage& page, const std::vector<QRectF>& selected, PageTiles& tiles,
               const QRectF& view, const QRectF& exposed, const Style& style);

private:
    PageShadow m_shadow;
};
