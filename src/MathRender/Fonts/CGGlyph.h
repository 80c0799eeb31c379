#pragma once

#include <cstdint>

/// A glyph's index in its font. 0 is the font's missing-glyph box.
using CGGlyph = std::uint16_t;
