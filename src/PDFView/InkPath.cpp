#include "InkPath.h"

#include "PDFAnnotation.h"
#include "QuilloAssert.h"

#include <algorithm>
#include <cmath>

QPainterPath InkPath::smoothedPath(const std::vector<QPointF>& points) {
    QPainterPath path;
    if (points.empty())
        return path;
    path.reserve(int(points.size()) * 3);
    path.moveTo(points.front());
    for (std::size_t i = 1; i + 1 < points.size(); ++i)
        path.cubicTo(points[i], points[i], (points[i] + points[i + 1]) / 2);
    path.lineTo(points.back());
    return path;
}

/// How many samples a curve gets. The way along its control points is at least as long as the curve.
static int samplesOf(QPointF start, QPointF control1, QPointF control2, QPointF end, int most, double finestSpacing) {
    if (finestSpacing <= 0)
        return most;
    const auto distance = [](QPointF one, QPointF other) {
        return std::hypot(other.x() - one.x(), other.y() - one.y());
    };
    const double length = distance(start, control1) + distance(control1, control2) + distance(control2, end);
    return int(std::clamp(std::ceil(length / finestSpacing), 1.0, double(most)));
}

std::vector<QPointF> InkPath::flattenedPoints(const QPainterPath& path, int samplesPerCurve, double finestSpacing) {
    QUILLO_ASSERT(samplesPerCurve >= 1, "A curve has its end at least.");
    std::vector<QPointF> points;
    QPointF current;
    for (int i = 0; i < path.elementCount(); ++i) {
        const QPainterPath::Element element = path.elementAt(i);
        if (!element.isCurveTo() || i + 2 >= path.elementCount()) {
            current = element;
            points.push_back(current);
            continue;
        }
        const QPointF control1 = element;
        const QPointF control2 = path.elementAt(i + 1);
        const QPointF end = path.elementAt(i + 2);
        const int samples = samplesOf(current, control1, control2, end, samplesPerCurve, finestSpacing);
        for (int sample = 1; sample <= samples; ++sample) {
            const double t = double(sample) / samples;
            const double u = 1 - t;
            points.push_back(u * u * u * current + 3 * u * u * t * control1 + 3 * u * t * t * control2 +
                             t * t * t * end);
        }
        current = end;
        i += 2;
    }
    return points;
}

QRectF InkPath::boundsOf(const std::vector<QPointF>& points, double lineWidth) {
    QUILLO_ASSERT(!points.empty(), "A stroke has a point.");
    const auto [left, right] = std::minmax_element(points.begin(), points.end(),
                                                   [](QPointF one, QPointF other) { return one.x() < other.x(); });
    const auto [low, high] = std::minmax_element(points.begin(), points.end(),
                                                 [](QPointF one, QPointF other) { return one.y() < other.y(); });
    const double pad = lineWidth + 2;
    return {left->x() - pad, low->y() - pad, right->x() - left->x() + 2 * pad, high->y() - low->y() + 2 * pad};
}

QPainterPath InkPath::relativePath(const std::vector<QPointF>& points, const QRectF& bounds) {
    std::vector<QPointF> relative(points.size());
    std::transform(points.begin(), points.end(), relative.begin(),
                   [origin = bounds.topLeft()](QPointF point) { return point - origin; });
    return smoothedPath(relative);
}

std::shared_ptr<PDFAnnotation> InkPath::inkAnnotation(const std::vector<QPointF>& points, const QColor& color,
                                                      double lineWidth) {
    const QRectF bounds = boundsOf(points, lineWidth);
    auto annotation = std::make_shared<PDFAnnotation>(bounds, PDFAnnotationSubtype::ink);
    annotation->setColor(color);
    annotation->setBorder(PDFBorder{lineWidth});
    annotation->add(relativePath(points, bounds));
    return annotation;
}
