#include "PagePicture.h"

#include "GrayPicture.h"
#include "PDFAnnotation.h"
#include "PDFPage.h"

#include <QPainter>

#include <algorithm>

static constexpr PDFDisplayBox shownBox = PDFDisplayBox::cropBox;

// The topmost ones. More would take longer of the main thread than a small picture is worth.
static constexpr std::size_t maximumAnnotationCount = 500;

/// The same picture in as few bytes as it takes: hundreds are kept.
static QImage compact(const QImage& image) {
    const QImage gray = GrayPicture::of(image);
    return gray.isNull() ? image.convertToFormat(QImage::Format_RGB888) : gray;
}

PagePicture::PagePicture(const PDFPage& page, QSize size) {
    const QSizeF shown = page.displaySize(shownBox);
    const QSize pixels = shown.scaled(size, Qt::KeepAspectRatio).toSize().expandedTo(QSize(1, 1));
    m_request.content = page.content();
    m_request.hiddenAnnotations = page.hiddenFileAnnotations();
    m_request.pageToDevice = page.displayTransform(shownBox) *
                             QTransform::fromScale(pixels.width() / shown.width(), pixels.height() / shown.height());
    m_request.deviceRect = QRect(QPoint(0, 0), pixels);

    QPainter recorder(&m_liveAnnotations);
    const auto annotations = page.liveAnnotations();
    const std::size_t first = annotations.size() - std::min(annotations.size(), maximumAnnotationCount);
    PDFAnnotation::drawAll(std::span(annotations).subspan(first), shownBox, recorder);
}

QImage PagePicture::image(const std::atomic<bool>& cancelled) const {
    QImage image = PageRenderer::render(m_request, &cancelled);
    if (image.isNull())
        return image;
    QPainter painter(&image);
    painter.setTransform(m_request.pageToDevice);
    painter.drawPicture(0, 0, m_liveAnnotations);
    painter.end();
    return compact(image);
}
