// search_bench FILE.pdf
//
// Times the assistant's reading tools on a long document: a word that is on every page, one that is nowhere (beside
// another program that reads the text of the whole file), a second search of the same conversation, and the text of the
// document; and for how long the window stands still while the assistant looks for a word that is nowhere. Prints one
// JSON object for each, the median of five runs. The exit code tells only whether the measuring was possible.

#include "AssistantToolFactory.h"
#include "DocumentIndex.h"
#include "Measurement.h"
#include "PDFDocument.h"
#include "PDFError.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QStandardPaths>
#include <QTimer>

#include <algorithm>
#include <cstdio>
#include <functional>

#include <sys/resource.h>

using namespace Measurement;

namespace {

constexpr int runs = 5;
constexpr int limit = 5;
constexpr double stallAim = 50;
const QString frequentWord = QStringLiteral("the");
const QString missingWord = QStringLiteral("qzxjvwq");

struct Times {
    double wall = 0; // milliseconds
    double cpu = 0;  // of this thread
};

Times timesOf(const std::function<void()>& action) {
    QElapsedTimer clock;
    clock.start();
    const double cpu = threadCpu();
    action();
    return {milliseconds(clock.nsecsElapsed()), threadCpu() - cpu};
}

/// Opened anew each time, so that nothing has been read before.
Times medianOver(const QString& path, const std::function<Times(const std::shared_ptr<PDFDocument>& document)>& run) {
    std::vector<double> wall;
    std::vector<double> cpu;
    for (int i = 0; i < runs; ++i) {
        const Times times = run(PDFDocument::fromFile(path));
        wall.push_back(times.wall);
        cpu.push_back(times.cpu);
    }
    return {percentile(wall, 0.5), percentile(cpu, 0.5)};
}

void report(const char* job, Times times, double aim, QJsonObject more = {}) {
    const double ours = times.wall;
    more.insert(QStringLiteral("job"), QString::fromLatin1(job));
    more.insert(QStringLiteral("ours_ms"), rounded(ours));
    more.insert(QStringLiteral("cpu_ms"), rounded(times.cpu));
    if (!more.contains(QStringLiteral("aim")))
        more.insert(QStringLiteral("aim"), QStringLiteral("< %1 ms").arg(aim));
    more.insert(QStringLiteral("to_aim"), rounded(ours - aim));
    std::puts(QJsonDocument(more).toJson(QJsonDocument::Compact).constData());
    std::fflush(stdout);
}

AssistantTool toolNamed(const std::shared_ptr<PDFDocument>& document, const QString& name) {
    for (const AssistantTool& tool : AssistantToolFactory::makeTools(AssistantContext{document, {}, {}}))
        if (tool.name == name)
            return tool;
    std::abort();
}

QJsonObject query(const QString& word) {
    return {{QStringLiteral("query"), word}};
}

/// What ended child processes took of the processor so far, in milliseconds.
double childrenCpu() {
    rusage usage{};
    getrusage(RUSAGE_CHILDREN, &usage);
    const auto inMilliseconds = [](const timeval& time) {
        return double(time.tv_sec) * 1e3 + double(time.tv_usec) / 1e3;
    };
    return inMilliseconds(usage.ru_utime) + inMilliseconds(usage.ru_stime);
}

/// The other program reads the text of all pages, with one thread.
Times timesOfOther(const QString& program, const QString& path) {
    const QStringList arguments{QStringLiteral("draw"),
                                QStringLiteral("-q"),
                                QStringLiteral("-F"),
                                QStringLiteral("text"),
                                QStringLiteral("-o"),
                                QStringLiteral("/dev/null"),
                                path};
    const double cpu = childrenCpu();
    const Times times = timesOf([&] { QProcess::execute(program, arguments); });
    return {times.wall, childrenCpu() - cpu};
}

/// Ours and the other program in turn, so that both find the machine as busy.
void searchMissing(const QString& path) {
    const QString program = QStandardPaths::findExecutable(QStringLiteral("mutool"));
    if (program.isEmpty()) {
        std::fputs("mutool isn't installed\n", stderr);
        return;
    }
    std::vector<double> referenceWall;
    std::vector<double> referenceCpu;
    const Times ours = medianOver(path, [&](const auto& document) {
        const Times reference = timesOfOther(program, path);
        referenceWall.push_back(reference.wall);
        referenceCpu.push_back(reference.cpu);
        return timesOf([&] { (void)DocumentIndex::search(*document, missingWord, limit); });
    });
    const double reference = percentile(referenceWall, 0.5);
    constexpr double ratioAim = 1.1;
    report("search-missing", ours, ratioAim * reference,
           {{QStringLiteral("reference"), QStringLiteral("mutool draw -F text")},
            {QStringLiteral("reference_ms"), rounded(reference)},
            {QStringLiteral("reference_cpu_ms"), rounded(percentile(referenceCpu, 0.5))},
            {QStringLiteral("ratio"), rounded(ours.wall / reference)},
            {QStringLiteral("aim"), QStringLiteral("ratio <= 1.1")}});
}

/// The longest time for which no event could be handled while the assistant looks for a word that is nowhere.
Times longestStall(const AssistantTool& search) {
    QElapsedTimer sinceTick;
    double longest = 0;
    const double cpu = threadCpu();
    const auto note = [&] {
        longest = std::max(longest, milliseconds(sinceTick.nsecsElapsed()));
        sinceTick.start();
    };
    QTimer ticks;
    QObject::connect(&ticks, &QTimer::timeout, note);
    ticks.start(1);
    sinceTick.start();
    QEventLoop loop;
    const auto searching = [&]() -> QCoro::Task<void> {
        co_await search.prepare(query(missingWord));
        (void)search.execute(query(missingWord));
        note();
        loop.quit();
    };
    const auto task = searching();
    loop.exec();
    return {longest, threadCpu() - cpu};
}

} // namespace

int main(int argc, char** argv) {
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    const QApplication application(argc, argv);
    if (argc != 2) {
        std::fputs("usage: search_bench FILE.pdf\n", stderr);
        return 2;
    }
    const QString path = QString::fromLocal8Bit(argv[1]);
    const QString searchTool = QStringLiteral("search_document");
    try {
        report("search-frequent",
               medianOver(path,
                          [](const auto& document) {
                              return timesOf([&] { (void)DocumentIndex::search(*document, frequentWord, limit); });
                          }),
               50);
        searchMissing(path);
        report("search-again",
               medianOver(path,
                          [&](const auto& document) {
                              const AssistantTool search = toolNamed(document, searchTool);
                              (void)search.execute(query(missingWord));
                              return timesOf([&] { (void)search.execute(query(missingWord + u'x')); });
                          }),
               100);
        report("document-text",
               medianOver(path,
                          [](const auto& document) {
                              const auto text = toolNamed(document, QStringLiteral("get_document_text"));
                              return timesOf([&] { (void)text.execute({}); });
                          }),
               200);
        report("search-window-stall",
               medianOver(path, [&](const auto& document) { return longestStall(toolNamed(document, searchTool)); }),
               stallAim);
    } catch (const PDFError& error) {
        std::fprintf(stderr, "%s\n", error.what());
        return 1;
    }
    return 0;
}
