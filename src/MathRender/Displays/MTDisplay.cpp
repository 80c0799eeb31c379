#include "MTDisplay.h"

#include <QPainter>

MTDisplay::~MTDisplay() = default;

void MTDisplay::setPosition(QPointF position) {
    m_position = position;
    updatePositions();
}

void MTDisplay::setTextColor(const QColor& color) {
    // What has a local colour got it for good, with all that is in it.
    if (m_localTextColor)
        return;
    m_textColor = color;
    colorContent(color);
}

void MTDisplay::setLocalTextColor(const QColor& color) {
    m_localTextColor.reset();
    setTextColor(color);
    m_localTextColor = color;
}

void MTDisplay::colorContent(const QColor&) {}

QRectF MTDisplay::displayBounds() const {
    return {m_position.x(), m_position.y() - m_descent, m_width, m_ascent + m_descent};
}

void MTDisplay::draw(QPainter& painter) const {
    const bool wasAntialiased = painter.testRenderHint(QPainter::Antialiasing);
    painter.setRenderHint(QPainter::Antialiasing);
    drawAt(painter, {});
    painter.setRenderHint(QPainter::Antialiasing, wasAntialiased);
}

void MTDisplay::drawAt(QPainter& painter, QPointF origin) const {
    if (m_localBackgroundColor) {
        const QPainter::CompositionMode mode = painter.compositionMode();
        painter.setCompositionMode(QPainter::CompositionMode_SourceOver);
        painter.fillRect(displayBounds().translated(origin), *m_localBackgroundColor);
        painter.setCompositionMode(mode);
    }
    drawContent(painter, origin);
}
