#include "PictureFile.h"

#include "PdfValues.h"

#include <QIODevice>
#include <QRectF>

#include <utility>

namespace {

constexpr int catalogue = 1;
constexpr int pageTree = 2;

QByteArray reference(int number) {
    return QByteArray::number(number) + " 0 R";
}

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

} // namespace

PictureFile::PictureFile(QIODevice& device) : m_device(device), m_offsets(pageTree) {
    write("%PDF-1.5\n%\xE2\xE3\xCF\xD3\n");
    writeObject(catalogue, "<< /Type /Catalog /Pages " + reference(pageTree) + " >>");
}

int PictureFile::reserve() {
    m_offsets.push_back(0);
    return int(m_offsets.size());
}

void PictureFile::write(const QByteArray& bytes) {
    m_device.write(bytes);
    m_position += bytes.size();
}

void PictureFile::writeObject(int number, const QByteArray& value) {
    m_offsets[std::size_t(number - 1)] = m_position;
    write(QByteArray::number(number) + " 0 obj\n" + value + "\nendobj\n");
}

void PictureFile::writeStream(int number, const QByteArray& keys, const QByteArray& data) {
    m_offsets[std::size_t(number - 1)] = m_position;
    write(QByteArray::number(number) + " 0 obj\n<< " + keys + " /Length " + QByteArray::number(data.size()) +
          " >>\nstream\n");
    write(data);
    write("\nendstream\nendobj\n");
}

QByteArray PictureFile::completeKeys(const Image& image) {
    if (image.iccProfile.isEmpty())
        return image.keys;
    const int profile = reserve();
    writeStream(profile, "/Filter /FlateDecode /N " + QByteArray::number(image.components),
                qCompress(image.iccProfile).mid(4));
    return image.keys + " /ColorSpace [/ICCBased " + reference(profile) + ']';
}

void PictureFile::addPage(int place, const PDFPageGeometry& page, const QTransform& upright, const Image& picture,
                          const std::optional<Image>& transparency) {
    QByteArray keys = completeKeys(picture);
    if (transparency) {
        const int mask = reserve();
        writeStream(mask, completeKeys(*transparency), transparency->data);
        keys += " /SMask " + reference(mask);
    }
    const int image = reserve();
    writeStream(image, keys, picture.data);

    const QRectF media = page.box(PDFDisplayBox::mediaBox);
    const QTransform shown = upright * QTransform::fromScale(media.width(), media.height()) *
                             QTransform::fromTranslate(media.left(), media.top());
    QByteArray content = "q ";
    for (const double value : {shown.m11(), shown.m12(), shown.m21(), shown.m22(), shown.dx(), shown.dy()})
        content += PdfValues::real(value) + ' ';
    const int contents = reserve();
    writeStream(contents, {}, content + "cm /Im0 Do Q");

    const int object = m_pages[place] = reserve();
    writeObject(object, "<< /Type /Page /Parent " + reference(pageTree) + ' ' + keysOf(page) + " /Contents " +
                            reference(contents) + " /Resources << /XObject << /Im0 " + reference(image) + " >> >> >>");
}

void PictureFile::finish() {
    QByteArray kids;
    for (const auto& [place, object] : m_pages)
        kids += reference(object) + ' ';
    writeObject(pageTree, "<< /Type /Pages /Kids [" + kids.trimmed() + "] /Count " +
                              QByteArray::number(qsizetype(m_pages.size())) + " >>");
    const qint64 table = m_position;
    const QByteArray size = QByteArray::number(qsizetype(m_offsets.size()) + 1);
    QByteArray end = "xref\n0 " + size + "\n0000000000 65535 f \n";
    for (const qint64 offset : m_offsets)
        end += QByteArray::number(offset).rightJustified(10, '0') + " 00000 n \n";
    write(end + "trailer\n<< /Size " + size + " /Root " + reference(catalogue) + " >>\nstartxref\n" +
          QByteArray::number(table) + "\n%%EOF\n");
}
