#pragma once

#include "PDFTypes.h"

#include <QSizeF>
#include <QTransform>

#include <array>

/// The boxes of a page and how it is turned: a plain value, cheap to copy, for layout on any thread.
struct PDFPageGeometry {
    /// By `PDFDisplayBox`, in page coordinates, normalized, never empty, each inside the media box.
    std::array<QRectF, 5> boxes;
    int rotation = 0; ///< 0, 90, 180 or 270, clockwise
    double userUnit = 1.0;

    [[nodiscard]] QRectF box(PDFDisplayBox which) const { return boxes[static_cast<std::size_t>(which)]; }
    /// The size as shown, in points: turned, in user units.
    [[nodiscard]] QSizeF displaySize(PDFDisplayBox which) const;
    /// Page coordinates to the page as shown: origin upper left of the box, y down, points.
    [[nodiscard]] QTransform displayTransform(PDFDisplayBox which) const;

    bool operator==(const PDFPageGeometry&) const = default;
};
