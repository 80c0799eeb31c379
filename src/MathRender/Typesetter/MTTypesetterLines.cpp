// Lines over and under a list (TeXbook, appendix G, rules 9 and 10).

#include "MTFont.h"
#include "MTInnerListAtom.h"
#include "MTLineDisplay.h"
#include "MTTypesetter.h"

#include <utility>

std::unique_ptr<MTDisplay> MTTypesetter::makeUnderline(const MTInnerListAtom& under) {
    ListDisplay inner = layOut(under.innerList, m_style, m_cramped);
    const MTFontMathTable& metrics = styleMetrics();
    const MTLineDisplay::Line line{-(inner->descent() + metrics.underbarVerticalGap()),
                                   metrics.underbarRuleThickness()};
    const double ascent = inner->ascent();
    const double descent = inner->descent() + metrics.underbarVerticalGap() + metrics.underbarRuleThickness() +
                           metrics.underbarExtraDescender();
    return std::make_unique<MTLineDisplay>(std::move(inner), line, ascent, descent, m_currentPosition,
                                           under.indexRange);
}

std::unique_ptr<MTDisplay> MTTypesetter::makeOverline(const MTInnerListAtom& over) {
    ListDisplay inner = layOut(over.innerList, m_style, true);
    const MTFontMathTable& metrics = styleMetrics();
    // As thick as a line under a list, so that both match in every font.
    const MTLineDisplay::Line line{inner->ascent() + metrics.overbarVerticalGap(), metrics.underbarRuleThickness()};
    const double ascent = inner->ascent() + metrics.overbarVerticalGap() + metrics.overbarRuleThickness() +
                          metrics.overbarExtraAscender();
    const double descent = inner->descent();
    return std::make_unique<MTLineDisplay>(std::move(inner), line, ascent, descent, m_currentPosition, over.indexRange);
}
