#include "ImagePage.h"

#include "ImageKeys.h"
#include "JpegHeader.h"
#include "PackedPicture.h"
#include "PictureFile.h"
#include "PngFile.h"

#include <QBuffer>
#include <QImage>

#include <algorithm>
#include <optional>

namespace {

bool isUsable(const PDFPageGeometry& page) {
    const QRectF media = page.box(PDFDisplayBox::mediaBox);
    return media.width() > 0 && media.height() > 0;
}

/// Empty when `add` adds no page.
template <typename Add>
QByteArray fileOfPage(Add add) {
    QBuffer buffer;
    buffer.open(QIODevice::WriteOnly);
    PictureFile file(buffer);
    if (!add(file))
        return {};
    file.finish();
    return buffer.data();
}

bool isTranslucent(const QImage& image) {
    if (!image.hasAlphaChannel())
        return false;
    const QImage alpha = image.convertToFormat(QImage::Format_Alpha8);
    for (int y = 0; y < alpha.height(); ++y) {
        const uchar* line = alpha.constScanLine(y);
        if (std::any_of(line, line + alpha.width(), [](uchar value) { return value != 255; }))
            return true;
    }
    return false;
}

} // namespace

PDFPageGeometry ImagePage::sized(QSizeF points) {
    PDFPageGeometry page;
    page.boxes.fill({QPointF(), points});
    return page;
}

bool ImagePage::addImage(PictureFile& file, int place, const QImage& image, const PDFPageGeometry& page) {
    if (image.isNull() || !isUsable(page))
        return false;
    std::optional<PictureFile::Image> transparency;
    if (isTranslucent(image))
        transparency = PackedPicture::opacity(image);
    file.addPage(place, page, {}, PackedPicture::of(image), transparency);
    return true;
}

bool ImagePage::addJpeg(PictureFile& file, int place, const QByteArray& jpeg, const PDFPageGeometry& page) {
    const std::optional<JpegHeader> header = JpegHeader::read(jpeg);
    if (!header || !isUsable(page))
        return false;
    const QByteArray colorSpace = header->components == 1   ? "/DeviceGray"
                                  : header->components == 3 ? "/DeviceRGB"
                                                            : "/DeviceCMYK";
    QByteArray keys =
        ImageKeys::of({header->width, header->height}, 8, header->iccProfile.isEmpty() ? colorSpace : QByteArray()) +
        " /Filter /DCTDecode";
    if (header->isInverted)
        keys += " /Decode [1 0 1 0 1 0 1 0]";
    file.addPage(place, page, header->uprightTransform(), {keys, jpeg, header->iccProfile, header->components});
    return true;
}

bool ImagePage::addPng(PictureFile& file, int place, const QByteArray& png, const PDFPageGeometry& page) {
    const std::optional<PngFile> picture = PngFile::read(png);
    if (!picture || !isUsable(page))
        return false;
    const QByteArray plainSpace = picture->components == 1 ? "/DeviceGray" : "/DeviceRGB";
    const QByteArray colorSpace = picture->palette.isEmpty() ? plainSpace : ImageKeys::palette(picture->palette);
    file.addPage(place, page, {},
                 {ImageKeys::of({picture->width, picture->height}, picture->bitDepth, colorSpace) +
                      " /Filter /FlateDecode" +
                      ImageKeys::predictor(picture->width, picture->components, picture->bitDepth),
                  picture->data});
    return true;
}

QByteArray ImagePage::fromImage(const QImage& image, const PDFPageGeometry& page) {
    return fileOfPage([&](PictureFile& file) { return addImage(file, 0, image, page); });
}

QByteArray ImagePage::fromJpeg(const QByteArray& jpeg, const PDFPageGeometry& page) {
    return fileOfPage([&](PictureFile& file) { return addJpeg(file, 0, jpeg, page); });
}
