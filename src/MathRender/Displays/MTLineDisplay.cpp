#include "MTLineDisplay.h"

#include "MTMathListDisplay.h"
#include "MTRule.h"

#include <utility>

MTLineDisplay::MTLineDisplay(std::unique_ptr<MTMathListDisplay> inner, const Line& line, double ascent, double descent,
                             QPointF position, MTRange range)
    : MTDisplay(position, range), m_inner(std::move(inner)), m_line(line) {
    setExtent(ascent, descent, m_inner->width());
    MTLineDisplay::updatePositions();
}

MTLineDisplay::~MTLineDisplay() = default;

void MTLineDisplay::updatePositions() {
    m_inner->setPosition(position());
}

void MTLineDisplay::drawContent(QPainter& painter, QPointF origin) const {
    m_inner->drawAt(painter, origin);
    MTRule::draw(painter, origin + position() + QPointF(0, m_line.shiftUp), width(), m_line.thickness, textColor());
}

void MTLineDisplay::colorContent(const QColor& color) {
    m_inner->setTextColor(color);
}
