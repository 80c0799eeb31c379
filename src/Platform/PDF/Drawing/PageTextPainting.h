#pragma once

class QColor;
class QFont;
class QPainter;
class QPointF;
class QRectF;
class QSizeF;
class QString;

/// Text on a page, through a painter set to page coordinates (y up). A point of the font is one unit of the page,
/// whatever the device's resolution, and lines break at the same places on every device: what is recorded for a file
/// looks as it did on the screen. What doesn't fit into `box` is cut off. The painter's state is left as it was.
namespace PageTextPainting {

/// From the top of the box, broken into lines at words, and within one that is wider than the box. Each paragraph
/// stands at the side where its script begins: on the right for Arabic and Hebrew.
void drawWrapped(QPainter& painter, const QString& text, const QRectF& box, const QFont& font, const QColor& color);

/// The least box in which `drawWrapped` shows all of the text with lines no longer than `width`, or as the text breaks
/// them itself where `width` is infinite. Empty for no text. In the units of the page; main thread only.
[[nodiscard]] QSizeF wrappedSize(const QString& text, const QFont& font, double width);

/// One line from the left edge of the box, halfway up.
void drawLine(QPainter& painter, const QString& text, const QRectF& box, const QFont& font, const QColor& color);

/// From where its baseline starts, as it is.
void drawAt(QPainter& painter, const QString& text, QPointF at, const QFont& font, const QColor& color);

} // namespace PageTextPainting
