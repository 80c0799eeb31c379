#pragma once

#include "MTMathAtomType.h"

#include <QStringView>

#include <cstdint>
#include <string_view>

/// The commands of formulas that are more than a sign, and how each is rewritten.
namespace DialectCommands {

enum class Kind : std::uint8_t {
    literal,         ///< `data` stands for it
    space,           ///< `number` mu
    length,          ///< a space as long as its argument says
    ignored,         ///< shows nothing
    ignoredArgument, ///< shows nothing, nor does its argument
    transparent,     ///< shows its argument
    style,           ///< `number`: an MTLineStyle, up to the end of the group
    fontSwitch,      ///< `data`: the command for an argument; up to the end of the group
    font,            ///< `data`: the command
    text,            ///< words; `data`: the command for their letters
    decoration,      ///< `data`: a command with one argument
    over,            ///< `data`: what stands above the argument
    fenced,          ///< `data`: the delimiters around the argument, with a blank between
    fraction,        ///< `number`: an MTLineStyle, or -1 for that around it; `data`: the command
    radical,
    infix, ///< `data`: the command
    big,   ///< `number`: the level; `type`: what the delimiter counts as
    leftRight,
    named,     ///< an operator with a name of its own; `number`: 1 for scripts above and below
    typed,     ///< `type`: what the argument counts as
    modulo,    ///< `data`: what is before the argument, `number` mu in front
    bracketed, ///< the argument in parentheses, `number` mu in front
    tag,
    boxed,
    phantom,
    negated,
    dots,
    overset,
    underset,
    underLine, ///< a line below with a label
    overLine,  ///< a line above with a label
    arrow,     ///< `data`: the arrow under and above which words may stand
    lines,     ///< lines above each other
    displayLines,
    textColor,
    colorBox,
    color,
    environment
};

struct Row {
    std::u16string_view name;
    Kind kind;
    std::u16string_view data = {};
    int number = 0;
    MTMathAtomType type = MTMathAtomType::ordinary;
};

/// By the name without its backslash; null for a command that is not in the table.
[[nodiscard]] const Row* named(QStringView name);

} // namespace DialectCommands
