#pragma once

#include <QByteArray>
#include <QMap>
#include <QString>

/// Which characters the glyphs of a font in a PDF stand for, by the glyphs' numbers in that font; what searching and
/// copying find.
namespace GlyphText {

using Texts = QMap<int, QString>;

/// The box that stands for what a font has no glyph for.
inline constexpr int missingGlyph = 0;

/// The texts in a map that Qt has written (a CMap called ToUnicode).
[[nodiscard]] Texts read(const QByteArray& map);

/// Such a map, complete.
[[nodiscard]] QByteArray written(const Texts& texts);

/// What a person types for `text`: the letters of a ligature, an Arabic letter whatever its form within the word, a
/// space for a tab and a hyphen for a soft one, whose glyphs are the same.
[[nodiscard]] QString typed(const QString& text);

} // namespace GlyphText
