// Accents (TeXbook, appendix G, rule 12).

#include "MTAccent.h"
#include "MTAccentDisplay.h"
#include "MTException.h"
#include "MTFont.h"
#include "MTMathList.h"
#include "MTNucleus.h"
#include "MTTypesetter.h"

#include <algorithm>
#include <utility>

namespace {

/// The scripts of an accented letter are the letter's own: they stand beside it and not beside the accent.
void moveScripts(MTMathAtom& from, MTMathAtom& to) {
    to.setSubScript(from.subScript());
    to.setSuperScript(from.superScript());
    from.setSubScript(nullptr);
    from.setSuperScript(nullptr);
}

} // namespace

std::unique_ptr<MTDisplay> MTTypesetter::makeAccent(MTAccent& accent) {
    if (!accent.innerList)
        throw MTException(QStringLiteral("An accent has something under it."));
    const MTMathList* const inner = accent.innerList.get();
    const auto glyph = findGlyphForLastCharacter(accent.nucleus);
    const bool movesScripts = glyph && hasScripts(accent) && isSingleCharAccentee(accent);

    ListDisplay accentee;
    const auto known = m_formula.accentees.find(inner);
    Formula::Extent bare{};
    if (movesScripts && known != m_formula.accentees.end()) {
        bare = known->second;
    } else {
        accentee = layOut(accent.innerList, m_style, true);
        bare = {accentee->ascent(), accentee->width()};
        m_formula.accentees.insert_or_assign(inner, bare);
    }
    if (!glyph) {
        accentee->setPosition(m_currentPosition);
        return accentee;
    }

    const FoundGlyph found = findVariantGlyph(*glyph, bare.width);
    const double delta = std::min(bare.ascent, styleMetrics().accentBaseHeight());
    const QPointF position(getSkew(accent, bare.width, found.glyph), bare.ascent - delta);
    auto accentGlyph =
        std::make_unique<MTGlyphDisplay>(found.glyph, found.extent, m_styleFont, position, accent.indexRange);

    if (movesScripts) {
        moveScripts(accent, *accent.innerList->atoms().front());
        accentee = layOut(accent.innerList, m_style, m_cramped);
    }
    // By the letter's height without its scripts.
    const double height = position.y() + found.extent.ascent;
    return std::make_unique<MTAccentDisplay>(std::move(accentGlyph), std::move(accentee), height, m_currentPosition,
                                             accent.indexRange);
}

MTTypesetter::FoundGlyph MTTypesetter::findVariantGlyph(CGGlyph glyph, double maxWidth) const {
    FoundGlyph found;
    bool isFirst = true;
    for (const CGGlyph variant : styleMetrics().getHorizontalVariantsForGlyph(glyph)) {
        // Not by the advance: that of a combining accent is 0.
        MTGlyphExtent extent = extentOf(variant, *m_styleFont);
        extent.width = m_styleFont->ctFont()->boundingBox(variant).right;
        const bool isTooWide = extent.width > maxWidth;
        if (isFirst || !isTooWide)
            found = {variant, extent};
        if (isTooWide)
            break;
        isFirst = false;
    }
    return found;
}

double MTTypesetter::getSkew(const MTAccent& accent, double accenteeWidth, CGGlyph accentGlyph) const {
    const auto letter = accentedLetter(accent);
    const double accenteeAdjustment = letter ? styleMetrics().getTopAccentAdjustment(*letter) : accenteeWidth / 2;
    return accenteeAdjustment - styleMetrics().getTopAccentAdjustment(accentGlyph);
}

std::optional<CGGlyph> MTTypesetter::accentedLetter(const MTAccent& accent) const {
    const MTAccent* innermost = &accent;
    while (isSingleCharAccentee(*innermost)) {
        const MTMathAtom& letter = *innermost->innerList->atoms().front();
        if (letter.type != MTMathAtomType::accent)
            return findGlyphForLastCharacter(letter.nucleus);
        innermost = static_cast<const MTAccent*>(&letter);
    }
    return std::nullopt;
}

bool MTTypesetter::isSingleCharAccentee(const MTAccent& accent) {
    if (!accent.innerList || accent.innerList->atoms().size() != 1)
        return false;
    const MTMathAtom& letter = *accent.innerList->atoms().front();
    return MTNucleus::isOneCharacter(letter.nucleus) && letter.scriptsAllowed() && !hasScripts(letter);
}
