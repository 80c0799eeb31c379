#include "PageOCRExtractor.h"

#include "PDFPage.h"
#include "PDFPageRasterizer.h"
#include "RecognizerProcess.h"
#include "UprightPage.h"

#include <QCoreApplication>
#include <QCoroFuture>
#include <QPointer>
#include <QThreadPool>
#include <QtConcurrentRun>

namespace {

/// Pixels for a point; none for a page so narrow that nothing of it would be left.
std::optional<double> scaleOf(const PDFPage& page, const UprightPage& upright) {
    return upright.fitting(PageOCRExtractor::renderScale / page.userUnit(), PDFPageRasterizer::maximumPixelCount);
}

/// Any thread.
std::optional<QString> textOf(const QImage& image, double dotsPerUnit, const std::stop_token& stop) {
    QStringList lines;
    if (const auto found = RecognizerProcess::recognize(image, static_cast<int>(72 * dotsPerUnit), stop))
        for (const TextRecognizer::Line& line : *found)
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
    std::optional<UprightPage> upright;
    std::optional<double> scale;
    QImage image;
    do {
        upright.emplace(*page);
        scale = scaleOf(*page, *upright);
        if (!scale)
            co_return std::nullopt;
        QFuture<QImage> drawing = QtConcurrent::run(
            readingThread(), [page = *upright, scale = *scale, stop] { return page.image(scale, stop); });
        image = co_await drawing;
        if (image.isNull())
            co_return std::nullopt;
    } while (page->revision() != upright->revision()); // the annotations drawn below would not fit what was drawn

    upright->noteLiveAnnotations(*page);
    const double dotsPerUnit = *scale * page->userUnit();
    page.reset();

    QFuture<std::optional<QString>> reading =
        QtConcurrent::run(readingThread(), [image, upright = *upright, dotsPerUnit, stop = std::move(stop)]() mutable {
            upright.drawLiveAnnotations(image);
            return textOf(image, dotsPerUnit, stop);
        });
    image = {};
    co_return co_await reading;
}
