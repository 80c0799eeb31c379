#include "ImageOperations.h"

#include <QBuffer>
#include <QSysInfo>

static constexpr int leastInkAlpha = 11;
static constexpr int margin = 6;

/// The place of the alpha byte in the four bytes of a pixel, or none.
static std::optional<int> alphaByte(QImage::Format format) {
    switch (format) {
    case QImage::Format_ARGB32:
    case QImage::Format_ARGB32_Premultiplied:
        return QSysInfo::ByteOrder == QSysInfo::LittleEndian ? 3 : 0;
    case QImage::Format_RGBA8888:
    case QImage::Format_RGBA8888_Premultiplied:
        return 3;
    default:
        return std::nullopt;
    }
}

/// The smallest rectangle around the ink, in pixels; empty when there is none.
static QRect inkBounds(const QImage& image, int alphaByte) {
    QRect bounds;
    for (int y = 0; y < image.height(); ++y) {
        const uchar* alpha = image.constScanLine(y) + alphaByte;
        int first = -1;
        int last = -1;
        for (int x = 0; x < image.width(); ++x) {
            if (alpha[std::ptrdiff_t(4) * x] < leastInkAlpha)
                continue;
            first = first < 0 ? x : first;
            last = x;
        }
        if (first >= 0)
            bounds |= QRect(first, y, last - first + 1, 1);
    }
    return bounds;
}

std::optional<QByteArray> ImageOperations::pngData(const QImage& image) {
    QByteArray data;
    QBuffer buffer(&data);
    if (image.isNull() || !image.save(&buffer, "PNG"))
        return std::nullopt;
    return data;
}

std::optional<QImage> ImageOperations::trimmedToOpaqueContent(const QImage& image) {
    if (image.isNull())
        return std::nullopt;
    const std::optional<int> alpha = alphaByte(image.format());
    if (!alpha)
        return image;
    const QRect ink = inkBounds(image, *alpha);
    if (ink.isEmpty())
        return std::nullopt;
    QImage trimmed = image.copy(ink.adjusted(-margin, -margin, margin, margin) & image.rect());
    trimmed.setDevicePixelRatio(1);
    return trimmed;
}
