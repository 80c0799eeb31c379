#include "PageOCRExtractor.h"

#include "Logging.h"
#include "PDFAnnotation.h"
#include "PDFPage.h"
#include "PDFPageRasterizer.h"
#include "PageRenderer.h"
#include "TextRecognizer.h"

#include <QCoreApplication>
#include <QCoroFuture>
#include <QPainter>
#include <QPointer>
#include <QThreadPool>
#include <QtConcurrentRun>

#include <algorithm>
#include <atomic>
#include <cmath>
#include <new>

namespace {

/// The picture of a page as a worker draws it: no live object in it.
struct Picture {
    PageRenderRequest request; ///< of the whole picture
    double scale;              ///< pixels for a unit of page coordinates
};

/// None for a page so narrow that nothing of it would be left.
std::optional<Picture> pictureOf(const PDFPage& page) {
    constexpr auto box = PDFDisplayBox::mediaBox;
    const QSizeF size = page.displaySize(box) / page.userUnit();
    const double scale = std::min(
        {PageOCRExtractor::renderScale, TextRecognizer::maximumSide / std::max(size.width(), size.height()),
         std::sqrt(static_cast<double>(PDFPageRasterizer::maximumPixelCount) / (size.width() * size.height()))});
    const QSizeF pixels = size * scale;
    if (!(pixels.width() >= 1 && pixels.height() >= 1))
        return std::nullopt;
    Picture picture;
    picture.request.content = page.content();
    picture.request.hiddenAnnotations = page.hiddenFileAnnotations();
    picture.request.pageToDevice =
        page.displayTransform(box) * QTransform::fromScale(scale / page.userUnit(), scale / page.userUnit());
    picture.request.deviceRect = QRect(0, 0, static_cast<int>(pixels.width()), static_cast<int>(pixels.height()));
    picture.scale = scale;
    return picture;
}

/// Null when the page can't be drawn or nobody wants it any more. Any thread.
QImage draw(const PageRenderRequest& whole, const std::stop_token& stop) {
    constexpr int pieceSide = 4096; // below the most that the renderer draws at once
    std::atomic<bool> cancelled = false;
    const std::stop_callback cancel(stop, [&cancelled] { cancelled = true; });
    try {
        QImage image(whole.deviceRect.size(), QImage::Format_RGB32);
        QPainter painter;
        if (image.isNull() || !painter.begin(&image))
            return {};
        PageRenderRequest piece = whole;
        for (int y = 0; y < image.height(); y += pieceSide) {
            for (int x = 0; x < image.width(); x += pieceSide) {
                piece.deviceRect = QRect(x, y, pieceSide, pieceSide) & whole.deviceRect;
                const QImage drawn = PageRenderer::render(piece, &cancelled);
                if (drawn.isNull())
                    return {};
                painter.drawImage(x, y, drawn);
            }
        }
        painter.end();
        return image;
    } catch (const std::bad_alloc&) {
        qCWarning(Logging::document) << "not enough memory for the picture of a page to recognize";
        return {};
    }
}

void drawLiveAnnotations(const PDFPage& page, const QTransform& pageToDevice, QImage& image) {
    const auto annotations = page.liveAnnotations();
    if (annotations.empty())
        return;
    QPainter painter(&image);
    painter.setTransform(pageToDevice);
    PDFAnnotation::drawAll(annotations, PDFDisplayBox::mediaBox, painter);
}

/// Any thread.
std::optional<QString> textOf(const QImage& image, double scale, const std::stop_token& stop) {
    QStringList lines;
    for (const TextRecognizer::Line& line : TextRecognizer::recognize(image, static_cast<int>(72 * scale), stop))
        lines.append(line.text);
    if (lines.isEmpty())
        return std::nullopt;
    return lines.join(QLatin1Char('\n'));
}

/// A thread of its own, so that short work for the windows never waits behind a page. It belongs to the application,
/// whose end waits for it: the recognizer mustn't run while the program's static objects go.
QThreadPool* readingThread() {
    static QPointer<QThreadPool> pool;
    if (!pool) {
        pool = new QThreadPool(QCoreApplication::instance());
        pool->setMaxThreadCount(1);
    }
    return pool;
}

} // namespace

QCoro::Task<std::optional<QString>> PageOCRExtractor::recognizeText(std::shared_ptr<const PDFPage> page,
                                                                    std::stop_token stop) {
    std::optional<Picture> picture;
    QImage image;
    quint64 revision = 0;
    do {
        revision = page->revision();
        picture = pictureOf(*page);
        if (!picture)
            co_return std::nullopt;
        QFuture<QImage> drawing =
            QtConcurrent::run(readingThread(), [request = picture->request, stop] { return draw(request, stop); });
        image = co_await drawing;
        if (image.isNull())
            co_return std::nullopt;
    } while (page->revision() != revision); // the annotations drawn below would not fit what was drawn without them

    // Annotations that changed draw themselves, and only here: they are live objects.
    drawLiveAnnotations(*page, picture->request.pageToDevice, image);
    page.reset();

    QFuture<std::optional<QString>> reading =
        QtConcurrent::run(readingThread(), [image = std::move(image), scale = picture->scale, stop = std::move(stop)] {
            return textOf(image, scale, stop);
        });
    co_return co_await reading;
}
