#include "InkPath.h"

#include "PDFAnnotation.h"
#include "PathFlattening.h"
#include "QuilloAssert.h"

#include <algorithm>

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

std::vector<QPointF> InkPath::flattenedPoints(const QPainterPath& path, int samplesPerCurve, double finestSpacing) {
    QUILLO_ASSERT(samplesPerCurve >= 1, "A curve has its end at least.");
    std::vector<QPointF> points;
    for (const std::vector<QPointF>& stroke : PathFlattening::strokes(path, samplesPerCurve, finestSpacing))
        points.insert(points.end(), stroke.begin(), stroke.end());
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
