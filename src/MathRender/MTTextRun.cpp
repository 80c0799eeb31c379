#include "MTTextRun.h"

#include "CTFont.h"
#include "MTNucleus.h"

#include <algorithm>

void MTTextRun::append(const CTFont& font, QStringView characters) {
    text += characters;
    for (qsizetype i = 0; i < characters.size();) {
        const CGGlyph glyph = font.glyph(MTNucleus::scalarAt(characters, i));
        const GlyphBox box = font.boundingBox(glyph);
        glyphs.push_back({glyph, width});
        width += font.advance(glyph);
        ascent = std::max(ascent, box.top);
        descent = std::max(descent, -box.bottom);
    }
}

void MTTextRun::append(const CTFont& font, QStringView characters, const QColor& color) {
    const std::size_t first = glyphs.size();
    append(font, characters);
    colors.push_back({first, glyphs.size(), color});
}
