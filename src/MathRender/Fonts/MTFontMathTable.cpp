#include "MTFontMathTable.h"

#include "MTFont.h"
#include "QuilloAssert.h"

#include <algorithm>
#include <utility>

MTFontMathTable::MTFontMathTable(const MTFont& font, std::shared_ptr<const MTRawMathTable> mathTable)
    : m_font(font), m_unitsPerEm(font.defaultCGFont()->unitsPerEm()), m_fontSize(font.fontSize()),
      m_mathTable(std::move(mathTable)) {
    QUILLO_ASSERT(m_mathTable, "A math table is made from a property list.");
    m_mathTable->checkVersion();
}

MTFontMathTable::~MTFontMathTable() = default;

double MTFontMathTable::constantFromTable(QStringView name) const {
    return fontUnitsToPt(m_mathTable->constant(name).value_or(0));
}

double MTFontMathTable::percentFromTable(QStringView name) const {
    return m_mathTable->constant(name).value_or(0) / 100.0;
}

std::span<const CGGlyph> MTFontMathTable::getVerticalVariantsForGlyph(CGGlyph glyph) const {
    return m_mathTable->verticalVariants(glyph);
}

std::span<const CGGlyph> MTFontMathTable::getHorizontalVariantsForGlyph(CGGlyph glyph) const {
    return m_mathTable->horizontalVariants(glyph);
}

CGGlyph MTFontMathTable::getLargerGlyph(CGGlyph glyph) const {
    const auto variants = m_mathTable->verticalVariants(glyph);
    const auto larger = std::find_if(variants.begin(), variants.end(), [&](CGGlyph other) { return other != glyph; });
    return larger == variants.end() ? glyph : *larger;
}

double MTFontMathTable::getItalicCorrection(CGGlyph glyph) const {
    return fontUnitsToPt(m_mathTable->italicCorrection(glyph));
}

double MTFontMathTable::getTopAccentAdjustment(CGGlyph glyph) const {
    if (const auto accent = m_mathTable->topAccent(glyph))
        return fontUnitsToPt(*accent);
    return m_font.ctFont()->advance(glyph) / 2;
}

std::vector<GlyphPart> MTFontMathTable::getVerticalGlyphAssembly(CGGlyph glyph) const {
    const auto parts = m_mathTable->verticalAssembly(glyph);
    std::vector<GlyphPart> assembly;
    assembly.reserve(parts.size());
    for (const auto& part : parts) {
        assembly.push_back({part.glyph, fontUnitsToPt(part.advance), fontUnitsToPt(part.startConnector),
                            fontUnitsToPt(part.endConnector), part.isExtender});
    }
    return assembly;
}
