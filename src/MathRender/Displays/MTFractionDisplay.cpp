#include "MTFractionDisplay.h"

#include "MTMathListDisplay.h"
#include "MTRule.h"

#include <algorithm>
#include <utility>

MTFractionDisplay::MTFractionDisplay(std::unique_ptr<MTMathListDisplay> numerator,
                                     std::unique_ptr<MTMathListDisplay> denominator, const Placement& placement,
                                     QPointF position, MTRange range)
    : MTDisplay(position, range), m_numerator(std::move(numerator)), m_denominator(std::move(denominator)),
      m_placement(placement) {
    setExtent(m_numerator->ascent() + m_placement.numeratorUp, m_denominator->descent() + m_placement.denominatorDown,
              std::max(m_numerator->width(), m_denominator->width()));
    MTFractionDisplay::updatePositions();
}

MTFractionDisplay::~MTFractionDisplay() = default;

void MTFractionDisplay::updatePositions() {
    const double fullWidth = std::max(m_numerator->width(), m_denominator->width());
    const auto centredAt = [&](const MTMathListDisplay& part, double up) {
        return position() + QPointF((fullWidth - part.width()) / 2, up);
    };
    m_numerator->setPosition(centredAt(*m_numerator, m_placement.numeratorUp));
    m_denominator->setPosition(centredAt(*m_denominator, -m_placement.denominatorDown));
}

void MTFractionDisplay::drawContent(QPainter& painter, QPointF origin) const {
    m_numerator->drawAt(painter, origin);
    m_denominator->drawAt(painter, origin);
    if (m_placement.lineThickness > 0) {
        const double fullWidth = std::max(m_numerator->width(), m_denominator->width());
        MTRule::draw(painter, origin + position() + QPointF(0, m_placement.linePosition), fullWidth,
                     m_placement.lineThickness, textColor());
    }
}

void MTFractionDisplay::colorContent(const QColor& color) {
    m_numerator->setTextColor(color);
    m_denominator->setTextColor(color);
}
