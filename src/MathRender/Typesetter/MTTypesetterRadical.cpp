// Roots (TeXbook, appendix G, rule 11).

#include "MTFont.h"
#include "MTRadical.h"
#include "MTRadicalDisplay.h"
#include "MTTypesetter.h"

#include <algorithm>
#include <utility>

namespace {

constexpr char32_t radicalSign = 0x221A;

} // namespace

std::unique_ptr<MTDisplay> MTTypesetter::makeRadical(const MTRadical& radical) {
    ListDisplay inner = layOut(radical.radicand, m_style, true);
    const MTFontMathTable& metrics = styleMetrics();
    double clearance =
        m_style == MTLineStyle::display ? metrics.radicalDisplayStyleVerticalGap() : metrics.radicalVerticalGap();
    const double thickness = metrics.radicalRuleThickness();
    const double height = inner->ascent() + inner->descent() + clearance + thickness;
    std::unique_ptr<MTDisplayDS> glyph = getRadicalGlyphWithHeight(height);

    // A sign that is too high has the radicand in its middle.
    const double delta = (glyph->descent() + glyph->ascent()) - height;
    if (delta > 0)
        clearance += delta / 2;
    // The top of the sign goes to the top of the line. TeX takes it that the sign's ascent is the line's thickness,
    // which fonts need not keep to.
    const double radicalAscent = thickness + clearance + inner->ascent();
    const MTRadicalDisplay::Measures measures{
        .ascent = radicalAscent + metrics.radicalExtraAscender(),
        .descent = std::max(glyph->ascent() + glyph->descent() - radicalAscent, inner->descent()),
        .topKern = metrics.radicalExtraAscender(),
        .lineThickness = thickness,
    };
    glyph->setShiftDown(glyph->ascent() - radicalAscent);

    auto display = std::make_unique<MTRadicalDisplay>(std::move(inner), std::move(glyph), measures, m_currentPosition,
                                                      radical.indexRange);
    if (radical.degree)
        display->setDegree(layOut(radical.degree, MTLineStyle::scriptOfScript, false), metrics);
    return display;
}

std::unique_ptr<MTDisplayDS> MTTypesetter::getRadicalGlyphWithHeight(double height) const {
    return stretchedGlyph(m_styleFont->ctFont()->glyph(radicalSign), height, MTDisplay::notFound);
}
