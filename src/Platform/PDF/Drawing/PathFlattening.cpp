#include "PathFlattening.h"

#include <algorithm>
#include <cmath>

namespace {

/// How many points a curve gets. The way along its control points is at least as long as the curve.
int pointCount(QPointF from, QPointF control1, QPointF control2, QPointF to, int most, double finestSpacing) {
    if (finestSpacing <= 0)
        return most;
    const auto distance = [](QPointF a, QPointF b) { return std::hypot(b.x() - a.x(), b.y() - a.y()); };
    const double length = distance(from, control1) + distance(control1, control2) + distance(control2, to);
    return int(std::clamp(std::ceil(length / finestSpacing), 1.0, double(most)));
}

} // namespace

std::vector<std::vector<QPointF>> PathFlattening::strokes(const QPainterPath& path, int mostPerCurve,
                                                          double finestSpacing) {
    std::vector<std::vector<QPointF>> strokes;
    for (int i = 0; i < path.elementCount(); ++i) {
        const QPainterPath::Element element = path.elementAt(i);
        if (element.isMoveTo() || strokes.empty())
            strokes.emplace_back();
        std::vector<QPointF>& points = strokes.back();
        if (!element.isCurveTo() || i + 2 >= path.elementCount() || points.empty()) {
            points.push_back(element);
            continue;
        }
        const QPointF from = points.back();
        const QPointF control1 = element;
        const QPointF control2 = path.elementAt(i + 1);
        const QPointF to = path.elementAt(i + 2);
        const int count = pointCount(from, control1, control2, to, mostPerCurve, finestSpacing);
        for (int piece = 1; piece <= count; ++piece) {
            const double t = double(piece) / count;
            const double s = 1 - t;
            points.push_back(s * s * s * from + 3 * s * s * t * control1 + 3 * s * t * t * control2 + t * t * t * to);
        }
        i += 2;
    }
    return strokes;
}
