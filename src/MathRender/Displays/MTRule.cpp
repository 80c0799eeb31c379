#include "MTRule.h"

#include <QColor>
#include <QPainter>
#include <QPainterPath>

void MTRule::draw(QPainter& painter, QPointF start, double length, double thickness, const QColor& color, Ends ends) {
    // A filled shape and no stroke: pens have a least width in pixels.
    const double half = thickness / 2;
    const QRectF line(start.x(), start.y() - half, length, thickness);
    if (ends == Ends::flat) {
        painter.fillRect(line, color);
        return;
    }
    QPainterPath path;
    path.addRoundedRect(line.adjusted(-half, 0, half, 0), half, half);
    painter.fillPath(path, color);
}
