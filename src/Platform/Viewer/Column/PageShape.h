#pragma once

#include "PDFPageGeometry.h"

#include <QRectF>
#include <QSizeF>
#include <QTransform>

/// What layout and drawing need to know of a page: the box that is shown, and how it is turned.
struct PageShape {
    QRectF box{0, 0, 612, 792}; ///< page coordinates
    int rotation = 0;           ///< 0, 90, 180 or 270, clockwise
    double userUnit = 1.0;

    [[nodiscard]] static PageShape fromGeometry(const PDFPageGeometry& geometry, PDFDisplayBox box);

    /// The size as shown, in points.
    [[nodiscard]] QSizeF displaySize() const;
    /// Page coordinates to the page as shown at `pixels` for the whole page: origin upper left, y down.
    [[nodiscard]] QTransform pageToPixels(QSizeF pixels) const;

    bool operator==(const PageShape&) const = default;
};
