#include "PageRenderer.h"

#include "AnnotationReader.h"
#include "CancellationWatch.h"
#include "PDFAnnotation.h"
#include "PDFSource.h"
#include "PageRecorder.h"
#include "Rasterizer.h"

#include <QPainter>

namespace {

constexpr int largestSide = 8192;

bool wanted(const std::atomic<bool>* cancelled) {
    return !cancelled || !cancelled->load(std::memory_order_relaxed);
}

void drawBareAnnotations(const PageRenderRequest& request, QImage& image, const std::atomic<bool>* cancelled) {
    auto values = AnnotationReader::read(request.content.source->engine(), request.content.pageNumber);
    QPainter painter(&image);
    for (std::size_t i = 0; i < values.size() && wanted(cancelled); ++i) {
        if (!values[i])
            continue;
        const PDFAnnotation annotation(std::move(*values[i]), {request.content, int(i)});
        if (!annotation.shouldDisplay() || !annotation.drawsItself())
            continue;
        painter.save();
        painter.setTransform(request.pageToDevice *
                             QTransform::fromTranslate(-request.deviceRect.x(), -request.deviceRect.y()));
        painter.setRenderHint(QPainter::Antialiasing);
        annotation.draw(PDFDisplayBox::cropBox, painter);
        painter.restore();
    }
}

} // namespace

QImage PageRenderer::render(const PageRenderRequest& request, const std::atomic<bool>* cancelled) {
    const QSize size = request.deviceRect.size();
    if (!request.content.source || size.isEmpty() || size.width() > largestSide || size.height() > largestSide ||
        !wanted(cancelled))
        return {};
    fz_cookie cookie{};
    const CancellationWatch watch(cancelled, &cookie);
    SourceEngine& engine = request.content.source->engine();
    const auto recorded = PageRecorder::record(
        engine, {request.content.pageNumber, request.annotations, request.hiddenAnnotations}, &cookie);
    if (!recorded || !wanted(cancelled))
        return {};
    QImage image(size, QImage::Format_RGB32);
    if (image.isNull())
        return {};
    image.fill(Qt::white);
    Rasterizer::replay(*recorded, request.pageToDevice, request.deviceRect.topLeft(), image, &cookie);
    if (request.bareAnnotations && engine.hasBareAnnotations(request.content.pageNumber))
        drawBareAnnotations(request, image, cancelled);
    return wanted(cancelled) ? image : QImage();
}
