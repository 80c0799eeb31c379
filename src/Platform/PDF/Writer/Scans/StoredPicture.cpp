#include "StoredPicture.h"

#include "FaxCoder.h"
#include "PackedStream.h"

#include <QBuffer>
#include <QImageWriter>

#include <algorithm>
#include <optional>
#include <unordered_map>
#include <vector>

namespace {

/// An image's bytes with the keys that tell how to read them.
struct Packed {
    QByteArray keys;
    QByteArray bytes;
};

QByteArray rowsOf(const QImage& image, qsizetype rowSize) {
    QByteArray rows;
    rows.reserve(rowSize * image.height());
    for (int y = 0; y < image.height(); ++y)
        rows.append(reinterpret_cast<const char*>(image.constScanLine(y)), rowSize);
    return rows;
}

/// Each row says how it differs from the one above: the better for photographs and shades, the worse for text.
QByteArray differences(const QByteArray& rows, qsizetype rowSize) {
    QByteArray all;
    all.reserve(rows.size() + rows.size() / rowSize);
    for (qsizetype at = 0; at < rows.size(); at += rowSize) {
        all += '\x02'; // the predictor "up"
        for (qsizetype i = at; i < at + rowSize; ++i)
            all += char(rows[i] - (at > 0 ? rows[i - rowSize] : '\0'));
    }
    return all;
}

Packed flate(const QByteArray& colorSpace, int bits, const QByteArray& rows) {
    return {"/ColorSpace " + colorSpace + " /BitsPerComponent " + QByteArray::number(bits) + " /Filter /FlateDecode",
            PackedStream::deflated(rows)};
}

Packed jpeg(const QImage& image) {
    constexpr int quality = 92;
    QByteArray bytes;
    QBuffer buffer(&bytes);
    QImageWriter writer(&buffer, "jpeg");
    writer.setQuality(quality);
    if (!writer.write(image))
        return {};
    return {QByteArray("/ColorSpace ") + (image.isGrayscale() ? "/DeviceGray" : "/DeviceRGB") +
                " /BitsPerComponent 8 /Filter /DCTDecode",
            bytes};
}

/// Rows of whole bytes, `components` for a pixel.
Packed samples(const QImage& image, const QByteArray& colorSpace, int components) {
    constexpr qsizetype worthwhile = qsizetype(100) * 1024; // below it a page is small enough as it is
    constexpr int muchLarger = 2;
    const qsizetype rowSize = qsizetype(image.width()) * components;
    const QByteArray rows = rowsOf(image, rowSize);
    const QByteArray changes = differences(rows, rowSize);
    const qsizetype sizeOfRows = PackedStream::deflated(rows, PackedStream::Packing::quick).size();
    const qsizetype sizeOfChanges = PackedStream::deflated(changes, PackedStream::Packing::quick).size();
    const qsizetype smaller = std::min(sizeOfRows, sizeOfChanges);
    if (smaller > worthwhile)
        if (Packed photograph = jpeg(image);
            !photograph.bytes.isEmpty() && photograph.bytes.size() * muchLarger < smaller)
            return photograph;
    if (sizeOfRows <= sizeOfChanges)
        return flate(colorSpace, 8, rows);
    Packed packed = flate(colorSpace, 8, changes);
    packed.keys += " /DecodeParms << /Predictor 15 /Colors " + QByteArray::number(components) + " /Columns " +
                   QByteArray::number(image.width()) + " >>";
    return packed;
}

Packed faxed(const QByteArray& rows, QSize size) {
    return {"/ColorSpace /DeviceGray /BitsPerComponent 1 /Filter /CCITTFaxDecode /DecodeParms << /K -1 /Columns " +
                QByteArray::number(size.width()) + " /Rows " + QByteArray::number(size.height()) + " >>",
            FaxCoder::encoded(rows, size)};
}

bool isBilevel(const QImage& gray) {
    for (int y = 0; y < gray.height(); ++y) {
        const uchar* line = gray.constScanLine(y);
        if (std::any_of(line, line + gray.width(), [](uchar value) { return value != 0 && value != 255; }))
            return false;
    }
    return true;
}

/// One bit for a pixel, 1 for white.
Packed bilevel(const QImage& gray) {
    const qsizetype rowSize = (qsizetype(gray.width()) + 7) / 8;
    QByteArray rows(rowSize * gray.height(), '\0');
    for (int y = 0; y < gray.height(); ++y) {
        const uchar* line = gray.constScanLine(y);
        char* row = rows.data() + y * rowSize;
        for (int x = 0; x < gray.width(); ++x)
            if (line[x] != 0)
                row[x / 8] = char(row[x / 8] | 0x80 >> x % 8);
    }
    Packed plain = flate("/DeviceGray", 1, rows);
    Packed fax = faxed(rows, gray.size());
    return fax.bytes.isEmpty() || plain.bytes.size() < fax.bytes.size() ? plain : fax;
}

/// The picture by the numbers of its colours; none when they are more than a byte can count.
std::optional<Packed> palette(const QImage& colors) {
    constexpr std::size_t mostColors = 256;
    std::unordered_map<QRgb, int> numbers;
    QByteArray table;
    QByteArray rows;
    rows.reserve(qsizetype(colors.width()) * colors.height());
    QRgb last = 0;
    int number = -1;
    for (int y = 0; y < colors.height(); ++y) {
        const QRgb* line = reinterpret_cast<const QRgb*>(colors.constScanLine(y));
        for (int x = 0; x < colors.width(); ++x) {
            if (number < 0 || line[x] != last) {
                last = line[x];
                const auto [place, isNew] = numbers.try_emplace(last, int(numbers.size()));
                number = place->second;
                if (numbers.size() > mostColors)
                    return std::nullopt;
                if (isNew)
                    for (const int part : {qRed(last), qGreen(last), qBlue(last)})
                        table += char(part);
            }
            rows += char(number);
        }
    }
    return flate("[/Indexed /DeviceRGB " + QByteArray::number(qulonglong(numbers.size() - 1)) + " <" + table.toHex() +
                     ">]",
                 8, rows);
}

Packed smallest(const QImage& picture) {
    const bool isGray = picture.isGrayscale();
    const QImage image = picture.convertToFormat(isGray ? QImage::Format_Grayscale8 : QImage::Format_RGB888);
    if (isGray)
        return isBilevel(image) ? bilevel(image) : samples(image, "/DeviceGray", 1);
    if (auto few = palette(picture.convertToFormat(QImage::Format_RGB32)))
        return *few;
    return samples(image, "/DeviceRGB", 3);
}

} // namespace

QPDFObjectHandle StoredPicture::add(QPDF& file, const QImage& picture) {
    const Packed packed = smallest(picture);
    const QByteArray dictionary = "<< /Type /XObject /Subtype /Image /Width " + QByteArray::number(picture.width()) +
                                  " /Height " + QByteArray::number(picture.height()) + ' ' + packed.keys + " >>";
    QPDFObjectHandle image = PackedStream::addRaw(file, packed.bytes);
    image.replaceDict(QPDFObjectHandle::parse(dictionary.toStdString()));
    return image;
}
