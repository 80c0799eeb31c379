// scroll_bench FILE
//
// Opens FILE in a view of 1200 by 900 and scrolls down through its first 200 pages at a page in 100 ms, as a reader
// does who holds the scroll bar. Prints one JSON object about what the main thread took for each frame, from the
// timer's event to the end of painting. Its exit code tells only whether the measuring was possible.

#include "MeasuredView.h"
#include "Measurement.h"
#include "PDFDocument.h"
#include "PDFError.h"
#include "PDFPage.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QJsonDocument>
#include <QJsonObject>
#include <QScrollBar>
#include <QTimer>

#include <algorithm>
#include <cstdio>
#include <vector>

using namespace Measurement;

namespace {

constexpr int pagesToScroll = 200;
constexpr double pagesPerMillisecond = 1.0 / 100;
constexpr int frameInterval = 16; // milliseconds
constexpr double frameAim = 16;   // milliseconds, for 99 of 100 frames
constexpr double memoryAim = 300; // MB

/// Measures what each event takes of the main thread.
class MeasuredApplication : public QApplication {
public:
    using QApplication::QApplication;

    bool notify(QObject* receiver, QEvent* event) override {
        if (m_depth > 0 || receiver->thread() != thread())
            return QApplication::notify(receiver, event);
        ++m_depth;
        const double start = threadCpu();
        const bool handled = QApplication::notify(receiver, event);
        eventCpu.push_back(threadCpu() - start);
        --m_depth;
        return handled;
    }

    std::vector<double> eventCpu; // milliseconds

private:
    int m_depth = 0;
};

} // namespace

int main(int argc, char** argv) {
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    MeasuredApplication application(argc, argv);
    if (argc != 2) {
        std::fputs("Usage: scroll_bench FILE\n", stderr);
        return 2;
    }
    QElapsedTimer sinceOpen;
    sinceOpen.start();
    std::shared_ptr<PDFDocument> document;
    try {
        document = PDFDocument::fromFile(QFile::decodeName(argv[1]));
    } catch (const PDFError& error) {
        std::fprintf(stderr, "%s\n", error.what());
        return 1;
    }
    const double opened = milliseconds(sinceOpen.nsecsElapsed());

    MeasuredView view;
    view.resize(1200, 900);
    view.setAutoScales(true);
    view.setDocument(document);
    double firstSharp = 0;
    QObject::connect(&view, &PDFView::pageDrawn, &view, [&](bool first) {
        if (first)
            firstSharp = milliseconds(sinceOpen.nsecsElapsed());
    });
    view.show();

    QElapsedTimer sinceStart;
    QTimer frames;
    frames.setTimerType(Qt::PreciseTimer);
    frames.setInterval(frameInterval);
    const int pages = std::min(pagesToScroll, document->pageCount());
    QObject::connect(&frames, &QTimer::timeout, &view, [&] {
        QScrollBar* bar = view.verticalScrollBar();
        const double column = bar->maximum() + bar->pageStep();
        const double position =
            double(sinceStart.elapsed()) * pagesPerMillisecond * column / std::max(1, document->pageCount());
        if (view.currentPageIndex().value_or(0) + 1 >= pages || position >= bar->maximum()) {
            QApplication::quit();
            return;
        }
        view.beginFrame();
        bar->setValue(static_cast<int>(position));
    });
    QTimer::singleShot(1000, &view, [&] {
        application.eventCpu.clear();
        sinceStart.start();
        frames.start();
    });
    QApplication::exec();

    const double p99 = percentile(view.frames, 0.99);
    const QJsonObject result{
        {QStringLiteral("job"), QStringLiteral("scroll")},
        {QStringLiteral("pages"), pages},
        {QStringLiteral("open_ms"), rounded(opened)},
        {QStringLiteral("first_sharp_ms"), rounded(firstSharp)},
        {QStringLiteral("frames"), static_cast<int>(view.frames.size())},
        {QStringLiteral("p50_ms"), rounded(percentile(view.frames, 0.5))},
        {QStringLiteral("p99_ms"), rounded(p99)},
        {QStringLiteral("max_ms"), rounded(percentile(view.frames, 1))},
        {QStringLiteral("p99_cpu_ms"), rounded(percentile(view.frameCpu, 0.99))},
        {QStringLiteral("max_cpu_ms"), rounded(percentile(view.frameCpu, 1))},
        {QStringLiteral("longest_event_cpu_ms"), rounded(percentile(application.eventCpu, 1))},
        {QStringLiteral("stand_in_frames"), view.framesWithStandIn},
        {QStringLiteral("peak_rss_mb"), rounded(peakMegabytes())},
        {QStringLiteral("aim"), QStringLiteral("p99_ms below %1, peak_rss_mb below %2").arg(frameAim).arg(memoryAim)},
        {QStringLiteral("aim_met"), p99 < frameAim && peakMegabytes() < memoryAim},
    };
    std::puts(QJsonDocument(result).toJson(QJsonDocument::Compact).constData());
    return 0;
}
