#pragma once

class QColor;
class QFont;
class QString;

/// The default style string of free text (the DS key; ISO 32000-1, 12.7.3.4): declarations in the syntax of CSS2. It
/// can name any font, where a default appearance must be content with the standard ones.
namespace DefaultStyle {

[[nodiscard]] QString of(const QFont& font, const QColor& color);

/// Gives the font the family, weight and slope that the style names; what it doesn't name stays, the size in any case.
void apply(const QString& style, QFont& font);

} // namespace DefaultStyle
