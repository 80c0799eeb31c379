#include "LiveAnnotations.h"

#include "PDFAnnotation.h"

#include <algorithm>

std::vector<std::shared_ptr<PDFAnnotation>>
LiveAnnotations::reaching(const std::vector<std::shared_ptr<PDFAnnotation>>& live, const QTransform& pageToDevice,
                          const QRectF& area) {
    std::vector<std::shared_ptr<PDFAnnotation>> reached;
    std::copy_if(live.begin(), live.end(), std::back_inserter(reached), [&](const auto& annotation) {
        return annotation->shouldDisplay() && pageToDevice.mapRect(annotation->drawnArea()).intersects(area);
    });
    return reached;
}
