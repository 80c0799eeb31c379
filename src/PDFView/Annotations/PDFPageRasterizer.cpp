#include "PDFPageRasterizer.h"

#include "PDFPage.h"

#include <QPainter>

/// The side of the bitmap in pixels, or 0 when it can't be one. Written so that a NaN gives 0 too.
static int pixelCount(double length, double scale) {
    // QPainter reaches no farther than a 16-bit device coordinate.
    constexpr double maximumSide = 32767;
    const double pixels = length * scale;
    return pixels >= 1 && pixels <= maximumSide ? static_cast<int>(pixels) : 0;
}

QSize PDFPageRasterizer::pixelSize(const QRectF& mediaBox, double scale) {
    const QSize size(pixelCount(mediaBox.width(), scale), pixelCount(mediaBox.height(), scale));
    return size.isEmpty() || qint64(size.width()) * size.height() > maximumPixelCount ? QSize() : size;
}

QImage PDFPageRasterizer::render(const PDFPage& page, double scale, const std::function<void(QPainter&)>& overlay) {
    const QRectF mediaBox = page.bounds(PDFDisplayBox::mediaBox);
    const QSize size = pixelSize(mediaBox, scale);
    if (size.isEmpty())
        return {};
    QImage image(size, QImage::Format_RGBA8888_Premultiplied);
    if (image.isNull())
        return {};
    image.fill(Qt::white);

    QPainter painter(&image);
    painter.setRenderHints(QPainter::Antialiasing | QPainter::TextAntialiasing | QPainter::SmoothPixmapTransform);
    // Page coordinates have their origin at the lower edge: that of the page, which truncation may put a fraction of a
    // pixel below that of the bitmap.
    painter.translate(0, size.height());
    painter.scale(scale, -scale);
    painter.save();
    page.draw(PDFDisplayBox::mediaBox, painter);
    painter.restore();
    painter.translate(-mediaBox.topLeft());
    if (overlay)
        overlay(painter);
    painter.end();
    return image;
}
