#pragma once

#include <QImage>
#include <QRectF>
#include <QSize>

#include <functional>

class PDFPage;
class QPainter;

/// Turns a page into a bitmap. Main thread, except where told.
namespace PDFPageRasterizer {

/// The most pixels that a bitmap may have (512 MB of memory); a page that needs more can't be rendered.
inline constexpr qint64 maximumPixelCount = qint64(128) * 1024 * 1024;

/// The size of the bitmap for a page: that of its media box times `scale`, fractions of a pixel cut off. Empty when
/// there can't be one: for a box without a size, when a side would be below one pixel, or when the bitmap would be
/// larger than `maximumPixelCount`. Any thread.
[[nodiscard]] QSize pixelSize(const QRectF& mediaBox, double scale);

/// Draws the page with its annotations on opaque white, `scale` pixels for one unit of page coordinates, not turned by
/// its rotation, in a bitmap of `pixelSize`. Then `overlay`, which may be empty, draws over it: in page coordinates, y
/// up. Null when there can't be such a bitmap, or when the memory doesn't hold it.
[[nodiscard]] QImage render(const PDFPage& page, double scale, const std::function<void(QPainter&)>& overlay = {});

} // namespace PDFPageRasterizer
