#include "MTLargeOpLimitsDisplay.h"

#include "MTMathListDisplay.h"

#include <algorithm>
#include <utility>

MTLargeOpLimitsDisplay::MTLargeOpLimitsDisplay(std::unique_ptr<MTDisplay> nucleus, Limits limits, QPointF position,
                                               MTRange range)
    : MTDisplay(position, range), m_nucleus(std::move(nucleus)), m_limits(std::move(limits)) {
    double ascent = m_nucleus->ascent();
    double descent = m_nucleus->descent();
    double width = m_nucleus->width();
    if (const MTMathListDisplay* upper = m_limits.upper.get()) {
        ascent += m_limits.extraPadding + upper->ascent() + m_limits.upperGap + upper->descent();
        width = std::max(width, upper->width());
    }
    if (const MTMathListDisplay* lower = m_limits.lower.get()) {
        descent += m_limits.extraPadding + lower->descent() + m_limits.lowerGap + lower->ascent();
        width = std::max(width, lower->width());
    }
    setExtent(ascent, descent, width);
    MTLargeOpLimitsDisplay::updatePositions();
}

MTLargeOpLimitsDisplay::~MTLargeOpLimitsDisplay() = default;

void MTLargeOpLimitsDisplay::updatePositions() {
    const auto centredAt = [&](const MTDisplay& part, double right, double up) {
        return position() + QPointF(right + (width() - part.width()) / 2, up);
    };
    m_nucleus->setPosition(centredAt(*m_nucleus, 0, 0));
    if (MTMathListDisplay* upper = m_limits.upper.get()) {
        upper->setPosition(
            centredAt(*upper, m_limits.shift, m_nucleus->ascent() + m_limits.upperGap + upper->descent()));
    }
    if (MTMathListDisplay* lower = m_limits.lower.get()) {
        lower->setPosition(
            centredAt(*lower, -m_limits.shift, -(m_nucleus->descent() + m_limits.lowerGap + lower->ascent())));
    }
}

void MTLargeOpLimitsDisplay::drawContent(QPainter& painter, QPointF origin) const {
    m_nucleus->drawAt(painter, origin);
    if (m_limits.upper)
        m_limits.upper->drawAt(painter, origin);
    if (m_limits.lower)
        m_limits.lower->drawAt(painter, origin);
}

void MTLargeOpLimitsDisplay::colorContent(const QColor& color) {
    m_nucleus->setTextColor(color);
    if (m_limits.upper)
        m_limits.upper->setTextColor(color);
    if (m_limits.lower)
        m_limits.lower->setTextColor(color);
}
