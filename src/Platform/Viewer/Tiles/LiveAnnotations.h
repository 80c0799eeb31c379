#pragma once

#include "PDFTypes.h"

#include <QRectF>
#include <QTransform>

#include <memory>
#include <vector>

class PDFAnnotation;
class QPainter;

/// Drawing of the annotations that no picture of a page shows: those that are new or were changed.
namespace LiveAnnotations {

/// Those that may be seen within `area` (device pixels), lowest first.
[[nodiscard]] std::vector<std::shared_ptr<PDFAnnotation>>
reaching(const std::vector<std::shared_ptr<PDFAnnotation>>& live, const QTransform& pageToDevice, const QRectF& area);

/// With a painter that is set to page coordinates, and clipped to what is wanted.
void draw(const std::vector<std::shared_ptr<PDFAnnotation>>& annotations, PDFDisplayBox box, QPainter& painter);

} // namespace LiveAnnotations
