#include "MTInterElementSpace.h"

#include <array>
#include <optional>

namespace {

using enum InterElementSpaceType;
using Row = std::array<InterElementSpaceType, 8>;

// clang-format off
/// By what is on the left, then what is on the right.
constexpr std::array<Row, 9> spaces{{
    // ord      op        bin       rel       open      close     punct     fraction, inner
    {none,      thin,     nsMedium, nsThick,  none,     none,     none,     nsThin},   // ord
    {thin,      thin,     invalid,  nsThick,  none,     none,     none,     nsThin},   // op
    {nsMedium,  nsMedium, invalid,  invalid,  nsMedium, invalid,  invalid,  nsMedium}, // bin
    {nsThick,   nsThick,  invalid,  none,     nsThick,  none,     none,     nsThick},  // rel
    {none,      none,     invalid,  none,     none,     none,     none,     none},     // open
    {none,      thin,     nsMedium, nsThick,  none,     none,     none,     nsThin},   // close
    {nsThin,    nsThin,   invalid,  nsThin,   nsThin,   nsThin,   nsThin,   nsThin},   // punct
    {nsThin,    thin,     nsMedium, nsThick,  nsThin,   none,     nsThin,   nsThin},   // fraction, inner
    {nsMedium,  nsThin,   nsMedium, nsThick,  none,     none,     none,     nsThin},   // radical
}};
// clang-format on

constexpr std::size_t radicalRow = 8;

/// The row and column; none for what is not spaced.
std::optional<std::size_t> indexOf(MTMathAtomType type) {
    switch (type) {
    case MTMathAtomType::ordinary:
    case MTMathAtomType::placeholder:
    case MTMathAtomType::color:
    case MTMathAtomType::textcolor:
    case MTMathAtomType::colorBox:
    // What preprocessing makes ordinary counts so before it as well.
    case MTMathAtomType::number:
    case MTMathAtomType::variable:
    case MTMathAtomType::unaryOperator:
        return 0;
    case MTMathAtomType::largeOperator:
        return 1;
    case MTMathAtomType::binaryOperator:
        return 2;
    case MTMathAtomType::relation:
        return 3;
    case MTMathAtomType::open:
        return 4;
    case MTMathAtomType::close:
        return 5;
    case MTMathAtomType::punctuation:
        return 6;
    case MTMathAtomType::fraction:
    case MTMathAtomType::inner:
        return 7;
    case MTMathAtomType::radical:
        return radicalRow;
    case MTMathAtomType::underline:
    case MTMathAtomType::overline:
    case MTMathAtomType::accent:
    case MTMathAtomType::boundary:
    case MTMathAtomType::space:
    case MTMathAtomType::style:
    case MTMathAtomType::table:
        break;
    }
    return std::nullopt;
}

} // namespace

InterElementSpaceType MTInterElementSpace::between(MTMathAtomType left, MTMathAtomType right) {
    const auto row = indexOf(left);
    const auto column = indexOf(right);
    if (!row || !column || *column == radicalRow)
        return invalid;
    return spaces[*row][*column];
}

int MTInterElementSpace::spacingInMu(InterElementSpaceType type, MTLineStyle style) {
    const bool isScript = style > MTLineStyle::text;
    switch (type) {
    case invalid:
        break;
    case none:
        return 0;
    case thin:
        return 3;
    case nsThin:
        return isScript ? 0 : 3;
    case nsMedium:
        return isScript ? 0 : 4;
    case nsThick:
        return isScript ? 0 : 5;
    }
    return -1;
}
