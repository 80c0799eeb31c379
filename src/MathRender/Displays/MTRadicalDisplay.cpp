#include "MTRadicalDisplay.h"

#include "MTDisplayDS.h"
#include "MTFontMathTable.h"
#include "MTMathListDisplay.h"
#include "MTRule.h"

#include <utility>

MTRadicalDisplay::MTRadicalDisplay(std::unique_ptr<MTMathListDisplay> radicand, std::unique_ptr<MTDisplayDS> glyph,
                                   const Measures& measures, QPointF position, MTRange range)
    : MTDisplay(position, range), m_radicand(std::move(radicand)), m_radicalGlyph(std::move(glyph)),
      m_topKern(measures.topKern), m_lineThickness(measures.lineThickness) {
    setExtent(measures.ascent, measures.descent, m_radicalGlyph->width() + m_radicand->width());
    MTRadicalDisplay::updatePositions();
}

MTRadicalDisplay::~MTRadicalDisplay() = default;

void MTRadicalDisplay::setDegree(std::unique_ptr<MTMathListDisplay> degree, const MTFontMathTable& fontMetrics) {
    // OpenType, MATH table: the degree's bottom is raised by a part of the radical's height, and both kerns are around
    // it; the one behind is negative, so that the degree sits on the sign.
    double kernBefore = fontMetrics.radicalKernBeforeDegree();
    const double kernAfter = fontMetrics.radicalKernAfterDegree();
    const double raise = fontMetrics.radicalDegreeBottomRaisePercent() * (ascent() - descent());
    m_degree = std::move(degree);
    m_radicalShift = kernBefore + m_degree->width() + kernAfter;
    if (m_radicalShift < 0) {
        // A narrow degree: it goes right to where it belongs on the sign, which stays.
        kernBefore -= m_radicalShift;
        m_radicalShift = 0;
    }
    m_degreeOffset = {kernBefore, raise};
    setExtent(ascent(), descent(), m_radicalShift + m_radicalGlyph->width() + m_radicand->width());
    updatePositions();
}

void MTRadicalDisplay::updatePositions() {
    m_radicand->setPosition(position() + QPointF(m_radicalShift + m_radicalGlyph->width(), 0));
    if (m_degree)
        m_degree->setPosition(position() + m_degreeOffset);
}

void MTRadicalDisplay::drawContent(QPainter& painter, QPointF origin) const {
    m_radicand->drawAt(painter, origin);
    if (m_degree)
        m_degree->drawAt(painter, origin);
    const QPointF sign = origin + position() + QPointF(m_radicalShift, 0);
    m_radicalGlyph->drawAt(painter, sign);
    const double middle = ascent() - m_topKern - m_lineThickness / 2;
    MTRule::draw(painter, sign + QPointF(m_radicalGlyph->width(), middle), m_radicand->width(), m_lineThickness,
                 textColor(), MTRule::Ends::round);
}

void MTRadicalDisplay::colorContent(const QColor& color) {
    m_radicand->setTextColor(color);
    if (m_degree)
        m_degree->setTextColor(color);
    m_radicalGlyph->setTextColor(color);
}
