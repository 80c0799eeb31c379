// recovery_bench [MEGABYTES]
//
// Records the changes of a file of that size (100 unless given) after each of 30 edits, as the program does against a
// crash, and prints a JSON object for the first record, which holds the file itself, and one for those that follow:
// what one took of the main thread, and how long the other thread was at it, disk included. The exit code tells only
// whether the measuring was possible.

#include "DocumentController.h"
#include "DocumentRecovery.h"
#include "Measurement.h"
#include "PDFAnnotation.h"
#include "PDFDocument.h"
#include "PDFEditorDocument.h"
#include "PDFPage.h"
#include "SilentPresenter.h"
#include "UndoManager.h"
#include "UserDefaults.h"

#include <QElapsedTimer>
#include <QEventLoop>
#include <QFile>
#include <QGuiApplication>
#include <QJsonDocument>
#include <QJsonObject>
#include <QRandomGenerator>
#include <QTemporaryDir>

#include <cstdio>
#include <cstdlib>

using namespace Measurement;

namespace {

constexpr int editCount = 30;
constexpr double mainThreadAim = 16;
constexpr double followingAim = 100;
constexpr int imageSide = 700; // pixels, of a byte each

/// A file of pages with a picture each that can't be made smaller.
QByteArray fileOf(int pageCount) {
    QByteArray file("%PDF-1.7\n");
    QList<qsizetype> offsets;
    const auto add = [&](const QByteArray& object) {
        offsets.append(file.size());
        file += QByteArray::number(offsets.size()) + " 0 obj\n" + object + "\nendobj\n";
    };
    const auto stream = [](const QByteArray& keys, const QByteArray& data) {
        return "<< " + keys + " /Length " + QByteArray::number(data.size()) + " >>\nstream\n" + data + "\nendstream";
    };
    constexpr int objectsBeforePages = 2;
    constexpr int objectsOfPage = 3;
    QByteArray kids;
    for (int page = 0; page < pageCount; ++page)
        kids += QByteArray::number(objectsBeforePages + objectsOfPage * page + 1) + " 0 R ";
    add("<< /Type /Catalog /Pages 2 0 R >>");
    add("<< /Type /Pages /Count " + QByteArray::number(pageCount) + " /Kids [" + kids + "] >>");
    for (int page = 0; page < pageCount; ++page) {
        const qsizetype first = offsets.size() + 1;
        add("<< /Type /Page /Parent 2 0 R /MediaBox [0 0 612 792] /Contents " + QByteArray::number(first + 1) +
            " 0 R /Resources << /XObject << /I " + QByteArray::number(first + 2) + " 0 R >> >> >>");
        add(stream({}, "q 612 0 0 792 0 0 cm /I Do Q"));
        QByteArray noise(qsizetype(imageSide) * imageSide, Qt::Uninitialized);
        QRandomGenerator::global()->fillRange(reinterpret_cast<quint32*>(noise.data()), noise.size() / 4);
        const QByteArray side = QByteArray::number(imageSide);
        add(stream("/Type /XObject /Subtype /Image /ColorSpace /DeviceGray /BitsPerComponent 8 /Width " + side +
                       " /Height " + side,
                   noise));
    }
    const qsizetype table = file.size();
    file += "xref\n0 " + QByteArray::number(offsets.size() + 1) + "\n0000000000 65535 f \n";
    for (const qsizetype offset : offsets)
        file += QByteArray::number(offset).rightJustified(10, '0') + " 00000 n \n";
    return file + "trailer\n<< /Size " + QByteArray::number(offsets.size() + 1) + " /Root 1 0 R >>\nstartxref\n" +
           QByteArray::number(table) + "\n%%EOF\n";
}

struct Times {
    double mainThread = 0; ///< milliseconds
    double worker = 0;
};

void edit(PDFEditorDocument& document, int number) {
    const auto page = document.pdfDocument()->page(number);
    const auto square = std::make_shared<PDFAnnotation>(QRectF(100, 100, 200, 150), PDFAnnotationSubtype::square);
    square->setColor(Qt::red);
    page->addAnnotation(square);
    document.undoManager()->registerUndo(&document, [page, square] { page->removeAnnotation(square); });
}

/// None when nothing was written.
std::optional<Times> record(DocumentRecovery& recovery) {
    QEventLoop loop;
    bool isWritten = false;
    QObject::connect(&recovery, &DocumentRecovery::written, &loop, [&] {
        isWritten = true;
        loop.quit();
    });
    QObject::connect(&recovery, &DocumentRecovery::writingFailed, &loop, &QEventLoop::quit);
    Times times;
    QElapsedTimer timer;
    timer.start();
    recovery.writePending();
    times.mainThread = milliseconds(timer.nsecsElapsed());
    loop.exec();
    times.worker = milliseconds(timer.nsecsElapsed()) - times.mainThread;
    return isWritten ? std::optional(times) : std::nullopt;
}

void print(const char* job, qint64 byteCount, const std::vector<Times>& all, double workerAim) {
    std::vector<double> mainThread;
    std::vector<double> worker;
    for (const Times& each : all) {
        mainThread.push_back(each.mainThread);
        worker.push_back(each.worker);
    }
    QJsonObject line{{QStringLiteral("job"), QString::fromLatin1(job)},
                     {QStringLiteral("file_mb"), rounded(double(byteCount) / 1e6)},
                     {QStringLiteral("count"), int(all.size())},
                     {QStringLiteral("main_thread_max_ms"), rounded(percentile(mainThread, 1))},
                     {QStringLiteral("main_thread_aim_ms"), mainThreadAim},
                     {QStringLiteral("worker_median_ms"), rounded(percentile(worker, 0.5))},
                     {QStringLiteral("worker_max_ms"), rounded(percentile(worker, 1))}};
    if (workerAim > 0)
        line.insert(QStringLiteral("worker_median_aim_ms"), workerAim);
    std::puts(QJsonDocument(line).toJson(QJsonDocument::Compact).constData());
}

} // namespace

