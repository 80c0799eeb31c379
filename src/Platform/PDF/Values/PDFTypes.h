#pragma once

#include <QPointF>
#include <QRectF>

#include <algorithm>

/// The five boxes of a page (ISO 32000-1, 14.11.2). A box that the file doesn't give is the crop box, and a missing
/// crop box is the media box. Every box is clipped to the media box.
enum class PDFDisplayBox { mediaBox, cropBox, bleedBox, trimBox, artBox };

/// The decoration at an end of a line annotation; the values are those that settings and pickers store.
enum class PDFLineStyle { none = 0, square = 1, circle = 2, diamond = 3, openArrow = 4, closedArrow = 5 };

/// How a border is drawn (the S key of a border style dictionary).
enum class PDFBorderStyle { solid, dashed, beveled, inset, underline };

/// A quadrilateral in page coordinates (points, origin lower left, y up). For a glyph the names are those of
/// upright text: a rotated glyph keeps its own corners.
struct PDFQuad {
    QPointF upperLeft;
    QPointF upperRight;
    QPointF lowerLeft;
    QPointF lowerRight;

    [[nodiscard]] static PDFQuad fromRect(const QRectF& rect) {
        return {{rect.left(), rect.bottom()}, {rect.right(), rect.bottom()}, rect.topLeft(), rect.topRight()};
    }

    /// The smallest upright rectangle around the four corners.
    [[nodiscard]] QRectF boundingRect() const {
        const auto [left, right] = std::minmax({upperLeft.x(), upperRight.x(), lowerLeft.x(), lowerRight.x()});
        const auto [low, high] = std::minmax({upperLeft.y(), upperRight.y(), lowerLeft.y(), lowerRight.y()});
        return {left, low, right - left, high - low};
    }

    bool operator==(const PDFQuad&) const = default;
};

// Rectangles in page coordinates are QRectF whose top() is the lower edge (the smaller y) and whose bottom() is the
// upper edge (the larger y), since y grows upwards on a page.
