#pragma once

#include <QString>

#include <span>

/// A Latin letter that is another letter with an accent, and how to write it as such: "é" is "e" under "acute".
struct MTAccentedCharacter {
    char32_t character;
    /// The letter without its outermost accent; it may carry a further one ("ế" is "ê" under "acute").
    QString baseLetter;
    QString accentName;
};

/// Every precomposed Latin letter whose outermost mark is one of the accents that formulas know, by code point. Made at
/// first use from Unicode's decompositions; usable on any thread.
[[nodiscard]] std::span<const MTAccentedCharacter> supportedAccentedCharacters();

/// The row of a character, precomposed or as a letter with combining marks; null for any other.
[[nodiscard]] const MTAccentedCharacter* accentedCharacter(QStringView character);
