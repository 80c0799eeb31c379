#include "PathCulling.h"

#include <algorithm>

/// Whether the box around two to four points meets `area`.
static bool meets(const QRectF& area, std::initializer_list<QPointF> points) {
    const auto [left, right] = std::minmax(points, [](QPointF one, QPointF other) { return one.x() < other.x(); });
    const auto [low, high] = std::minmax(points, [](QPointF one, QPointF other) { return one.y() < other.y(); });
    return right.x() >= area.left() && left.x() <= area.right() && high.y() >= area.top() && low.y() <= area.bottom();
}

QPainterPath PathCulling::strokeWithin(const QPainterPath& path, const QRectF& area, double lineWidth) {
    // The round end of a piece, and the tip where two meet, reach past their points.
    const double reach = 2 * lineWidth + 1;
    const QRectF window = area.adjusted(-reach, -reach, reach, reach);
    QPainterPath within;
    QPointF current;
    bool isConnected = false; // the path so far ends at `current`
    for (int i = 0; i < path.elementCount(); ++i) {
        const QPainterPath::Element element = path.elementAt(i);
        if (element.isMoveTo()) {
            current = element;
            isConnected = false;
            continue;
        }
        const bool isCurve = element.isCurveTo() && i + 2 < path.elementCount();
        const QPointF control2 = isCurve ? QPointF(path.elementAt(i + 1)) : QPointF(element);
        const QPointF end = isCurve ? QPointF(path.elementAt(i + 2)) : QPointF(element);
        if (!meets(window, {current, element, control2, end})) {
            isConnected = false;
        } else {
            if (!isConnected)
                within.moveTo(current);
            isCurve ? within.cubicTo(element, control2, end) : within.lineTo(end);
            isConnected = true;
        }
        current = end;
        i += isCurve ? 2 : 0;
    }
    return within;
}
