#pragma once

#include <QPainterPath>
#include <QPolygonF>

/// The outline of a cloud around an area.
namespace CloudPath {

/// How far the arcs along a border of that cloudiness reach outwards, in points.
[[nodiscard]] double reach(double cloudiness);

/// Arcs along the edges of a closed polygon, which bulge outwards by `reach` points. An edge has one at least; a path
/// of many thousands of arcs is left as it is.
[[nodiscard]] QPainterPath around(const QPolygonF& outline, double reach);

/// The corners of a polygon for `around` in place of an ellipse.
[[nodiscard]] QPolygonF ellipse(const QRectF& box, double reach);

} // namespace CloudPath
