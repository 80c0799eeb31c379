#pragma once

#include "EngineContext.h"

#include <QImage>

class RecordedPage;

/// Replays a recording into a picture. Any thread.
namespace Rasterizer {

/// Draws over what `image` holds (RGB32 or premultiplied ARGB32). `toDevice` maps page coordinates to device pixels,
/// `origin` is the device pixel of the image's upper left corner. False when the engine gave up on the way.
bool replay(const RecordedPage& page, const QTransform& toDevice, QPoint origin, QImage& image, fz_cookie* cookie);

} // namespace Rasterizer
