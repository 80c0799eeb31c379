// Glyphs in the size that is needed: variants, and where those end, constructions.

#include "MTFont.h"
#include "MTGlyphAssembly.h"
#include "MTGlyphConstructionDisplay.h"
#include "MTTypesetter.h"

#include <algorithm>
#include <utility>

MTGlyphExtent MTTypesetter::extentOf(CGGlyph glyph, const MTFont& font) {
    const CTFont& ctFont = *font.ctFont();
    const GlyphBox box = ctFont.boundingBox(glyph);
    return {std::max(0.0, box.top), std::max(0.0, -box.bottom), ctFont.advance(glyph)};
}

MTTypesetter::FoundGlyph MTTypesetter::findGlyph(CGGlyph glyph, double height) const {
    FoundGlyph found;
    for (const CGGlyph variant : styleMetrics().getVerticalVariantsForGlyph(glyph)) {
        found = {variant, extentOf(variant, *m_styleFont)};
        if (found.extent.ascent + found.extent.descent >= height)
            break;
    }
    return found;
}

std::unique_ptr<MTDisplayDS> MTTypesetter::stretchedGlyph(CGGlyph glyph, double height, MTRange range) const {
    const FoundGlyph found = findGlyph(glyph, height);
    if (found.extent.ascent + found.extent.descent < height) {
        if (auto construction = constructGlyph(glyph, height))
            return construction;
    }
    return std::make_unique<MTGlyphDisplay>(found.glyph, found.extent, m_styleFont, QPointF(), range);
}

std::unique_ptr<MTDisplayDS> MTTypesetter::constructGlyph(CGGlyph glyph, double height) const {
    const std::vector<GlyphPart> parts = styleMetrics().getVerticalGlyphAssembly(glyph);
    MTGlyphAssembly assembly =
        MTGlyphAssembly::constructGlyphWithParts(parts, height, styleMetrics().minConnectorOverlap());
    if (assembly.glyphs.empty())
        return nullptr;
    const double width = m_styleFont->ctFont()->advance(assembly.glyphs.front());
    return std::make_unique<MTGlyphConstructionDisplay>(std::move(assembly.glyphs), std::move(assembly.offsets),
                                                        assembly.height, width, m_styleFont);
}
