#pragma once

#include <QByteArray>
#include <QSize>
#include <QSizeF>

#include <memory>
#include <optional>

class PictureFile;
class QIODevice;
class QImage;
struct PDFPageGeometry;

/// Writes a document of pages that show one picture each, page by page, so that it may be far larger than what the
/// memory holds. Any thread, one at a time. The device's errors are for whoever gave it to notice.
class PDFPictureWriter {
public:
    /// The device outlives the writer, and is open for writing.
    explicit PDFPictureWriter(QIODevice& device);
    ~PDFPictureWriter();
    PDFPictureWriter(const PDFPictureWriter&) = delete;
    PDFPictureWriter& operator=(const PDFPictureWriter&) = delete;

    /// What `addPage` shows of a JPEG or PNG file's bytes, in pixels, upright as their Exif data say; none when it
    /// doesn't take them.
    [[nodiscard]] static std::optional<QSize> uprightSize(const QByteArray& bytes);

    /// Pixels for an inch as the Exif data of a JPEG file's bytes tell, of the picture when it is upright; empty where
    /// they don't.
    [[nodiscard]] static QSizeF exifDensity(const QByteArray& bytes);

    /// What the bytes of a JPEG or PNG file hold, stored as it is, fills the media box of a page with these boxes and
    /// this rotation. Pages come in any order and stand in that of `place`. False, with nothing written, when they are
    /// neither, or of a kind that a PDF can't hold as they are.
    bool addPage(int place, const QByteArray& bytes, const PDFPageGeometry& page);
    /// The same for pixels, stored without loss in as little as they need. False for a null image.
    bool addPage(int place, const QImage& image, const PDFPageGeometry& page);
    /// Completes the file; once.
    void finish();

private:
    std::unique_ptr<PictureFile> m_file;
};
