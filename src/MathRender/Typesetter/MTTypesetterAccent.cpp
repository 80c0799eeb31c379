// Accents (TeXbook, appendix G, rule 12).

#include "MTAccent.h"
#include "MTAccentDisplay.h"
#include "MTException.h"
#include "MTFont.h"
#include "MTMathAlphabets.h"
#include "MTMathList.h"
#include "MTNucleus.h"
#include "MTTypesetter.h"

#include <algorithm>
#include <utility>

void MTTypesetter::addAccent(const MTAccent& accent) {
    addLeftSpace(MTMathAtomType::ordinary);
    addAccent(accent, accent);
}

MTTypesetter::Extent MTTypesetter::addAccent(const MTAccent& accent, const MTMathAtom& scripted) {
    if (!accent.innerList)
        throw MTException(QStringLiteral("An accent has something under it."));
    const auto glyph = findGlyphForLastCharacter(accent.nucleus);
    const bool movesScripts = glyph && hasScripts(scripted) && isSingleCharAccentee(accent);
    Extent bare{};
    ListDisplay accentee;
    if (movesScripts) {
        accentee = layOutScriptedLetter(accent, scripted, bare);
    } else {
        accentee = layOut(accent.innerList, m_style, true);
        bare = {accentee->ascent(), accentee->width()};
    }

    std::unique_ptr<MTDisplay> display;
    if (glyph) {
        const FoundGlyph found = findVariantGlyph(*glyph, bare.width);
        const double delta = std::min(bare.ascent, styleMetrics().accentBaseHeight());
        const QPointF position(getSkew(accent, bare.width, found.glyph), bare.ascent - delta);
        auto accentGlyph =
            std::make_unique<MTGlyphDisplay>(found.glyph, found.extent, m_styleFont, position, accent.indexRange);
        // The accent stands by the letter's height without scripts, the room above it goes with the scripts.
        const double height = accentee->ascent() - delta + found.extent.ascent;
        display = std::make_unique<MTAccentDisplay>(std::move(accentGlyph), std::move(accentee), height,
                                                    m_currentPosition, accent.indexRange);
        bare.ascent = std::max(bare.ascent, position.y() + found.extent.ascent);
    } else {
        accentee->setPosition(m_currentPosition);
        display = std::move(accentee);
    }

    MTDisplay& added = *display;
    addDisplay(std::move(display));
    if (hasScripts(scripted) && !movesScripts)
        makeScripts(scripted, added, accent.indexRange.location, 0);
    m_lastType = MTMathAtomType::ordinary;
    return bare;
}

MTTypesetter::ListDisplay MTTypesetter::layOutScriptedLetter(const MTAccent& accent, const MTMathAtom& scripted,
                                                             Extent& bare) {
    const MTMathList& list = *accent.innerList;
    const AtomPointer& letter = list.atoms().front();
    if (const auto* const inner = dynamic_cast<const MTAccent*>(letter.get())) {
        // What is under a pile of accents is laid out once, however high the pile is.
        MTTypesetter typesetter(m_fonts, m_style, m_cramped, false);
        bare = typesetter.addAccent(*inner, scripted);
        return typesetter.takeList(list);
    }
    const ListDisplay plain = layOut(accent.innerList, m_style, true);
    bare = {plain->ascent(), plain->width()};
    const AtomPointer copy = letter->copy();
    copy->setSubScript(scripted.subScript());
    copy->setSuperScript(scripted.superScript());
    return layOut(std::make_shared<MTMathList>(copy), m_style, m_cramped);
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
            return findGlyphForLastCharacter(MTMathAlphabets::styledNucleus(letter));
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
