#include "FileAppearance.h"

#include "AnnotationReader.h"
#include "FormFieldValues.h"
#include "PDFAnnotation.h"
#include "PDFSource.h"
#include "PageRecorder.h"
#include "Rasterizer.h"

#include <QPainter>

#include <cmath>

namespace {

/// Enough for a page-wide stamp on a dense screen.
constexpr double largestSide = 4096;

/// Draws a recording that fills `inFile` of its page into the annotation's present bounds, at the painter's own
/// resolution and upright in page coordinates.
void drawRecording(const RecordedPage& recorded, const QRectF& inFile, const QRectF& bounds, QPainter& painter) {
    const QTransform device = painter.deviceTransform();
    const double scale = std::max(1.0, std::sqrt(std::fabs(device.determinant())));
    const QSizeF pixels = bounds.size() * std::min(scale, largestSide / std::max(bounds.width(), bounds.height()));
    QImage image(pixels.toSize().expandedTo(QSize(1, 1)), QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    const double sx = image.width() / inFile.width();
    const double sy = image.height() / inFile.height();
    const QTransform toImage(sx, 0, 0, -sy, -inFile.left() * sx, inFile.bottom() * sy);
    Rasterizer::replay(recorded, toImage, QPoint(0, 0), image, nullptr);
    painter.save();
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    painter.translate(bounds.left(), bounds.bottom());
    painter.scale(1, -1);
    painter.drawImage(QRectF(QPointF(0, 0), bounds.size()), image);
    painter.restore();
}

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
    // The frame of a link stands on the edges of its bounds.
    const bool isLink = annotation.type() == PDFAnnotationSubtype::link;
    const double edge = isLink ? annotation.border().value_or(PDFBorder()).lineWidth / 2 : 0;
    drawRecording(*recorded, inFile.adjusted(-edge, -edge, edge, edge),
                  annotation.bounds().adjusted(-edge, -edge, edge, edge), painter);
}

bool drawFileState(const PDFAnnotation& annotation, QPainter& painter) {
    const PDFAnnotationValues& values = annotation.values();
    if (values.field.type != PDFWidgetFieldType::button || values.field.control == PDFWidgetControlType::pushButton ||
        !annotation.origin() || !values.field.inFile || !values.field.inFile->hasStateLooks || values.bounds.isEmpty())
        return false;
    const PDFAnnotationOrigin& origin = *annotation.origin();
    SourceEngine& engine = origin.content.source->engine();
    const bool on = values.field.state == PDFWidgetCellState::on;
    const QByteArray state = on ? values.field.inFile->onState.toUtf8() : QByteArray("Off");
    const QRectF inFile = AnnotationReader::bounds(engine, origin.content.pageNumber, origin.index);
    const auto recorded = PageRecorder::recordState(engine, origin.content.pageNumber, origin.index, state);
    if (recorded && !inFile.isEmpty())
        drawRecording(*recorded, inFile, values.bounds, painter);
    return recorded || !on;
}
