#pragma once

#include "MTMathAtomType.h"

#include <span>
#include <string_view>

/// Signs that the engine's own tables lack, as data.
namespace DialectSymbolTable {

struct Row {
    std::u16string_view name; ///< of the command, without its backslash
    char32_t character;
    MTMathAtomType type;
};

/// Of several names for a character the first is the usual one.
[[nodiscard]] std::span<const Row> symbols();
/// Operators whose names are words, with their scripts below.
struct Operator {
    std::u16string_view name;
    std::u16string_view words;
};
[[nodiscard]] std::span<const Operator> operators();

/// A command that the engine shows as another sign than TeX does, and the row to use in its place.
struct Replacement {
    std::u16string_view name;
    std::u16string_view symbol;
};
[[nodiscard]] std::span<const Replacement> replacements();

} // namespace DialectSymbolTable
