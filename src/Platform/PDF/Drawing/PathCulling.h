#pragma once

#include <QPainterPath>
#include <QRectF>

/// Long strokes in small windows.
namespace PathCulling {

/// A path whose stroke of `lineWidth` looks within `area` as that of `path` does, but without the pieces that lie
/// elsewhere. Not for dashes, which count from the start, and not for filling.
[[nodiscard]] QPainterPath strokeWithin(const QPainterPath& path, const QRectF& area, double lineWidth);

} // namespace PathCulling