int main(int argc, char** argv) {
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    const QGuiApplication application(argc, argv);
    const int megabytes = argc > 1 ? std::max(1, std::atoi(argv[1])) : 100;
    const QTemporaryDir folder;
    QFile file(folder.filePath(QStringLiteral("large.pdf")));
    const int pageCount = std::max(editCount, int(megabytes * 1e6 / (imageSide * imageSide)));
    if (!file.open(QIODevice::WriteOnly) || file.write(fileOf(pageCount)) < 0)
        return EXIT_FAILURE;
    file.close();

    SilentPresenter presenter;
    UserDefaults defaults(folder.filePath(QStringLiteral("settings.ini")));
    DocumentController controller([] { return std::make_shared<PDFEditorDocument>(); }, presenter, defaults);
    RecoveryPace never;
    never.afterChange = std::chrono::hours(1);
    DocumentRecovery recovery(controller, folder.filePath(QStringLiteral("recovery")), never);
    std::shared_ptr<PDFEditorDocument> document;
    controller.openDocument(QUrl::fromLocalFile(file.fileName()), false, [&](const auto& opened, bool, const QString&) {
        document = std::dynamic_pointer_cast<PDFEditorDocument>(opened);
    });
    if (!document)
        return EXIT_FAILURE;
    std::vector<Times> times;
    for (int i = 0; i < editCount; ++i) {
        edit(*document, i);
        const std::optional<Times> taken = record(recovery);
        if (!taken)
            return EXIT_FAILURE;
        times.push_back(*taken);
    }
    print("recovery, first record", file.size(), {times.front()}, 0);
    print("recovery, following records", file.size(), {times.begin() + 1, times.end()}, followingAim);
    return EXIT_SUCCESS;
}
