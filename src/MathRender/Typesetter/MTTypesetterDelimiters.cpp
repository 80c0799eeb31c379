// Lists between delimiters that grow with them (TeXbook, appendix G, rule 19).

#include "MTFont.h"
#include "MTInner.h"
#include "MTTypesetter.h"

#include <algorithm>
#include <utility>

namespace {

/// TeX's \delimiterfactor in thousandths, and \delimitershortfall: a delimiter covers about nine tenths of what is
/// between, or all of it but 5 points, whichever is more.
constexpr double delimiterFactor = 901;
constexpr double delimiterShortfallPoints = 5;

} // namespace

std::unique_ptr<MTDisplay> MTTypesetter::makeInner(const MTInner& inner) {
    if (inner.leftBoundary() || inner.rightBoundary())
        return makeLeftRight(inner);
    ListDisplay plain = layOut(inner.innerList, m_style, m_cramped);
    plain->setPosition(m_currentPosition);
    return plain;
}

std::unique_ptr<MTDisplay> MTTypesetter::makeLeftRight(const MTInner& inner) {
    ListDisplay list = layOut(inner.innerList, m_style, m_cramped, true);
    const double axisHeight = styleMetrics().axisHeight();
    // The farthest that the list reaches from the axis.
    const double delta = std::max(list->ascent() - axisHeight, list->descent() + axisHeight);
    const double glyphHeight = std::max(delta / 500 * delimiterFactor, 2 * delta - delimiterShortfallPoints);

    std::vector<std::unique_ptr<MTDisplay>> elements;
    double x = 0;
    const auto add = [&](std::unique_ptr<MTDisplay> element) {
        element->setPosition({x, 0});
        x += element->width();
        elements.push_back(std::move(element));
    };
    if (inner.leftBoundary() && !inner.leftBoundary()->nucleus.isEmpty())
        add(findGlyphForBoundary(inner.leftBoundary()->nucleus, glyphHeight));
    add(std::move(list));
    if (inner.rightBoundary() && !inner.rightBoundary()->nucleus.isEmpty())
        add(findGlyphForBoundary(inner.rightBoundary()->nucleus, glyphHeight));
    auto delimited = std::make_unique<MTMathListDisplay>(std::move(elements), inner.indexRange);
    delimited->setPosition(m_currentPosition);
    return delimited;
}

std::unique_ptr<MTDisplayDS> MTTypesetter::findGlyphForBoundary(QStringView delimiter, double height) const {
    std::unique_ptr<MTDisplayDS> display =
        stretchedGlyph(findGlyphForLastCharacter(delimiter).value_or(0), height, MTRange{});
    display->setShiftDown(0.5 * (display->ascent() - display->descent()) - styleMetrics().axisHeight());
    return display;
}
