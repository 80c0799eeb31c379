#include "PicturePages.h"

#include "HeicPicture.h"
#include "Logging.h"
#include "PDFPageGeometry.h"
#include "PDFPictureWriter.h"

#include <QBuffer>
#include <QFile>
#include <QImage>
#include <QImageIOHandler>
#include <QImageReader>
#include <QPainter>

#include <algorithm>
#include <cmath>
#include <exception>
#include <optional>

namespace {

// Pixels. Those of a JPEG are drawn as coarsely as the screen needs them; of others all are unpacked.
constexpr qint64 mostOfJpeg = 220'000'000;
constexpr qint64 mostOfOthers = 128'000'000;

constexpr qint64 mostBytes = 1LL << 30;
constexpr int mostMegabytes = 700; // of pixels while they are read

/// Qt's name of what the bytes are; "heic" for what it has no reader for, empty for what is none of these.
QByteArray formatOf(const QByteArray& bytes) {
    if (bytes.startsWith("\xFF\xD8\xFF"))
        return "jpeg";
    if (bytes.startsWith("\x89PNG"))
        return "png";
    if (bytes.startsWith("GIF8"))
        return "gif";
    if (bytes.startsWith("BM"))
        return "bmp";
    if (bytes.startsWith(QByteArray("II*\0", 4)) || bytes.startsWith(QByteArray("MM\0*", 4)))
        return "tiff";
    return HeicPicture::isOne(bytes) ? "heic" : "";
}

/// All pixels; of a JPEG as few as show that it can be read. Null when it can't, or is too large.
QImage readByQt(const QByteArray& bytes, const QByteArray& format, bool coarsely) {
    constexpr int coarseness = 8; // what a JPEG can be read with at once
    QBuffer buffer;
    buffer.setData(bytes);
    QImageReader reader(&buffer, format);
    reader.setAutoDetectImageFormat(false);
    reader.setAutoTransform(true);
    const QSize size = reader.size();
    if (size.isEmpty() || qint64(size.width()) * size.height() > (coarsely ? mostOfJpeg : mostOfOthers))
        return {};
    if (coarsely)
        reader.setScaledSize((size / coarseness).expandedTo({1, 1}));
    QImage image = reader.read();
    if (reader.transformation().testFlag(QImageIOHandler::TransformationRotate90)) { // of the stored picture until here
        const int ofColumns = image.dotsPerMeterX();
        image.setDotsPerMeterX(image.dotsPerMeterY());
        image.setDotsPerMeterY(ofColumns);
    }
    return image;
}

/// Changes what isn't opaque only.
QImage onWhite(QImage image) {
    if (!image.hasAlphaChannel())
        return image;
    if (image.colorCount() > 0) {
        QList<QRgb> colors = image.colorTable();
        const auto blend = [](int part, int alpha) { return (part * alpha + 255 * (255 - alpha) + 127) / 255; };
        for (QRgb& color : colors) {
            const int alpha = qAlpha(color);
            color = qRgb(blend(qRed(color), alpha), blend(qGreen(color), alpha), blend(qBlue(color), alpha));
        }
        image.setColorTable(colors);
        return image;
    }
    image.convertTo(QImage::Format_ARGB32_Premultiplied);
    QPainter painter(&image);
    painter.setCompositionMode(QPainter::CompositionMode_DestinationOver);
    painter.fillRect(image.rect(), Qt::white);
    painter.end();
    image.reinterpretAsFormat(QImage::Format_RGB32);
    return image;
}

/// Whether it is beyond a screen's, whose pixels are points, and not absurd.
bool isOfPaper(QSizeF density) {
    constexpr double densestScreen = 100;
    constexpr double densest = 4800;
    const auto [low, high] = std::minmax({density.width(), density.height()});
    return low > 0 && high > densestScreen && high <= densest;
}

/// Pixels for an inch of an upright picture; empty where its file doesn't tell, or of a screen.
QSizeF densityOf(const QImage& image, const QByteArray& bytes) {
    constexpr double metersPerInch = 0.0254;
    QSizeF density = QSizeF(image.dotsPerMeterX(), image.dotsPerMeterY()) * metersPerInch;
    if (!isOfPaper(density))
        density = PDFPictureWriter::exifDensity(bytes);
    if (!isOfPaper(density))
        return {};
    constexpr double rounding = 0.05; // files with whole dots for a meter mean whole ones for an inch
    for (double* side : {&density.rwidth(), &density.rheight()})
        if (std::abs(*side - std::round(*side)) < rounding)
            *side = std::round(*side);
    return density;
}

PDFPageGeometry pageFor(QSizeF pixels, QSizeF density) {
    constexpr double pointsPerInch = 72;
    constexpr double shortestSide = 3; // points; of less, no page can be read
    QSizeF size = pixels;
    if (!density.isEmpty()) {
        size = {pixels.width() * pointsPerInch / density.width(), pixels.height() * pointsPerInch / density.height()};
        if (std::min(size.width(), size.height()) < shortestSide)
            size = pixels;
    }
    const double longest = std::max(size.width(), size.height());
    PDFPageGeometry page;
    page.boxes.fill({QPointF(), size * std::min(1.0, PicturePages::longestSide / longest)});
    return page;
}

bool writePage(const QByteArray& bytes, QIODevice& device) {
    const QByteArray format = formatOf(bytes);
    const bool isJpeg = format == "jpeg";
    // What can stay as it is, is read too: bytes that only begin like a picture are none.
    const std::optional<QSize> asItIs = PDFPictureWriter::uprightSize(bytes);
    const QImage image = format.isEmpty()   ? QImage()
                         : format == "heic" ? HeicPicture::read(bytes, mostOfOthers)
                                            : readByQt(bytes, format, isJpeg && asItIs);
    if (image.isNull())
        return false;
    PDFPictureWriter writer(device);
    const PDFPageGeometry page = pageFor(asItIs.value_or(image.size()), densityOf(image, bytes));
    const bool isAdded = asItIs ? writer.addPage(0, bytes, page) : writer.addPage(0, onWhite(image), page);
    if (isAdded)
        writer.finish();
    return isAdded;
}

} // namespace

bool PicturePages::write(const QString& source, const QString& destination) {
    QImageReader::setAllocationLimit(mostMegabytes);
    QFile from(source);
    if (!from.open(QIODevice::ReadOnly) || from.size() > mostBytes)
        return false;
    QFile to(destination);
    if (!to.open(QIODevice::WriteOnly | QIODevice::NewOnly))
        return false;
    bool isDone = false;
    try {
        isDone = writePage(from.readAll(), to) && to.flush() && to.error() == QFile::NoError;
    } catch (const std::exception& error) {
        qCWarning(Logging::document) << "making a page of a picture failed:" << Logging::causes(error);
    }
    if (!isDone)
        to.remove();
    return isDone;
}
