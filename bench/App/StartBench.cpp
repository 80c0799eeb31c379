#include "AnnotatingPDFView.h"
#include "ContentView.h"
#include "PDFEditorWorkspaceView.h"
#include "QuilloApp.h"

#include <QApplication>
#include <QFileInfo>
#include <QProcess>
#include <QTemporaryDir>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <vector>

// How long it takes from the start of the process until the first page of a file is sharp on the screen, in a real
// document window. Every run is a process of its own: this program starts itself, and hands over when it did so.
//
// Usage: start_bench FILE [RUNS]

static constexpr int defaultRunCount = 10;
static constexpr int timeLimitInMilliseconds = 60000;

static double millisecondsOfMonotonicClock() {
    timespec now = {};
    clock_gettime(CLOCK_MONOTONIC, &now);
    return static_cast<double>(now.tv_sec) * 1e3 + static_cast<double>(now.tv_nsec) / 1e6;
}

/// Opens the file as the program does, prints the time since `startTime` at the first sharp page, and ends.
static int runOnce(int argc, char** argv, double startTime, const QString& path) {
    const QApplication application(argc, argv);
    const double qtIsReady = millisecondsOfMonotonicClock() - startTime;
    QuilloApp quillo;
    quillo.launch({QUrl::fromLocalFile(path)});
    const double isShown = millisecondsOfMonotonicClock() - startTime;
    const DocumentWindow* window = quillo.presenter().documentWindow();
    const ContentView* content = window ? window->currentContentView() : nullptr;
    if (!content || !content->workspace()) {
        std::fputs("The file can't be shown.\n", stderr);
        return EXIT_FAILURE;
    }
    QObject::connect(content->workspace()->pdfView(), &PDFView::pageDrawn, &quillo, [&](bool firstSharpPaint) {
        if (!firstSharpPaint)
            return;
        std::printf("%.1f %.1f %.1f\n", qtIsReady, isShown, millisecondsOfMonotonicClock() - startTime);
        std::fflush(stdout);
        QMetaObject::invokeMethod(&quillo.sessionEnd(), &SessionEnd::terminate, Qt::QueuedConnection);
    });
    return QApplication::exec();
}

struct Times {
    double qtIsReady = 0;
    double isShown = 0;
    double isSharp = 0;
};

static double median(std::vector<Times> times, double Times::*field) {
    const auto middle = times.begin() + static_cast<std::ptrdiff_t>(times.size() / 2);
    std::nth_element(times.begin(), middle, times.end(),
                     [field](const Times& a, const Times& b) { return a.*field < b.*field; });
    return (*middle).*field;
}

static int runAll(const QString& path, int runCount) {
    // Settings of the person who runs this have no place here.
    const QTemporaryDir settings;
    qputenv("XDG_CONFIG_HOME", QFile::encodeName(settings.path()));
    qputenv("XDG_STATE_HOME", QFile::encodeName(settings.path())); // no lost document of the person who measures
    std::vector<Times> times;
    for (int run = 0; run < runCount; ++run) {
        QProcess process;
        process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
        const QString now = QString::number(millisecondsOfMonotonicClock(), 'f', 3);
        process.start(QStringLiteral("/proc/self/exe"), {QStringLiteral("--once"), now, path});
        if (!process.waitForFinished(timeLimitInMilliseconds) || process.exitCode() != 0)
            return EXIT_FAILURE;
        const QList<QByteArray> fields = process.readAllStandardOutput().simplified().split(' ');
        if (fields.size() == 3)
            times.push_back({fields[0].toDouble(), fields[1].toDouble(), fields[2].toDouble()});
    }
    if (times.empty())
        return EXIT_FAILURE;
    std::printf("%s, %zu starts, medians: Qt ready %.1f ms, window shown %.1f ms, first page sharp %.1f ms\n",
                qPrintable(QFileInfo(path).fileName()), times.size(), median(times, &Times::qtIsReady),
                median(times, &Times::isShown), median(times, &Times::isSharp));
    return EXIT_SUCCESS;
}

int main(int argc, char** argv) {
    if (argc == 4 && qstrcmp(argv[1], "--once") == 0)
        return runOnce(argc, argv, std::atof(argv[2]), QFile::decodeName(argv[3]));
    if (argc != 2 && argc != 3) {
        std::fputs("Usage: start_bench FILE [RUNS]\n", stderr);
        return EXIT_FAILURE;
    }
    return runAll(QFileInfo(QFile::decodeName(argv[1])).absoluteFilePath(),
                  argc == 3 ? std::max(1, std::atoi(argv[2])) : defaultRunCount);
}
