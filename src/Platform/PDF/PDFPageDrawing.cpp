// The part of PDFPage that draws.

#include "PDFAnnotation.h"
#include "PDFPage.h"
#include "PageRenderer.h"

#include <QPainter>

#include <cmath>

namespace {

/// One request's side in pixels; larger pages are drawn piece by piece.
constexpr int pieceSide = 4096;

} // namespace

void PDFPage::draw(PDFDisplayBox box, QPainter& painter) const {
    const QRectF area = bounds(box);
    const double scale = std::sqrt(std::fabs(painter.deviceTransform().determinant()));
    const QSizeF pixels = area.size() * scale;
    if (!(scale > 0) || pixels.width() > 1e6 || pixels.height() > 1e6)
        return;
    const QTransform toDevice(scale, 0, 0, -scale, -area.left() * scale, area.bottom() * scale);
    const int width = std::max(1, int(std::ceil(pixels.width())));
    const int height = std::max(1, int(std::ceil(pixels.height())));
    painter.save();
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    painter.translate(0, area.height());
    painter.scale(1 / scale, -1 / scale);
    for (int y = 0; y < height; y += pieceSide) {
        for (int x = 0; x < width; x += pieceSide) {
            const QRect piece(x, y, std::min(pieceSide, width - x), std::min(pieceSide, height - y));
            const QImage image = PageRenderer::render({m_content, hiddenFileAnnotations(), true, toDevice, piece});
            painter.drawImage(piece.topLeft(), image);
        }
    }
    painter.restore();
    painter.save();
    painter.translate(-area.topLeft());
    PDFAnnotation::drawAll(liveAnnotations(), box, painter);
    painter.restore();
}

QImage PDFPage::thumbnail(QSize size, PDFDisplayBox box) const {
    const QSizeF shown = displaySize(box);
    const QSize pixels = shown.scaled(size, Qt::KeepAspectRatio).toSize().expandedTo(QSize(1, 1));
    if (size.isEmpty() || pixels.width() > pieceSide * 2 || pixels.height() > pieceSide * 2)
        return {};
    const QTransform toDevice =
        displayTransform(box) * QTransform::fromScale(pixels.width() / shown.width(), pixels.height() / shown.height());
    QImage image =
        PageRenderer::render({m_content, hiddenFileAnnotations(), true, toDevice, QRect(QPoint(0, 0), pixels)});
    if (image.isNull())
        return image;
    QPainter painter(&image);
    painter.setTransform(toDevice);
    PDFAnnotation::drawAll(liveAnnotations(), box, painter);
    return image;
}
