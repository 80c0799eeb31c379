#include "ImagePage.h"

#include "JpegHeader.h"
#include "PictureFile.h"

#include <QBuffer>
#include <QColorSpace>
#include <QImage>

#include <algorithm>
#include <optional>

namespace {

QByteArray pageFile(const PDFPageGeometry& page, const QTransform& upright, const PictureFile::Image& picture,
                    const std::optional<PictureFile::Image>& transparency = std::nullopt) {
    QBuffer buffer;
    buffer.open(QIODevice::WriteOnly);
    PictureFile file(buffer);
    file.addPage(0, page, upright, picture, transparency);
    file.finish();
    return buffer.data();
}

bool isUsable(const PDFPageGeometry& page) {
    const QRectF media = page.box(PDFDisplayBox::mediaBox);
    return media.width() > 0 && media.height() > 0;
}

/// Rows of samples, packed; each row says how it differs from the one above, which packs pictures of pages far better.
QByteArray packedRows(const QImage& image, int bytesPerPixel) {
    const qsizetype rowSize = qsizetype(image.width()) * bytesPerPixel;
    QByteArray rows;
    rows.reserve((rowSize + 1) * image.height());
    QByteArray above(rowSize, '\0');
    for (int y = 0; y < image.height(); ++y) {
        const char* line = reinterpret_cast<const char*>(image.constScanLine(y));
        rows += '\x02'; // the predictor "up"
        const qsizetype start = rows.size();
        rows.resize(start + rowSize);
        for (qsizetype i = 0; i < rowSize; ++i)
            rows[start + i] = char(line[i] - above[i]);
        above = QByteArray(line, rowSize);
    }
    return qCompress(rows).mid(4);
}

QByteArray imageKeys(const QImage& image, const char* colorSpace, int components) {
    return "/Type /XObject /Subtype /Image /Width " + QByteArray::number(image.width()) + " /Height " +
           QByteArray::number(image.height()) + " /ColorSpace /" + colorSpace +
           " /BitsPerComponent 8 /Filter /FlateDecode /DecodeParms << /Predictor 15 /Colors " +
           QByteArray::number(components) + " /Columns " + QByteArray::number(image.width()) + " >>";
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

QByteArray ImagePage::fromImage(const QImage& image, const PDFPageGeometry& page) {
    if (image.isNull() || !isUsable(page))
        return {};
    QImage source = image;
    if (source.colorSpace().isValid() && source.colorSpace() != QColorSpace(QColorSpace::SRgb))
        source.convertToColorSpace(QColorSpace::SRgb);
    const bool translucent = isTranslucent(source);
    // Opaque or not, colours are those without the alpha worked in.
    const bool grey = source.isGrayscale();
    const QImage colors = source.convertToFormat(QImage::Format_RGB888);
    const QImage shown = grey ? colors.convertToFormat(QImage::Format_Grayscale8) : colors;
    std::optional<PictureFile::Image> transparency;
    if (translucent) {
        const QImage alpha = source.convertToFormat(QImage::Format_Alpha8);
        transparency = {imageKeys(alpha, "DeviceGray", 1), packedRows(alpha, 1)};
    }
    const int components = grey ? 1 : 3;
    return pageFile(page, {},
                    {imageKeys(shown, grey ? "DeviceGray" : "DeviceRGB", components), packedRows(shown, components)},
                    transparency);
}

bool ImagePage::addJpeg(PictureFile& file, int place, const QByteArray& jpeg, const PDFPageGeometry& page) {
    const std::optional<JpegHeader> header = JpegHeader::read(jpeg);
    if (!header || !isUsable(page))
        return false;
    const char* colorSpace = header->components == 1   ? "DeviceGray"
                             : header->components == 3 ? "DeviceRGB"
                                                       : "DeviceCMYK";
    QByteArray keys = "/Type /XObject /Subtype /Image /Width " + QByteArray::number(header->width) + " /Height " +
                      QByteArray::number(header->height) + " /ColorSpace /" + colorSpace +
                      " /BitsPerComponent 8 /Filter /DCTDecode";
    if (header->isInverted)
        keys += " /Decode [1 0 1 0 1 0 1 0]";
    file.addPage(place, page, header->uprightTransform(), {keys, jpeg});
    return true;
}

QByteArray ImagePage::fromJpeg(const QByteArray& jpeg, const PDFPageGeometry& page) {
    QBuffer buffer;
    buffer.open(QIODevice::WriteOnly);
    PictureFile file(buffer);
    if (!addJpeg(file, 0, jpeg, page))
        return {};
    file.finish();
    return buffer.data();
}
