#pragma once

#include <cstdint>

/// The alphabet that a letter or digit of a formula is set in.
enum class MTFontStyle : std::uint8_t {
    defaultStyle,
    roman,
    bold,
    caligraphic,
    typewriter,
    italic,
    sansSerif,
    fraktur,
    blackboard,
    boldItalic
};
