#pragma once

#include <QColor>

class PDFPage;
class QRectF;

/// The paper under text, and text that can be read on it.
namespace PageBackground {

/// The colour that takes the most of `rect` (page coordinates) on the page as it is shown, annotations included, to 4
/// bits a channel. Letters don't tint it: they are outvoted by what is around them. White when `rect` lies off the page
/// or the page can't be drawn. Draws the whole page, so it takes as long as that.
[[nodiscard]] QColor sampleBackgroundColor(const QRectF& rect, const PDFPage& page);

/// White on a dark colour, black on a light one.
[[nodiscard]] QColor contrastingTextColor(const QColor& background);

} // namespace PageBackground
