#pragma once

#include "CGGlyph.h"

/// A piece of a glyph that is built to any height. Lengths in points, along the direction of growth.
struct GlyphPart {
    CGGlyph glyph = 0;
    double fullAdvance = 0;
    double startConnectorLength = 0; ///< how much of its start may overlap with the part before
    double endConnectorLength = 0;   ///< how much of its end may overlap with the part after
    bool isExtender = false;         ///< may be left out or repeated

    friend bool operator==(const GlyphPart&, const GlyphPart&) = default;
};
