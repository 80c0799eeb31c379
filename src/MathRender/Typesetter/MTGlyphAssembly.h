#pragma once

#include "CGGlyph.h"

#include <span>
#include <vector>

struct GlyphPart;

/// A glyph of some height, put together from parts (OpenType, MATH table, glyph assemblies).
struct MTGlyphAssembly {
    std::vector<CGGlyph> glyphs; ///< from bottom to top
    std::vector<float> offsets;  ///< how high each is above the lowest, in points
    double height = 0;           ///< of all together, in points

    /// The assembly of `parts` with the fewest repetitions of its extenders that reaches `glyphHeight`: with the parts
    /// overlapping as little as needed for that height, and never by less than `minDistance`. When no number of
    /// extenders does, since there is none or it adds nothing, it is stretched as far as it goes with each part once.
    /// Empty without parts.
    [[nodiscard]] static MTGlyphAssembly constructGlyphWithParts(std::span<const GlyphPart> parts, double glyphHeight,
                                                                 double minDistance);
};
