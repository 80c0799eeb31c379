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
    painter.setTransform(request.pageToDevice *
                         QTransform::fromTranslate(-request.deviceRect.x(), -request.deviceRect.y()));
    for (auto& [place, read] : values) {
        if (!wanted(cancelled))
            return;
        const PDFAnnotationOrigin origin{request.content, place};
        const auto annotation = std::make_shared<PDFAnnotation>(std::move(read), origin);
        if (annotation->shouldDisplay() && annotation->drawsItself())
            PDFAnnotation::drawAll({&annotation, 1}, PDFDisplayBox::cropBox, painter);
    }
}

} // namespace

QImage PageRenderer::render(const PageRenderRequest& request, const std::atomic<bool>* cancelled) {
    const QSize size = request.deviceRect.size();
    if (!request.content.source || size.isEmpty() || size.width() > largestSide || size.height() > largestSide ||
        !wanted(cancelled))
        return {};
    SourceEngine& engine = request.content.source->engine();
    const auto recorded = PageRecorder::record(
        engine, {request.content.pageNumber, request.annotations, request.hiddenAnnotations}, cancelled);
    if (!recorded || !wanted(cancelled))
        return {};
    QImage image(size, QImage::Format_RGB32);
    if (image.isNull())
        return {};
    image.fill(Qt::white);
    fz_cookie cookie{};
    const CancellationWatch watch(cancelled, &cookie);
    Rasterizer::replay(*recorded, request.pageToDevice, request.deviceRect.topLeft(), image, &cookie);
    if (request.bareAnnotations && engine.hasBareAnnotations(request.content.pageNumber))
        drawBareAnnotations(request, image, cancelled);
    return wanted(cancelled) ? image : QImage();
}
