#include "MTMathListDisplay.h"

#include <algorithm>
#include <utility>

MTMathListDisplay::MTMathListDisplay(std::vector<std::unique_ptr<MTDisplay>> subDisplays, MTRange range)
    : MTDisplay({}, range), m_subDisplays(std::move(subDisplays)) {
    recomputeDimensions();
}

MTMathListDisplay::~MTMathListDisplay() = default;

void MTMathListDisplay::recomputeDimensions() {
    double ascent = 0;
    double descent = 0;
    double width = 0;
    for (const std::unique_ptr<MTDisplay>& display : m_subDisplays) {
        ascent = std::max(ascent, display->ascent() + display->position().y());
        descent = std::max(descent, display->descent() - display->position().y());
        width = std::max(width, display->width() + display->position().x());
    }
    setExtent(ascent, descent, width);
}

void MTMathListDisplay::drawContent(QPainter& painter, QPointF origin) const {
    for (const std::unique_ptr<MTDisplay>& display : m_subDisplays)
        display->drawAt(painter, origin + position());
}

void MTMathListDisplay::colorContent(const QColor& color) {
    for (const std::unique_ptr<MTDisplay>& display : m_subDisplays)
        display->setTextColor(color);
}
