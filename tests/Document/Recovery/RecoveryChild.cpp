// A process for tests of crash recovery, to be killed.
//
// recovery_child edit FOLDER FILE: opens the PDF file and goes on changing it, with a record below FOLDER. Prints, a
//     line for each, how many squares the first page has in what is safely recorded.
// recovery_child take FOLDER: takes the lost records below FOLDER, prints their ids and an empty line, and holds them
//     until its input ends.

#include "DocumentController.h"
#include "DocumentRecovery.h"
#include "EditedPdf.h"
#include "RecoveryRecord.h"
#include "RecoveryStore.h"
#include "SilentPresenter.h"
#include "UserDefaults.h"

#include <QApplication>
#include <QDateTime>

#include <cstdio>

static constexpr int changesBeforeRewrites = 12;

static int edit(const QString& folder, const QString& path) {
    FileReading::patience = std::chrono::minutes(1);
    SilentPresenter presenter;
    UserDefaults defaults(folder + QStringLiteral("/settings.ini"));
    DocumentController controller([] { return std::make_shared<PDFEditorDocument>(); }, presenter, defaults);
    RecoveryPace pace;
    pace.afterChange = pace.betweenWrites = pace.longestBetweenWrites = pace.betweenPictures =
        std::chrono::milliseconds(1);
    DocumentRecovery recovery(controller, folder, pace);
    std::shared_ptr<PDFEditorDocument> document;
    controller.openDocument(QUrl::fromLocalFile(path), false, [&](const auto& opened, bool, const QString&) {
        document = std::dynamic_pointer_cast<PDFEditorDocument>(opened);
    });
    if (!document)
        return 1;
    // Updates first; from some change on a page is gone, and every write is a whole file.
    int changes = 0;
    const auto change = [&] {
        EditedPdf::addSquare(*document);
        if (++changes == changesBeforeRewrites)
            EditedPdf::removeLastPage(*document);
    };
    QObject::connect(&recovery, &DocumentRecovery::written, &recovery, [&] {
        std::printf("%d\n", EditedPdf::squareCount(*document->pdfDocument()));
        std::fflush(stdout);
        change();
    });
    change();
    return QApplication::exec();
}

static int take(const QString& folder) {
    const auto lost = RecoveryStore::takeLost(folder, QDateTime::currentDateTime());
    for (const auto& record : lost)
        std::puts(qPrintable(record->id()));
    std::puts("");
    std::fflush(stdout);
    while (std::getchar() != EOF) {
    }
    return 0;
}

int main(int argc, char** argv) {
    const QApplication application(argc, argv);
    const QStringList arguments = QApplication::arguments();
    if (arguments.size() == 4 && arguments[1] == QStringLiteral("edit"))
        return edit(arguments[2], arguments[3]);
    if (arguments.size() == 3 && arguments[1] == QStringLiteral("take"))
        return take(arguments[2]);
    return 2;
}
