#pragma once

#include <QStringView>

/// The text of an atom as characters, a character being what a person perceives as one (a grapheme cluster).
namespace MTNucleus {

/// The Unicode scalar at `index`, which is moved behind it. A surrogate that has no partner stands for itself.
[[nodiscard]] char32_t scalarAt(QStringView text, qsizetype& index);

/// The last character; empty for an empty text.
[[nodiscard]] QStringView lastCharacter(QStringView nucleus);

[[nodiscard]] bool isOneCharacter(QStringView nucleus);

} // namespace MTNucleus
