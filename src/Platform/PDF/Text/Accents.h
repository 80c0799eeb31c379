#pragma once

#include <QString>

/// Puts letters together that a file draws as a letter and an accent, as fonts without accented letters need it.
namespace Accents {

/// How far a character reaches along its line.
struct Extent {
    double from = 0;
    double to = 0;
};

/// The combining character that the character stands for, one that stands by itself ("´") or a combining one; 0 for
/// what is no accent.
[[nodiscard]] char16_t combining(int character);

/// True for an accent that is drawn over or under the letter and doesn't just stand beside it.
[[nodiscard]] bool covers(Extent accent, Extent letter);

/// The letter with its accents, as one character where there is one; the letters that lost their dot for the accent get
/// it back ("ı" and a dieresis is "ï"). Empty when `letter` can't bear an accent.
[[nodiscard]] QString joined(int letter, const QString& combiningAccents);

} // namespace Accents
