#pragma once

#include <QByteArray>
#include <QImage>

/// The pictures of HTML files.
namespace HtmlPicture {

/// Decodes the bytes of a picture in one of the formats of the web; null when they are none. A drawing (SVG) is drawn
/// with several pixels for one and without what it refers to outside of itself; a large picture has fewer pixels than
/// its file. The device pixel ratio tells both. One that would take more memory than a large photograph is refused.
[[nodiscard]] QImage read(const QByteArray& bytes);

/// Whether a picture that was read has been compressed with losses already, so that a little more doesn't show.
[[nodiscard]] bool isPhotograph(const QImage& picture);

} // namespace HtmlPicture
