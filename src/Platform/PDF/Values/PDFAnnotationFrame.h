#pragma once

#include <QRectF>
#include <QTransform>

class QString;

/// How the look of an annotation stands on its page. Words, notes and pictures are drawn upright and in points as the
/// page is seen, while their bounds are in page coordinates, which neither the page's rotation nor its user unit
/// changes. Upright coordinates have y up, and the centre of the bounds is the same point in both.
struct PDFAnnotationFrame {
    int turn = 0;          ///< 0, 90, 180 or 270 degrees anticlockwise against the page
    double userUnit = 1.0; ///< points in one unit of page coordinates

    /// The bounds, given in page coordinates, in upright ones.
    [[nodiscard]] QRectF upright(const QRectF& bounds) const;
    /// From upright coordinates to those of the page.
    [[nodiscard]] QTransform toPage(const QRectF& bounds) const;

    /// Whether annotations of that subtype are drawn so. The others are made of points on the page, or turned by keys
    /// of their own.
    [[nodiscard]] static bool suits(const QString& subtype);

    bool operator==(const PDFAnnotationFrame&) const = default;
};
