#pragma once

#include <QRectF>
#include <QTransform>

#include <memory>
#include <vector>

class PDFAnnotation;

/// The annotations that no picture of a page shows: those that are new or were changed.
namespace LiveAnnotations {

/// Those that may be seen within `area` (device pixels), lowest first.
[[nodiscard]] std::vector<std::shared_ptr<PDFAnnotation>>
reaching(const std::vector<std::shared_ptr<PDFAnnotation>>& live, const QTransform& pageToDevice, const QRectF& area);

} // namespace LiveAnnotations
