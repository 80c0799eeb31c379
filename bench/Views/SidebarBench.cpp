// sidebar_bench FILE
//
// The page sidebar of a workspace that shows the file: the time until the thumbnails in sight are drawn, what a frame
// takes of the main thread while they are scrolled through, the memory that they add, and what moving, deleting,
// bringing in and undoing take. Prints one JSON object for each. The exit code tells only whether the measuring was
// possible.

#include "AnnotatingPDFView.h"
#include "Measurement.h"
#include "PDFDocument.h"
#include "PDFEditorDocument.h"
#include "PDFEditorWorkspaceView.h"
#include "PageOperations.h"
#include "ThumbnailCache.h"
#include "ThumbnailList.h"
#include "ThumbnailModel.h"
#include "ThumbnailSidebar.h"
#include "ToolState.h"
#include "UndoManager.h"
#include "UserDefaults.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QJsonDocument>
#include <QJsonObject>
#include <QScrollBar>
#include <QTemporaryDir>

#include <cmath>
#include <cstdio>
#include <functional>

using namespace Measurement;

namespace {

constexpr double frameAim = 16; // milliseconds

double residentMegabytes() {
    QFile file(QStringLiteral("/proc/self/statm"));
    constexpr double pageBytes = 4096;
    return file.open(QIODevice::ReadOnly) ? file.readAll().split(' ').at(1).toDouble() * pageBytes / 1e6 : 0;
}

void print(const char* job, QJsonObject result) {
    result.insert(QStringLiteral("job"), QString::fromLatin1(job));
    std::puts(QJsonDocument(result).toJson(QJsonDocument::Compact).constData());
    std::fflush(stdout);
}

void printAimed(const char* job, const QString& name, double value, double aim) {
    print(job,
          {{name, rounded(value)}, {QStringLiteral("aim"), aim}, {QStringLiteral("to_aim"), rounded(value - aim)}});
}

void waitFor(const std::function<bool()>& condition) {
    QElapsedTimer waited;
    waited.start();
    while (!condition() && waited.elapsed() < 20'000)
        QApplication::processEvents(QEventLoop::AllEvents, 2);
}

struct Workspace {
    explicit Workspace(const std::shared_ptr<PDFEditorDocument>& document, UserDefaults& defaults)
        : view(document, {}, std::make_shared<ToolState>(&defaults), defaults) {
        view.resize(1400, 900);
    }
    ThumbnailList& list() const { return view.sidebar().list(); }

    PDFEditorWorkspaceView view;
};

/// Of one frame and its painting.
void scroll(const Workspace& workspace) {
    QScrollBar& bar = *workspace.list().verticalScrollBar();
    std::vector<double> frames;
    for (const int step : {30, 200, 3000}) { // by the wheel, by a fling, by the bar
        bar.setValue(0);
        for (int i = 0; i < 200; ++i) {
            QElapsedTimer clock;
            clock.start();
            bar.setValue(bar.value() + step);
            QApplication::processEvents();
            frames.push_back(milliseconds(clock.nsecsElapsed()));
        }
    }
    print("sidebar-scroll", {{QStringLiteral("frames"), static_cast<int>(frames.size())},
                             {QStringLiteral("p50_ms"), rounded(percentile(frames, 0.5))},
                             {QStringLiteral("p99_ms"), rounded(percentile(frames, 0.99))},
                             {QStringLiteral("max_ms"), rounded(percentile(frames, 1))},
                             {QStringLiteral("aim"), QStringLiteral("p99_ms < %1").arg(frameAim)},
                             {QStringLiteral("to_aim"), rounded(percentile(frames, 0.99) - frameAim)}});
}

/// Each edit and undo with what the window does at once because of it.
void edit(PDFEditorDocument& document, const Workspace& workspace, const PDFDocument& other) {
    UndoManager* undo = document.undoManager().get();
    const int count = document.pdfDocument()->pageCount();
    PageIndices many;
    for (int i = 0; i < std::min(500, count / 2); ++i)
        many.insert(2 * i);
    const auto time = [&](const char* job, double aim, const std::function<void()>& action) {
        QElapsedTimer clock;
        clock.start();
        action();
        workspace.list().model().refresh();
        QApplication::sendPostedEvents();
        printAimed(job, QStringLiteral("ms"), milliseconds(clock.nsecsElapsed()), aim);
        waitFor([&] { return workspace.list().isDrawn(); });
    };
    time("move", frameAim, [&] { PageOperations::movePage(document, 0, count / 2, undo); });
    time("undo-move", frameAim, [&] { undo->undo(); });
    time("move-500", frameAim, [&] { PageOperations::movePages(document, many, count, undo); });
    time("undo-move-500", frameAim, [&] { undo->undo(); });
    time("delete-500", frameAim, [&] { PageOperations::deletePages(document, many, undo); });
    time("undo-delete-500", frameAim, [&] { undo->undo(); });
    time("merge", 100, [&] { PageOperations::merge(document, other, 1, undo); });
    time("undo-merge", 100, [&] { undo->undo(); });
}

} // namespace

int main(int argc, char** argv) {
    const QApplication application(argc, argv);
    if (argc != 2) {
        std::fputs("Usage: sidebar_bench FILE\n", stderr);
        return 2;
    }
    const QString path = QFile::decodeName(argv[1]);
    const QTemporaryDir folder;
    UserDefaults defaults(folder.filePath(QStringLiteral("settings.ini")));
    QElapsedTimer opening;
    opening.start();
    const auto document = std::make_shared<PDFEditorDocument>();
    document->setPdfDocument(PDFDocument::fromFile(path));
    Workspace workspace(document, defaults);
    workspace.view.show();
    const auto hasVisible = [&] {
        const ThumbnailList& list = workspace.list();
        const int end = list.gapAt(QPoint(0, list.viewport()->height()));
        for (int row = 0; row < end; ++row)
            if (list.picture(row).isNull())
                return false;
        return true;
    };
    waitFor(hasVisible);
    printAimed("sidebar-first-thumbnails", QStringLiteral("ms"), milliseconds(opening.nsecsElapsed()), 300);
    waitFor([&] { return workspace.list().isDrawn() && workspace.view.pdfView()->isSharp(); });

    // The viewer goes on drawing around what it shows; that memory isn't the sidebar's.
    double settled = 0;
    for (int quiet = 0; quiet < 4;) {
        QElapsedTimer waited;
        waited.start();
        waitFor([&waited] { return waited.elapsed() > 1000; });
        const double now = residentMegabytes();
        quiet = std::abs(now - settled) < 1 ? quiet + 1 : 0;
        settled = now;
    }
    ThumbnailCache::removeAll();
    const double before = residentMegabytes();
    scroll(workspace);
    // Slowly through more pages than are kept.
    QScrollBar& bar = *workspace.list().verticalScrollBar();
    for (int i = 0; i < 2 * ThumbnailCache::maximumCount; ++i) {
        bar.setValue(i * workspace.list().sizeHintForRow(0));
        waitFor([&] { return workspace.list().isDrawn(); });
    }
    printAimed("sidebar-memory", QStringLiteral("megabytes"), residentMegabytes() - before, 60);
    edit(*document, workspace, *PDFDocument::fromFile(path));
    return 0;
}
