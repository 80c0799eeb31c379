// bookmarks_bench [COUNT]
//
// Edits a list of COUNT (2,000) bookmarks in its sheet: the time of the main thread until the sheet shows each change.
// Prints one JSON object for each with its aim.

#include "BookmarkList.h"
#include "BookmarkModel.h"
#include "BookmarkOperations.h"
#include "BookmarksEditorView.h"
#include "Measurement.h"
#include "PDFDocument.h"
#include "PDFEditorDocument.h"
#include "PDFPage.h"
#include "PDFViewCoordinator.h"
#include "UndoManager.h"
#include "UserDefaults.h"

#include <QApplication>
#include <QImage>
#include <QTemporaryDir>

#include <cstdio>
#include <functional>
#include <memory>
#include <vector>

namespace {

constexpr int repetitions = 9;
constexpr double aim = 50; // milliseconds: half of what is felt as a wait

void measure(const char* job, const std::function<void(int)>& change) {
    std::vector<double> times;
    for (int i = 0; i < repetitions; ++i) {
        const double before = Measurement::threadCpu();
        change(i);
        QApplication::processEvents();
        times.push_back(Measurement::threadCpu() - before);
    }
    const double median = Measurement::percentile(times, 0.5);
    std::printf("{\"job\": \"bookmarks-%s\", \"cpu_ms\": %.1f, \"max_ms\": %.1f, \"aim\": \"cpu_ms <= %.0f\", "
                "\"to_aim\": %.1f}\n",
                job, median, Measurement::percentile(times, 1), aim, median - aim);
}

} // namespace

int main(int argc, char** argv) {
    const QApplication application(argc, argv);
    const int count = argc > 1 ? QByteArray(argv[1]).toInt() : 2000;
    constexpr int pageCount = 500;
    const auto document = std::make_shared<PDFEditorDocument>();
    const auto pages = std::make_shared<PDFDocument>();
    QImage paper(8, 8, QImage::Format_Grayscale8);
    paper.fill(Qt::white);
    for (int i = 0; i < pageCount; ++i)
        pages->insert(PDFPage::fromImage(paper, QSizeF(612, 792)), i);
    document->setPdfDocument(pages);
    std::vector<BookmarkOperations::Bookmark> bookmarks(static_cast<std::size_t>(count));
    for (int i = 0; i < count; ++i)
        bookmarks[std::size_t(i)] = {QUuid::createUuid(), QStringLiteral("Entry %1").arg(i), i * pageCount / count};
    BookmarkOperations::writeBookmarks(bookmarks, *document, nullptr);

    const QTemporaryDir folder;
    UserDefaults defaults(folder.filePath(QStringLiteral("settings.ini")));
    PDFViewCoordinator coordinator(defaults);
    BookmarksEditorView sheet(document, coordinator);
    sheet.show();
    QApplication::processEvents();
    auto* list = sheet.findChild<BookmarkList*>();
    auto* model = sheet.findChild<BookmarkModel*>();
    const int middle = count / 2;
    measure("add", [&](int i) { model->add(QStringLiteral("New %1").arg(i), pageCount / 2); });
    measure("rename",
            [&](int i) { model->setData(model->index(middle, 0), QStringLiteral("Other %1").arg(i), Qt::EditRole); });
    list->setCurrentIndex(model->index(middle, 0));
    measure("move", [&](int i) { list->moveSelected(i % 2 == 0 && list->canMoveSelected(1) ? 1 : -1); });
    measure("remove", [&](int) { model->remove({middle}); });
    measure("undo", [&](int) { document->undoManager()->undo(); });
    measure("redo", [&](int) { document->undoManager()->redo(); });
    return 0;
}
