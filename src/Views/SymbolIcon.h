#pragma once

#include <QIcon>
#include <QPixmap>

/// The program's own pictures: one SVG file a symbol in `icons`, drawn in one colour.
/// Main thread only, with the application object alive.
namespace SymbolIcon {

/// A symbol in the text colour of the application's palette at the time of drawing, so it follows a change between
/// light and dark, and greyed where it is disabled. The file is read when it is first drawn. An unknown name is a
/// programming error.
[[nodiscard]] QIcon icon(const QString& name);

/// A symbol `side` device-independent pixels wide and high, in a fixed colour.
[[nodiscard]] QPixmap pixmap(const QString& name, int side, const QColor& color, qreal devicePixelRatio);

} // namespace SymbolIcon
