#include "CloudPath.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace {

constexpr double reachOfOne = 4; // points
constexpr double mostArcs = 5000;

/// Twice the area, above zero for an outline that runs anticlockwise where y goes up.
double turnOf(const QPolygonF& outline) {
    double sum = 0;
    for (qsizetype i = 0; i < outline.size(); ++i) {
        const QPointF& a = outline[i];
        const QPointF& b = outline[(i + 1) % outline.size()];
        sum += a.x() * b.y() - b.x() * a.y();
    }
    return sum;
}

} // namespace

double CloudPath::reach(double cloudiness) {
    return reachOfOne * cloudiness;
}

QPainterPath CloudPath::around(const QPolygonF& outline, double reach) {
    QPainterPath path;
    path.addPolygon(outline);
    path.closeSubpath();
    path.setFillRule(Qt::WindingFill);
    const double chord = 2 * reach;
    if (!(chord > 0) || outline.size() < 3 || !(path.length() / chord < mostArcs))
        return path;
    QPainterPath cloud(outline.first());
    const double side = turnOf(outline) > 0 ? 1 : -1;
    for (qsizetype i = 0; i < outline.size(); ++i) {
        const QPointF from = outline[i];
        const QPointF run = outline[(i + 1) % outline.size()] - from;
        const double length = std::hypot(run.x(), run.y());
        if (!(length > 0))
            continue;
        const int count = std::max(1, int(std::lround(length / chord)));
        // Control points at 4/3 of the height make a curve of that height.
        const QPointF out = QPointF(run.y(), -run.x()) / length * side * reach * 4 / 3;
        for (int arc = 0; arc < count; ++arc) {
            const QPointF a = from + run * arc / count;
            const QPointF b = from + run * (arc + 1) / count;
            cloud.cubicTo(a + out, b + out, b);
        }
    }
    cloud.closeSubpath();
    cloud.setFillRule(Qt::WindingFill);
    return cloud;
}

QPolygonF CloudPath::ellipse(const QRectF& box, double reach) {
    const double length = std::numbers::pi * (box.width() + box.height()) / 2;
    const int count = int(std::clamp(length / std::max(2 * reach, 0.1), 8.0, mostArcs));
    QPolygonF corners;
    for (int i = 0; i < count; ++i) {
        const double angle = 2 * std::numbers::pi * i / count;
        corners.append(box.center() + QPointF(std::cos(angle) * box.width(), std::sin(angle) * box.height()) / 2);
    }
    return corners;
}
