#include "PackedPicture.h"

#include "ImageKeys.h"
#include "PictureProfile.h"

#include <QColorSpace>
#include <QHash>
#include <QImage>

#include <algorithm>
#include <array>
#include <new>

#include <zlib.h>

namespace {

constexpr int mostColors = 256;

/// How samples are stored.
struct Form {
    QImage::Format format;
    int bitsPerPixel;
    int bitsPerSample;
    bool hasPredictor; ///< rows tell how they differ from the one above, which makes most pictures far smaller
};

class Compressor {
public:
    Compressor() {
        if (deflateInit(&m_stream, Z_DEFAULT_COMPRESSION) != Z_OK)
            throw std::bad_alloc();
    }
    ~Compressor() { deflateEnd(&m_stream); }
    Q_DISABLE_COPY_MOVE(Compressor)

    void add(const QByteArray& bytes, bool isLast) {
        std::array<char, 65536> piece;
        m_stream.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(bytes.data()));
        m_stream.avail_in = uInt(bytes.size());
        do {
            m_stream.next_out = reinterpret_cast<Bytef*>(piece.data());
            m_stream.avail_out = uInt(piece.size());
            deflate(&m_stream, isLast ? Z_FINISH : Z_NO_FLUSH);
            m_packed.append(piece.data(), qsizetype(piece.size() - m_stream.avail_out));
        } while (m_stream.avail_out == 0);
    }

    [[nodiscard]] QByteArray packed() const { return m_packed; }

private:
    z_stream m_stream{};
    QByteArray m_packed;
};

/// Row after row, converted some at a time: a second copy of a large picture would be a lot.
QByteArray packedRows(const QImage& image, const Form& form) {
    constexpr int rowsAtOnce = 64;
    const qsizetype rowSize = (qsizetype(image.width()) * form.bitsPerPixel + 7) / 8;
    QByteArray above(rowSize, '\0');
    Compressor compressor;
    for (int top = 0; top < image.height(); top += rowsAtOnce) {
        const int count = std::min(rowsAtOnce, image.height() - top);
        const QImage strip = image.copy(0, top, image.width(), count).convertToFormat(form.format);
        if (strip.isNull())
            throw std::bad_alloc();
        QByteArray rows;
        rows.reserve((rowSize + 1) * count);
        for (int y = 0; y < count; ++y) {
            const QByteArray line(reinterpret_cast<const char*>(strip.constScanLine(y)), rowSize);
            if (!form.hasPredictor) {
                rows += line;
                continue;
            }
            rows += '\x02'; // the predictor "up"
            const qsizetype start = rows.size();
            rows.resize(start + rowSize);
            for (qsizetype i = 0; i < rowSize; ++i)
                rows[start + i] = char(line[i] - above[i]);
            above = line;
        }
        compressor.add(rows, top + count >= image.height());
    }
    return compressor.packed();
}

PictureFile::Image stored(const QImage& image, const Form& form, const QByteArray& colorSpace) {
    QByteArray keys = ImageKeys::of(image.size(), form.bitsPerSample, colorSpace) + " /Filter /FlateDecode";
    if (form.hasPredictor)
        keys += ImageKeys::predictor(image.width(), form.bitsPerPixel / form.bitsPerSample, form.bitsPerSample);
    return {keys, packedRows(image, form)};
}

/// The same picture with a palette; null when it has too many colours.
QImage withPalette(const QImage& image) {
    if (image.format() == QImage::Format_Indexed8 || image.format() == QImage::Format_Mono)
        return image;
    QHash<QRgb, int> numbers;
    QList<QRgb> colors;
    QImage indexed(image.size(), QImage::Format_Indexed8);
    if (indexed.isNull())
        throw std::bad_alloc();
    for (int y = 0; y < image.height(); ++y) {
        const QImage row = image.copy(0, y, image.width(), 1).convertToFormat(QImage::Format_RGB32);
        const auto* from = reinterpret_cast<const QRgb*>(row.constScanLine(0));
        uchar* to = indexed.scanLine(y);
        QRgb last = 0;
        int place = -1;
        for (int x = 0; x < image.width(); ++x) {
            if (place < 0 || from[x] != last) {
                last = from[x];
                place = numbers.value(last, -1);
            }
            if (place < 0) {
                if (colors.size() == mostColors)
                    return {};
                place = int(colors.size());
                numbers.insert(last, place);
                colors.append(last);
            }
            to[x] = uchar(place);
        }
    }
    indexed.setColorTable(colors);
    return indexed;
}

/// One bit a pixel, for a picture with a palette of two colours at the most.
QImage inBits(const QImage& indexed) {
    if (indexed.format() == QImage::Format_Mono)
        return indexed;
    QImage bits(indexed.size(), QImage::Format_Mono);
    if (bits.isNull())
        throw std::bad_alloc();
    bits.fill(0);
    bits.setColorTable(indexed.colorTable());
    for (int y = 0; y < indexed.height(); ++y) {
        const uchar* from = indexed.constScanLine(y);
        uchar* to = bits.scanLine(y);
        for (int x = 0; x < indexed.width(); ++x)
            if (from[x] != 0)
                to[x / 8] |= uchar(0x80 >> (x % 8));
    }
    return bits;
}

QByteArray paletteSpace(const QList<QRgb>& colors) {
    QByteArray entries;
    for (const QRgb color : colors)
        for (const int part : {qRed(color), qGreen(color), qBlue(color)})
            entries += char(part);
    return ImageKeys::palette(entries);
}

} // namespace

PictureFile::Image PackedPicture::of(const QImage& image) {
    constexpr Form bit{QImage::Format_Mono, 1, 1, false};
    constexpr Form indexed{QImage::Format_Indexed8, 8, 8, false};
    constexpr Form gray{QImage::Format_Grayscale8, 8, 8, true};
    constexpr Form colour{QImage::Format_RGB888, 24, 8, true};
    const QByteArray profile = PictureProfile::of(image.colorSpace());
    if (!profile.isEmpty()) {
        PictureFile::Image picture = stored(image, colour, {});
        picture.iccProfile = profile;
        picture.components = 3;
        return picture;
    }
    const QImage few = withPalette(image);
    const qsizetype count = few.colorTable().size();
    if (count == 1 || count == 2)
        return stored(inBits(few), bit, paletteSpace(few.colorTable()));
    if (image.isGrayscale())
        return stored(image, gray, "/DeviceGray");
    return count > 0 ? stored(few, indexed, paletteSpace(few.colorTable())) : stored(image, colour, "/DeviceRGB");
}

PictureFile::Image PackedPicture::opacity(const QImage& image) {
    return stored(image, {QImage::Format_Alpha8, 8, 8, true}, "/DeviceGray");
}
