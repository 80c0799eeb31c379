#pragma once

#include <QColor>
#include <QPainterPath>
#include <QRectF>

#include <memory>
#include <vector>

class PDFAnnotation;

/// The geometry of freehand strokes: how points become a smooth curve, and a curve points again. Points are in page
/// coordinates unless told otherwise.
namespace InkPath {

/// Through the first and the last point, and near the others: each curve leads to the middle between two of them.
/// No points give an empty path.
[[nodiscard]] QPainterPath smoothedPath(const std::vector<QPointF>& points);

/// The points of a path, curves as `samplesPerCurve` (at least 1) points each, or fewer where these would lie closer
/// together than `finestSpacing`.
[[nodiscard]] std::vector<QPointF> flattenedPoints(const QPainterPath& path, int samplesPerCurve,
                                                   double finestSpacing = 0);

/// The bounds of a stroke through `points` (at least one): room for the width of its line, in points, all around.
[[nodiscard]] QRectF boundsOf(const std::vector<QPointF>& points, double lineWidth);

/// The smoothed path relative to the lower left corner of `bounds`, as annotations keep it.
[[nodiscard]] QPainterPath relativePath(const std::vector<QPointF>& points, const QRectF& bounds);

/// A new ink annotation of one stroke through `points`, of which there is at least one.
[[nodiscard]] std::shared_ptr<PDFAnnotation> inkAnnotation(const std::vector<QPointF>& points, const QColor& color,
                                                           double lineWidth);

} // namespace InkPath
