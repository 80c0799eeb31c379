#pragma once

#include <QByteArray>

#include <memory>

class PictureFile;
class QIODevice;
struct PDFPageGeometry;

/// Writes a document of pages that show one JPEG picture each, page by page, so that it may be far larger than what the
/// memory holds. Any thread, one at a time. The device's errors are for whoever gave it to notice.
class PDFPictureWriter {
public:
    /// The device outlives the writer, and is open for writing.
    explicit PDFPictureWriter(QIODevice& device);
    ~PDFPictureWriter();
    PDFPictureWriter(const PDFPictureWriter&) = delete;
    PDFPictureWriter& operator=(const PDFPictureWriter&) = delete;

    /// The bytes of a JPEG file, stored as they are, fill the media box of a page with these boxes and this rotation.
    /// Pages come in any order and stand in that of `place`. False, with nothing written, when they are no JPEG.
    bool addPage(int place, const QByteArray& jpeg, const PDFPageGeometry& page);
    /// Completes the file; once.
    void finish();

private:
    std::unique_ptr<PictureFile> m_file;
};
