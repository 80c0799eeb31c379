#include "MTTextRun.h"

#include "MTFont.h"
#include "MTNucleus.h"

#include <algorithm>

namespace {

/// Whether a character is a letter of its own and not one of a word: Greek, or of one of the mathematical alphabets,
/// with those in the block of letterlike symbols.
bool isMathematical(char32_t character) {
    const auto isWithin = [character](char32_t first, char32_t last) {
        return character >= first && character <= last;
    };
    return isWithin(0x0391, 0x03C9) || isWithin(0x2100, 0x214F) || isWithin(0x1D400, 0x1D7FF);
}

} // namespace

void MTTextRun::append(const MTFont& font, QStringView characters) {
    text += characters;
    const CTFont& ctFont = *font.ctFont();
    double lean = 0; // of the letter before
    for (qsizetype i = 0; i < characters.size();) {
        const char32_t character = MTNucleus::scalarAt(characters, i);
        const bool isLetter = isMathematical(character);
        const CGGlyph glyph = ctFont.glyph(character);
        const GlyphBox box = ctFont.boundingBox(glyph);
        if (isLetter)
            width += lean;
        glyphs.push_back({glyph, width});
        width += ctFont.advance(glyph);
        ascent = std::max(ascent, box.top);
        descent = std::max(descent, -box.bottom);
        lean = isLetter ? font.mathTable().getItalicCorrection(glyph) : 0;
    }
}

void MTTextRun::append(const MTFont& font, QStringView characters, const QColor& color) {
    const std::size_t first = glyphs.size();
    append(font, characters);
    colors.push_back({first, glyphs.size(), color});
}
