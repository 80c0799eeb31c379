#pragma once

#include "PDFPageGeometry.h"

#include <QByteArray>
#include <QRectF>
#include <QString>

class GlyphlessFont;

/// Text that lies over a picture of itself: found, selected and copied, but not seen.
namespace InvisibleText {

/// The font size for one unit of a line's height.
inline constexpr double sizeOfHeight = 0.85;

/// One line as a text object of a content stream, with "/F0" for the font. `box` is where it stands on the page as
/// shown, in fractions of the media box: origin lower left, y up. The line begins at the box's left edge, its baseline
/// is the lower one, and it is neither stretched nor squeezed to the box's width. Empty without text or height.
[[nodiscard]] QByteArray line(const QString& text, const QRectF& box, const PDFPageGeometry& page, GlyphlessFont& font);

} // namespace InvisibleText
