#pragma once

#include <QImage>

#include <functional>

class PDFPage;
class QPainter;

/// Turns a page into a bitmap. Main thread only.
namespace PDFPageRasterizer {

/// The most pixels that a bitmap may have (512 MB of memory); a page that needs more can't be rendered.
inline constexpr qint64 maximumPixelCount = qint64(128) * 1024 * 1024;

/// Draws the page with its annotations on opaque white, `scale` pixels for one unit of page coordinates, not turned by
/// its rotation. The bitmap has the media box's size times `scale`, fractions of a pixel cut off. Then `overlay`, which
/// may be empty, draws over it: in page coordinates, y up.
///
/// Null when the media box is empty, when a side would be below one pixel, or when the bitmap would be larger than
/// `maximumPixelCount` or than the memory holds.
[[nodiscard]] QImage render(const PDFPage& page, double scale, const std::function<void(QPainter&)>& overlay = {});

} // namespace PDFPageRasterizer
