// Fractions, with a rule and without (TeXbook, appendix G, rule 15).

#include "MTException.h"
#include "MTFont.h"
#include "MTFraction.h"
#include "MTFractionDisplay.h"
#include "MTTypesetter.h"

#include <utility>

namespace {

/// The constants of a fraction in a style.
struct Shifts {
    double numeratorUp;
    double denominatorDown;
};

Shifts shiftsOf(const MTFontMathTable& metrics, bool hasRule, bool isDisplay) { // 15b
    if (hasRule) {
        return isDisplay ? Shifts{metrics.fractionNumeratorDisplayStyleShiftUp(),
                                  metrics.fractionDenominatorDisplayStyleShiftDown()}
                         : Shifts{metrics.fractionNumeratorShiftUp(), metrics.fractionDenominatorShiftDown()};
    }
    return isDisplay ? Shifts{metrics.stackTopDisplayStyleShiftUp(), metrics.stackBottomDisplayStyleShiftDown()}
                     : Shifts{metrics.stackTopShiftUp(), metrics.stackBottomShiftDown()};
}

/// 15c: the parts keep their distance from each other.
void keepApart(Shifts& shifts, const MTMathListDisplay& num, const MTMathListDisplay& den, double gapMin) {
    const double clearance = (shifts.numeratorUp - num.descent()) - (den.ascent() - shifts.denominatorDown);
    if (clearance < gapMin) {
        shifts.numeratorUp += (gapMin - clearance) / 2;
        shifts.denominatorDown += (gapMin - clearance) / 2;
    }
}

/// 15d: each part keeps its distance from the rule.
void keepFromRule(Shifts& shifts, const MTMathListDisplay& num, const MTMathListDisplay& den,
                  const MTFontMathTable& metrics, bool isDisplay) {
    const double halfRule = metrics.fractionRuleThickness() / 2;
    const double numeratorGapMin =
        isDisplay ? metrics.fractionNumDisplayStyleGapMin() : metrics.fractionNumeratorGapMin();
    const double distanceFromNumerator = (shifts.numeratorUp - num.descent()) - (metrics.axisHeight() + halfRule);
    if (distanceFromNumerator < numeratorGapMin)
        shifts.numeratorUp += numeratorGapMin - distanceFromNumerator;
    const double denominatorGapMin =
        isDisplay ? metrics.fractionDenomDisplayStyleGapMin() : metrics.fractionDenominatorGapMin();
    const double distanceFromDenominator = (metrics.axisHeight() - halfRule) - (den.ascent() - shifts.denominatorDown);
    if (distanceFromDenominator < denominatorGapMin)
        shifts.denominatorDown += denominatorGapMin - distanceFromDenominator;
}

} // namespace

std::unique_ptr<MTDisplay> MTTypesetter::makeFraction(const MTFraction& frac) {
    if (!frac.numerator || !frac.denominator)
        throw MTException(QStringLiteral("A fraction has a numerator and a denominator."));
    ListDisplay num = layOut(frac.numerator, fractionStyle(), false);
    ListDisplay den = layOut(frac.denominator, fractionStyle(), true);

    const MTFontMathTable& metrics = styleMetrics();
    const bool isDisplay = m_style == MTLineStyle::display;
    Shifts shifts = shiftsOf(metrics, frac.hasRule, isDisplay);
    if (frac.hasRule)
        keepFromRule(shifts, *num, *den, metrics, isDisplay);
    else
        keepApart(shifts, *num, *den, isDisplay ? metrics.stackDisplayStyleGapMin() : metrics.stackGapMin());

    const MTFractionDisplay::Placement placement{shifts.numeratorUp, shifts.denominatorDown, metrics.axisHeight(),
                                                 frac.hasRule ? metrics.fractionRuleThickness() : 0};
    auto display = std::make_unique<MTFractionDisplay>(std::move(num), std::move(den), placement, m_currentPosition,
                                                       frac.indexRange);
    if (frac.leftDelimiter.isEmpty() && frac.rightDelimiter.isEmpty())
        return display;
    return addDelimitersToFractionDisplay(std::move(display), frac);
}

std::unique_ptr<MTDisplay> MTTypesetter::addDelimitersToFractionDisplay(std::unique_ptr<MTDisplay> display,
                                                                        const MTFraction& frac) {
    const double height = m_style == MTLineStyle::display ? styleMetrics().fractionDelimiterDisplayStyleSize()
                                                          : styleMetrics().fractionDelimiterSize(); // 15e
    std::vector<std::unique_ptr<MTDisplay>> elements;
    double x = 0;
    const auto add = [&](std::unique_ptr<MTDisplay> element) {
        element->setPosition({x, 0});
        x += element->width();
        elements.push_back(std::move(element));
    };
    if (!frac.leftDelimiter.isEmpty())
        add(findGlyphForBoundary(frac.leftDelimiter, height));
    add(std::move(display));
    if (!frac.rightDelimiter.isEmpty())
        add(findGlyphForBoundary(frac.rightDelimiter, height));
    auto delimited = std::make_unique<MTMathListDisplay>(std::move(elements), frac.indexRange);
    delimited->setPosition(m_currentPosition);
    return delimited;
}
