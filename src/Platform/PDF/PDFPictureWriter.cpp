#include "PDFPictureWriter.h"

#include "ImagePage.h"
#include "PictureFile.h"

PDFPictureWriter::PDFPictureWriter(QIODevice& device) : m_file(std::make_unique<PictureFile>(device)) {}

PDFPictureWriter::~PDFPictureWriter() = default;

bool PDFPictureWriter::addPage(int place, const QByteArray& jpeg, const PDFPageGeometry& page) {
    return ImagePage::addJpeg(*m_file, place, jpeg, page);
}

void PDFPictureWriter::finish() {
    m_file->finish();
}
