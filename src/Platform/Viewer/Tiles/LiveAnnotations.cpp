#include "LiveAnnotations.h"

#include "PDFAnnotation.h"

#include <QPainter>

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

void LiveAnnotations::draw(const std::vector<std::shared_ptr<PDFAnnotation>>& annotations, PDFDisplayBox box,
                           QPainter& painter) {
    for (const std::shared_ptr<PDFAnnotation>& annotation : annotations) {
        painter.save();
        painter.setRenderHint(QPainter::Antialiasing);
        annotation->draw(box, painter);
        painter.restore();
    }
}
