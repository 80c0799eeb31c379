#pragma once

#include <QString>

/// What an atom of a formula is to the layout. The values part the kinds that carry scripts (up to 17), the boundary
/// that never stands in a list, the kinds without width of their own (from 201) and tables.
enum class MTMathAtomType : int {
    ordinary = 1,
    number,
    variable,
    largeOperator,
    binaryOperator,
    unaryOperator,
    relation,
    open,
    close,
    fraction,
    radical,
    punctuation,
    placeholder,
    inner,
    underline,
    overline,
    accent,
    boundary = 101,
    space = 201,
    style,
    color,
    textcolor,
    colorBox,
    table = 1001
};

/// Whether atoms of `type` may have a subscript and a superscript.
[[nodiscard]] constexpr bool scriptsAllowed(MTMathAtomType type) {
    return type < MTMathAtomType::boundary;
}

/// The display name, for messages: "Large Operator".
[[nodiscard]] QString description(MTMathAtomType type);
