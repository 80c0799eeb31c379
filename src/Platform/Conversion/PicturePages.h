#pragma once

#include <QString>

/// A picture as a PDF of one page.
namespace PicturePages {

/// Of a page, in points.
inline constexpr int longestSide = 3000;

/// The page is of the size on paper that a scan's file tells; where it tells none, or no more than 100 pixels for an
/// inch, as of a screen, a point for each pixel. It is smaller where a side would be longer than
/// `longestSide`; what shows through is white. A JPEG's bytes are stored as they are, other pictures without loss; of
/// several in one file the first, or the one that its file gives as the chief. What the bytes are counts, not the name.
/// False, with nothing left, when it can't be read or written, or when it is so large that showing it would need more
/// memory than a window should take. Needs a QGuiApplication; any thread.
[[nodiscard]] bool write(const QString& source, const QString& destination);

} // namespace PicturePages
