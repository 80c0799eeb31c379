#pragma once

/// The smallest upright rectangle around a glyph's outline, from the glyph's origin on the baseline, y up. All zero for
/// a glyph that draws nothing. The unit is that of the font that was asked: font units or points.
struct GlyphBox {
    double left = 0;
    double bottom = 0;
    double right = 0;
    double top = 0;

    friend bool operator==(const GlyphBox&, const GlyphBox&) = default;
};
