#include "PDFCompressor.h"

#include "FileError.h"
#include "GrayPicture.h"
#include "PDFDocument.h"
#include "PDFPage.h"
#include "PDFPageRasterizer.h"
#include "PDFPictureWriter.h"
#include "UprightPage.h"

#include <QBuffer>
#include <QFileDevice>
#include <QImageWriter>

#include <atomic>
#include <future>

namespace {

struct Values {
    const char* label;
    double renderScale;
    double compressionFactor;
};

const Values& valuesOf(PDFCompressor::Quality quality) {
    static constexpr std::array values{Values{"Good (smallest file)", 1.0, 0.4}, Values{"Better", 1.5, 0.6},
                                       Values{"Best (larger file)", 2.0, 0.8}};
    return values.at(static_cast<std::size_t>(quality));
}

QByteArray jpegOf(const QImage& picture, double compressionFactor) {
    QByteArray bytes;
    QBuffer buffer(&bytes);
    QImageWriter writer(&buffer, "jpeg");
    writer.setQuality(qRound(compressionFactor * 100));
    const QImage gray = GrayPicture::of(picture);
    return writer.write(gray.isNull() ? picture : gray) ? bytes : QByteArray();
}

} // namespace

QString PDFCompressor::label(Quality quality) {
    return QString::fromLatin1(valuesOf(quality).label);
}

double PDFCompressor::renderScale(Quality quality) {
    return valuesOf(quality).renderScale;
}

double PDFCompressor::compressionFactor(Quality quality) {
    return valuesOf(quality).compressionFactor;
}

PDFCompressor::PDFCompressor(const PDFDocument& document) {
    for (PDFPageContent& content : document.pageContents())
        m_pages.push_back({std::move(content), nullptr});
    for (const std::shared_ptr<PDFPage>& page : document.knownPages()) {
        if (!page->annotationsLoaded() && !page->isModified())
            continue;
        const auto noted = std::make_shared<UprightPage>(*page, UprightPage::View::asStored);
        noted->noteLiveAnnotations(*page);
        m_pages[static_cast<std::size_t>(document.index(page.get()))].noted = noted;
    }
}

PDFCompressor::~PDFCompressor() = default;

UprightPage PDFCompressor::frozen(int index) const {
    const Page& page = m_pages[static_cast<std::size_t>(index)];
    return page.noted ? *page.noted : UprightPage(page.content, UprightPage::View::asStored);
}

QByteArray PDFCompressor::compressPage(int index, Quality quality, const std::stop_token& stop) const {
    return jpeg(frozen(index), quality, stop);
}

QByteArray PDFCompressor::jpeg(const UprightPage& page, Quality quality, const std::stop_token& stop) const {
    constexpr qint64 muchMemory = 16'000'000; // pixels: 64 MB
    const double scale = renderScale(quality);
    const QSize size = PDFPageRasterizer::pixelSize(page.geometry().box(PDFDisplayBox::mediaBox), scale);
    if (size.isEmpty())
        return {};
    std::unique_lock large(m_large, std::defer_lock);
    if (qint64(size.width()) * size.height() > muchMemory)
        large.lock();
    const QImage picture = page.image(scale, stop);
    return picture.isNull() || stop.stop_requested() ? QByteArray() : jpegOf(picture, compressionFactor(quality));
}

int PDFCompressor::compress(Quality quality, QIODevice& device, const std::stop_token& stop,
                            const std::function<void(int done)>& progress) const {
    PDFPictureWriter writer(device);
    std::mutex writing;
    int written = 0;
    int done = 0;
    std::atomic<int> next = 0;
    const auto hasFailed = [file = qobject_cast<const QFileDevice*>(&device)] {
        return file && file->error() != QFileDevice::NoError;
    };
    std::stop_source failed; // of one of the two, which then needn't go on
    const auto work = [&] {
        try {
            for (int index = next++; index < pageCount(); index = next++) {
                const UprightPage page = frozen(index);
                const QByteArray picture = jpeg(page, quality, stop);
                const std::lock_guard lock(writing);
                if (stop.stop_requested() || failed.stop_requested() || hasFailed())
                    return;
                if (!picture.isEmpty() && writer.addPage(index, picture, page.geometry()))
                    ++written;
                progress(++done);
            }
        } catch (...) {
            failed.request_stop();
            throw;
        }
    };
    auto other = std::async(std::launch::async, work);
    work();
    other.get();
    if (stop.stop_requested() || written == 0)
        return 0;
    writer.finish();
    auto* const file = qobject_cast<QFileDevice*>(&device);
    if (hasFailed() || (file && !file->flush()))
        throw FileError(QStringLiteral("The pictures of the pages couldn't be stored."));
    return written;
}
