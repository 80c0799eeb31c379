#pragma once

#include <QStringView>

#include <optional>

class QString;

/// LaTeX as models write it in replies, with Unicode signs, primes, the commands of many packages and free
/// environments, for an engine that reads a small, strict part of LaTeX and drops what it has no sign for. A formula
/// that lost a sign is worse than none, so nothing is passed on that the engine would not show.
namespace FormulaDialect {

/// No longer formula is rewritten. In UTF-16 code units.
inline constexpr qsizetype longestFormula = 100'000;

/// The formula in the engine's own vocabulary. What has no counterpart there is written as near to it as can be; none
/// where that would change the meaning, or where a character has no glyph in the font of replies. The engine may still
/// refuse the result, as it does a formula that is too large. Sources are not trusted: time and memory are linear in
/// the length, and nesting is limited. Any thread.
[[nodiscard]] std::optional<QString> rewritten(QStringView latex);

} // namespace FormulaDialect
