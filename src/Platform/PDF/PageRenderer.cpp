#include "PageRenderer.h"

#include "Engine/CancellationWatch.h"
#include "Engine/PageRecorder.h"
#include "Engine/Rasterizer.h"
#include "PDFSource.h"

namespace {

constexpr int largestSide = 8192;

bool wanted(const std::atomic<bool>* cancelled) {
    return !cancelled || !cancelled->load(std::memory_order_relaxed);
}

} // namespace

QImage PageRenderer::render(const PageRenderRequest& request, const std::atomic<bool>* cancelled) {
    const QSize size = request.deviceRect.size();
    if (!request.content.source || size.isEmpty() || size.width() > largestSide || size.height() > largestSide ||
        !wanted(cancelled))
        return {};
    fz_cookie cookie{};
    const CancellationWatch watch(cancelled, &cookie);
    const auto recorded = PageRecorder::record(
        request.content.source->engine(),
        {request.content.pageNumber, request.annotations, request.hiddenAnnotations, request.imaginedLooks}, &cookie);
    if (!recorded || !wanted(cancelled))
        return {};
    QImage image(size, QImage::Format_RGB32);
    if (image.isNull())
        return {};
    image.fill(Qt::white);
    Rasterizer::replay(*recorded, request.pageToDevice, request.deviceRect.topLeft(), image, &cookie);
    return wanted(cancelled) ? image : QImage();
}
