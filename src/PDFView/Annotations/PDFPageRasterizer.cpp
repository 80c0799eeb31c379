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

QImage PDFPageRasterizer::render(const PDFPage& page, double scale, const std::function<void(QPainter&)>& overlay) {
    const QRectF mediaBox = page.bounds(PDFDisplayBox::mediaBox);
    if (!(mediaBox.width() > 0 && mediaBox.height() > 0))
        return {};
    const int width = pixelCount(mediaBox.width(), scale);
    const int height = pixelCount(mediaBox.height(), scale);
    if (width < 1 || height < 1 || qint64(width) * height > maximumPixelCount)
        return {};

    QImage image(width, height, QImage::Format_RGBA8888_Premultiplied);
    if (image.isNull())
        return {};
    image.fill(Qt::white);

    QPainter painter(&image);
    painter.setRenderHints(QPainter::Antialiasing | QPainter::TextAntialiasing | QPainter::SmoothPixmapTransform);
    // Page coordinates have their origin at the lower edge: that of the page, which truncation may put a fraction of a
    // pixel below that of the bitmap.
    painter.translate(0, height);
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
