#pragma once

#include "AnnotationTool.h"

#include <QCursor>

/// The shape of the pointer over a page. What is drawn here is black with a white halo, so that it shows on any page.
/// Sizes and hot spots are in device-independent pixels; a hot spot is counted from the picture's upper left corner.
/// Nothing is cached. Main thread only, with the application object alive.
namespace ToolCursor {

/// The cursor of a tool on a screen of this ratio.
[[nodiscard]] QCursor cursor(AnnotationTool tool, qreal devicePixelRatio);

/// A symbol in a picture 6 wider and higher than it. An unknown symbol gives the system's arrow.
[[nodiscard]] QCursor symbolBadge(const QString& symbolName, QPoint hotSpot, qreal devicePixelRatio);

/// A letter in the bold system font, in a picture 8 wider and 6 higher than it.
[[nodiscard]] QCursor letterBadge(const QString& letter, QPoint hotSpot, qreal devicePixelRatio);

} // namespace ToolCursor
