#pragma once

#include <QPainterPath>
#include <QPointF>

#include <vector>

/// Curves as points, for files and measurements that know straight lines only.
namespace PathFlattening {

/// The points of each stroke of the path, in the path's own coordinates. A curve becomes `mostPerCurve` (at least 1)
/// points, or fewer where these would lie closer together than `finestSpacing`; 0 sets no such limit.
[[nodiscard]] std::vector<std::vector<QPointF>> strokes(const QPainterPath& path, int mostPerCurve,
                                                        double finestSpacing);

} // namespace PathFlattening
