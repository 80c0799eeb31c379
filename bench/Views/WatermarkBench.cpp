// watermark_bench FILE.pdf [OUTPUT.pdf]
//
// Stamps a watermark on every page of a file that a workspace shows, takes it back, and saves it: the time of the main
// thread for each, the time until the file is written, and what each page adds to it. Prints one JSON object for each
// with its aim.

#include "AnnotatingPDFView.h"
#include "Measurement.h"
#include "PDFDocument.h"
#include "PDFDocumentSnapshot.h"
#include "PDFEditorDocument.h"
#include "PDFEditorWorkspaceView.h"
#include "ToolState.h"
#include "UndoManager.h"
#include "UserDefaults.h"
#include "WatermarkApplier.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QFileInfo>
#include <QTemporaryDir>

#include <cstdio>

namespace {

/// Of the clock and of the processor: the first takes longer while other programs run.
struct Time {
    double wall;
    double processor;
};

void print(const char* job, const Time& time, double aim) {
    std::printf("{\"job\": \"%s\", \"ms\": %.1f, \"cpu_ms\": %.1f, \"aim\": %.0f, \"to_aim\": %.1f}\n", job, time.wall,
                time.processor, aim, time.wall - aim);
    std::fflush(stdout);
}

void print(const char* job, const char* unit, double value, double aim) {
    std::printf("{\"job\": \"%s\", \"%s\": %.1f, \"aim\": %.0f, \"to_aim\": %.1f}\n", job, unit, value, aim,
                value - aim);
    std::fflush(stdout);
}

template <typename Work>
Time timeOf(Work work) {
    QElapsedTimer clock;
    clock.start();
    const double before = Measurement::threadCpu();
    work();
    return {Measurement::milliseconds(clock.nsecsElapsed()), Measurement::threadCpu() - before};
}

} // namespace

int main(int argc, char** argv) {
    const QApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    if (arguments.size() < 2)
        return 2;
    const QTemporaryDir folder;
    UserDefaults defaults(folder.filePath(QStringLiteral("settings.ini")));
    const auto document = std::make_shared<PDFEditorDocument>();
    document->setPdfDocument(PDFDocument::fromFile(arguments[1]));
    PDFEditorWorkspaceView workspace(document, {}, std::make_shared<ToolState>(&defaults), defaults);
    workspace.resize(1400, 900);
    workspace.show();
    for (int i = 0; i < 100; ++i)
        QApplication::processEvents(QEventLoop::AllEvents, 20);

    UndoManager& undoManager = *document->undoManager();
    constexpr double aim = 500; // milliseconds
    print("watermark",
          timeOf([&] { WatermarkApplier::apply(QStringLiteral("CONFIDENTIAL"), 0.25, *document, &undoManager); }), aim);
    QApplication::processEvents();
    print("watermark-undo", timeOf([&] { undoManager.undo(); }), aim);
    print("watermark-redo", timeOf([&] { undoManager.redo(); }), aim);

    const QString output = arguments.value(2, folder.filePath(QStringLiteral("stamped.pdf")));
    std::shared_ptr<const PDFDocumentSnapshot> frozen;
    print("watermark-freeze", timeOf([&] { frozen = PDFDocumentSnapshot::of(*document->pdfDocument()); }), aim);
    print("watermark-write", timeOf([&] { frozen->write(output); }), 4 * aim);
    constexpr double bytesAim = 200;
    constexpr double sharedLook = 8192; // bytes, of the one appearance for all pages of a size
    const auto grown = double(QFileInfo(output).size() - QFileInfo(arguments[1]).size());
    print("watermark-file", "bytes_a_page", (grown - sharedLook) / document->pdfDocument()->pageCount(), bytesAim);
}
