#pragma once

#include "FormulaWriter.h"

#include <optional>

/// The signs of formulas: the engine's own, and all others that the font of replies has a glyph for, which are added to
/// the engine's vocabulary when they are first asked for. Signs without a glyph are not given. Throws what the engine
/// does when the font isn't installed. Any thread.
namespace DialectSymbols {

/// By the name of a command without its backslash.
[[nodiscard]] std::optional<FormulaPiece> forCommand(QStringView name);
/// By a Unicode character other than those of ASCII.
[[nodiscard]] std::optional<FormulaPiece> forCharacter(char32_t character);

/// The character as it stands, spaced as a letter is and upright in every alphabet.
[[nodiscard]] std::optional<QString> ordinary(char32_t character);
/// The character as an operator with its scripts above and below.
[[nodiscard]] std::optional<QString> withLimits(char32_t character);

/// The one character that a command shows; none for another kind of command.
[[nodiscard]] std::optional<char32_t> characterOf(QStringView name);

} // namespace DialectSymbols
