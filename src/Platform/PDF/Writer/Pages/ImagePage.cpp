#include "ImagePage.h"

#include "JpegHeader.h"
#include "PdfValues.h"

#include <QColorSpace>
#include <QImage>
#include <QTransform>

#include <functional>
#include <utility>

namespace {

/// A file of a few objects, numbered in the order in which they are added; the first is the catalogue.
class SmallFile {
public:
    void add(const QByteArray& value) {
        m_offsets.push_back(m_bytes.size());
        m_bytes += QByteArray::number(qsizetype(m_offsets.size())) + " 0 obj\n" + value + "\nendobj\n";
    }

    void addStream(const QByteArray& keys, const QByteArray& data) {
        add("<< " + keys + " /Length " + QByteArray::number(data.size()) + " >>\nstream\n" + data + "\nendstream");
    }

    [[nodiscard]] QByteArray finish() {
        const qsizetype table = m_bytes.size();
        const QByteArray size = QByteArray::number(qsizetype(m_offsets.size()) + 1);
        m_bytes += "xref\n0 " + size + "\n0000000000 65535 f \n";
        for (const qsizetype offset : m_offsets)
            m_bytes += QByteArray::number(offset).rightJustified(10, '0') + " 00000 n \n";
        m_bytes +=
            "trailer\n<< /Size " + size + " /Root 1 0 R >>\nstartxref\n" + QByteArray::number(table) + "\n%%EOF\n";
        return m_bytes;
    }

private:
    QByteArray m_bytes = "%PDF-1.5\n%\xE2\xE3\xCF\xD3\n";
    std::vector<qsizetype> m_offsets;
};

QByteArray array(const QRectF& box) {
    QByteArray numbers;
    for (const double value : {box.left(), box.top(), box.right(), box.bottom()})
        numbers += PdfValues::real(value) + ' ';
    return '[' + numbers.chopped(1) + ']';
}

/// The media box, and what differs from what a page has that says no more.
QByteArray keysOf(const PDFPageGeometry& page) {
    constexpr std::pair<const char*, PDFDisplayBox> others[] = {{"/CropBox ", PDFDisplayBox::cropBox},
                                                                {"/BleedBox ", PDFDisplayBox::bleedBox},
                                                                {"/TrimBox ", PDFDisplayBox::trimBox},
                                                                {"/ArtBox ", PDFDisplayBox::artBox}};
    const QRectF media = page.box(PDFDisplayBox::mediaBox);
    QByteArray keys = "/MediaBox " + array(media);
    for (const auto& [key, box] : others)
        if (page.box(box) != media)
            keys += ' ' + QByteArray(key) + array(page.box(box));
    if (page.rotation != 0)
        keys += " /Rotate " + QByteArray::number(page.rotation);
    if (page.userUnit != 1)
        keys += " /UserUnit " + PdfValues::real(page.userUnit);
    return keys;
}

/// `upright` turns and mirrors the unit square, in which the picture is, to what is to be shown in the media box.
QByteArray pageFile(const PDFPageGeometry& page, const QTransform& upright,
                    const std::function<void(SmallFile&)>& addImage) {
    const QRectF media = page.box(PDFDisplayBox::mediaBox);
    const QTransform place = upright * QTransform::fromScale(media.width(), media.height()) *
                             QTransform::fromTranslate(media.left(), media.top());
    const auto number = [](double value) { return PdfValues::real(value); };
    SmallFile file;
    file.add("<< /Type /Catalog /Pages 2 0 R >>");
    file.add("<< /Type /Pages /Kids [3 0 R] /Count 1 >>");
    file.add("<< /Type /Page /Parent 2 0 R " + keysOf(page) +
             " /Contents 4 0 R /Resources << /XObject << /Im0 5 0 R >> >> >>");
    file.addStream({}, "q " + number(place.m11()) + ' ' + number(place.m12()) + ' ' + number(place.m21()) + ' ' +
                           number(place.m22()) + ' ' + number(place.dx()) + ' ' + number(place.dy()) + " cm /Im0 Do Q");
    addImage(file);
    return file.finish();
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
    return pageFile(page, {}, [&](SmallFile& file) {
        QByteArray keys = imageKeys(shown, grey ? "DeviceGray" : "DeviceRGB", grey ? 1 : 3);
        if (translucent)
            keys += " /SMask 6 0 R";
        file.addStream(keys, packedRows(shown, grey ? 1 : 3));
        if (translucent) {
            const QImage alpha = source.convertToFormat(QImage::Format_Alpha8);
            file.addStream(imageKeys(alpha, "DeviceGray", 1), packedRows(alpha, 1));
        }
    });
}

QByteArray ImagePage::fromJpeg(const QByteArray& jpeg, const PDFPageGeometry& page) {
    const std::optional<JpegHeader> header = JpegHeader::read(jpeg);
    if (!header || !isUsable(page))
        return {};
    const char* colorSpace = header->components == 1   ? "DeviceGray"
                             : header->components == 3 ? "DeviceRGB"
                                                       : "DeviceCMYK";
    QByteArray keys = "/Type /XObject /Subtype /Image /Width " + QByteArray::number(header->width) + " /Height " +
                      QByteArray::number(header->height) + " /ColorSpace /" + colorSpace +
                      " /BitsPerComponent 8 /Filter /DCTDecode";
    if (header->isInverted)
        keys += " /Decode [1 0 1 0 1 0 1 0]";
    return pageFile(page, header->uprightTransform(), [&](SmallFile& file) { file.addStream(keys, jpeg); });
}
