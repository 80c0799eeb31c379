#include "Engine/FileAppearance.h"

#include "Engine/AnnotationReader.h"
#include "Engine/PageRecorder.h"
#include "Engine/Rasterizer.h"
#include "PDFAnnotation.h"
#include "PDFSource.h"

#include <QPainter>

namespace {

/// Enough for a page-wide stamp on a dense screen.
constexpr double largestSide = 4096;

} // namespace

void drawFileAppearance(const PDFAnnotation& annotation, QPainter& painter) {
    if (!annotation.origin() || !annotation.origin()->content.source || annotation.bounds().isEmpty())
        return;
    const PDFAnnotationOrigin& origin = *annotation.origin();
    SourceEngine& engine = origin.content.source->engine();
    const QRectF inFile = AnnotationReader::bounds(engine, origin.content.pageNumber, origin.index);
    const auto recorded = PageRecorder::recordAnnotation(engine, origin.content.pageNumber, origin.index);
    if (!recorded || inFile.isEmpty())
        return;
    // Drawn at the painter's own resolution, upright in page coordinates.
    const QRectF bounds = annotation.bounds();
    const QTransform device = painter.deviceTransform();
    const double scale = std::max(1.0, std::sqrt(std::fabs(device.determinant())));
    const QSizeF pixels = bounds.size() * std::min(scale, largestSide / std::max(bounds.width(), bounds.height()));
    QImage image(pixels.toSize().expandedTo(QSize(1, 1)), QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    const double sx = image.width() / inFile.width();
    const double sy = image.height() / inFile.height();
    const QTransform toImage(sx, 0, 0, -sy, -inFile.left() * sx, inFile.bottom() * sy);
    Rasterizer::replay(*recorded, toImage, QPoint(0, 0), image, nullptr);
    painter.save();
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    painter.translate(bounds.left(), bounds.bottom());
    painter.scale(1, -1);
    painter.drawImage(QRectF(QPointF(0, 0), bounds.size()), image);
    painter.restore();
}
