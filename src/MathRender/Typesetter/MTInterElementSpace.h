#pragma once

#include "MTLineStyle.h"
#include "MTMathAtomType.h"

#include <cstdint>

/// The room that TeX leaves between atoms. Those that begin with "ns" are not set in script styles.
enum class InterElementSpaceType : std::uint8_t { invalid, none, thin, nsThin, nsMedium, nsThick };

/// The spacing table of formulas (TeXbook, chapter 18).
namespace MTInterElementSpace {

/// The entry for two neighbours. `invalid` when the table has none for them: a binary operator that turned out to have
/// no operand would not be one.
[[nodiscard]] InterElementSpaceType between(MTMathAtomType left, MTMathAtomType right);

/// In mu, eighteenths of an em; -1 for `invalid`.
[[nodiscard]] int spacingInMu(InterElementSpaceType type, MTLineStyle style);

} // namespace MTInterElementSpace
