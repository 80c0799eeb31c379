#include "PDFPictureWriter.h"

#include "ImagePage.h"
#include "JpegHeader.h"
#include "PictureFile.h"
#include "PngFile.h"

PDFPictureWriter::PDFPictureWriter(QIODevice& device) : m_file(std::make_unique<PictureFile>(device)) {}

PDFPictureWriter::~PDFPictureWriter() = default;

std::optional<QSize> PDFPictureWriter::uprightSize(const QByteArray& bytes) {
    if (const auto jpeg = JpegHeader::read(bytes)) {
        const QSize stored(jpeg->width, jpeg->height);
        return jpeg->isTurned() ? stored.transposed() : stored;
    }
    const auto png = PngFile::read(bytes);
    return png ? std::optional(QSize(png->width, png->height)) : std::nullopt;
}

QSizeF PDFPictureWriter::exifDensity(const QByteArray& bytes) {
    const auto jpeg = JpegHeader::read(bytes);
    if (!jpeg)
        return {};
    return jpeg->isTurned() ? jpeg->exifDensity.transposed() : jpeg->exifDensity;
}

bool PDFPictureWriter::addPage(int place, const QByteArray& bytes, const PDFPageGeometry& page) {
    return ImagePage::addJpeg(*m_file, place, bytes, page) || ImagePage::addPng(*m_file, place, bytes, page);
}

bool PDFPictureWriter::addPage(int place, const QImage& image, const PDFPageGeometry& page) {
    return ImagePage::addImage(*m_file, place, image, page);
}

void PDFPictureWriter::finish() {
    m_file->finish();
}
