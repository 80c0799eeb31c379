// Large operators and their limits (TeXbook, appendix G, rules 13 and 13a).

#include "MTCTLineDisplay.h"
#include "MTFont.h"
#include "MTLargeOpLimitsDisplay.h"
#include "MTLargeOperator.h"
#include "MTNucleus.h"
#include "MTTypesetter.h"

#include <algorithm>
#include <utility>

void MTTypesetter::makeLargeOp(const MTLargeOperator& op, const AtomPointer& atom) {
    const bool limits = op.limits && m_style == MTLineStyle::display;
    if (!MTNucleus::isOneCharacter(op.nucleus)) {
        // A name, such as "lim".
        MTTextRun name;
        name.append(*m_styleFont, op.nucleus);
        addLimitsToDisplay(std::make_unique<MTCTLineDisplay>(std::move(name), m_styleFont,
                                                             std::vector<AtomPointer>{atom}, m_currentPosition,
                                                             op.indexRange),
                           op, 0);
        return;
    }

    CGGlyph glyph = findGlyphForLastCharacter(op.nucleus).value_or(0);
    const MTFontMathTable& metrics = styleMetrics();
    if (m_style == MTLineStyle::display && glyph != 0)
        glyph = metrics.getLargerGlyph(glyph);
    const double delta = metrics.getItalicCorrection(glyph);
    const MTGlyphExtent extent = extentOf(glyph, *m_styleFont);
    auto display = std::make_unique<MTGlyphDisplay>(glyph, extent, m_styleFont, m_currentPosition, op.indexRange);
    display->setShiftDown(0.5 * (extent.ascent - extent.descent) - metrics.axisHeight());
    if (op.subScript() && !limits)
        display->setWidth(display->width() - delta); // the subscript goes under the lean of an integral
    addLimitsToDisplay(std::move(display), op, delta);
}

void MTTypesetter::addLimitsToDisplay(std::unique_ptr<MTDisplay> display, const MTLargeOperator& op, double delta) {
    if (!hasScripts(op)) {
        addDisplay(std::move(display));
        return;
    }
    if (!op.limits || m_style != MTLineStyle::display) {
        MTDisplay& nucleus = *display;
        addDisplay(std::move(display));
        makeScripts(op, nucleus, op.indexRange.location, delta);
        return;
    }

    const MTFontMathTable& metrics = styleMetrics();
    MTLargeOpLimitsDisplay::Limits limits{};
    limits.shift = delta / 2;
    if (op.superScript()) {
        limits.upper = layOut(op.superScript(), scriptStyle(), m_cramped);
        limits.upperGap =
            std::max(metrics.upperLimitGapMin(), metrics.upperLimitBaselineRiseMin() - limits.upper->descent());
    }
    if (op.subScript()) {
        limits.lower = layOut(op.subScript(), scriptStyle(), true);
        limits.lowerGap =
            std::max(metrics.lowerLimitGapMin(), metrics.lowerLimitBaselineDropMin() - limits.lower->ascent());
    }
    addDisplay(std::make_unique<MTLargeOpLimitsDisplay>(std::move(display), std::move(limits), m_currentPosition,
                                                        op.indexRange));
}
