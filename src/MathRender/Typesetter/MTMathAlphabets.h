#pragma once

#include "MTFontStyle.h"

#include <QString>

class MTMathAtom;

/// The mathematical alphabets of Unicode: how letters and digits are styled in a formula. A character that a style has
/// no form for stays as it is, or, in the styles that only cover a part, gets its default form.
namespace MTMathAlphabets {

/// `string` with each of its characters styled. `roman` leaves all as they are. Throws as `getDefaultStyle`.
[[nodiscard]] QString changeFont(const QString& string, MTFontStyle fontStyle);

/// The nucleus of `atom` in the characters that it is set in: styled for a variable or number, else as it is. Throws as
/// `getDefaultStyle`.
[[nodiscard]] QString styledNucleus(const MTMathAtom& atom);

[[nodiscard]] char32_t getItalicized(char32_t character);
[[nodiscard]] char32_t getBold(char32_t character);
[[nodiscard]] char32_t getBoldItalic(char32_t character);
[[nodiscard]] char32_t getCaligraphic(char32_t character);
[[nodiscard]] char32_t getTypewriter(char32_t character);
[[nodiscard]] char32_t getSansSerif(char32_t character);
[[nodiscard]] char32_t getFraktur(char32_t character);
[[nodiscard]] char32_t getBlackboard(char32_t character);
/// As TeX sets variables and numbers: letters italic, but capital Greek and digits upright. Throws MTException for
/// anything else; formulas that were parsed have no such variables.
[[nodiscard]] char32_t getDefaultStyle(char32_t character);

} // namespace MTMathAlphabets
