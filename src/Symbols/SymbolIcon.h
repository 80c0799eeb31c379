#pragma once

#include <QIcon>
#include <QPixmap>

/// The program's own pictures: one SVG file a symbol in `icons`, drawn in one colour.
/// Main thread only, with the application object alive.
namespace SymbolIcon {

/// How thick the lines are.
enum class Weight { regular, semibold };

/// The side of the square that a symbol is drawn in, and of the part of it that its lines fill: the rest is margin.
inline constexpr int gridSide = 24;
inline constexpr int gridContentSide = 18;

[[nodiscard]] bool exists(const QString& name);

/// A symbol in the text colour of the application's palette at the time of drawing, so it follows a change between
/// light and dark, and greyed where it is disabled. The file is read when it is first drawn. An unknown name is a
/// programming error.
[[nodiscard]] QIcon icon(const QString& name);

/// A symbol `side` device-independent pixels wide and high, in a fixed colour. An unknown name is a programming error.
[[nodiscard]] QPixmap pixmap(const QString& name, int side, const QColor& color, qreal devicePixelRatio,
                             Weight weight = Weight::regular);

} // namespace SymbolIcon
