#pragma once

#include <cstdint>

/// TeX's four styles of setting a list, from the largest to the smallest; the built-in order compares them.
enum class MTLineStyle : std::uint8_t { display, text, script, scriptOfScript };

/// The next smaller style. `scriptOfScript` has none and wraps to `display`.
[[nodiscard]] constexpr MTLineStyle inc(MTLineStyle style) {
    switch (style) {
    case MTLineStyle::display:
        return MTLineStyle::text;
    case MTLineStyle::text:
        return MTLineStyle::script;
    case MTLineStyle::script:
        return MTLineStyle::scriptOfScript;
    case MTLineStyle::scriptOfScript:
        break;
    }
    return MTLineStyle::display;
}
