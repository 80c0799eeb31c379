// save_bench
//
// Saves a document of 100 MB and 1,321 pages on which 2,000 annotations were changed: for how long the main thread
// stands still for the snapshot, and how long the worker takes for the update, for a file with the update appended, and
// for one written anew. Prints one JSON object for each, the median of five runs (of three for the last). The exit code
// tells only whether the measuring was possible.

#include "Measurement.h"
#include "PDFAnnotation.h"
#include "PDFDocument.h"
#include "PDFDocumentSnapshot.h"
#include "PDFError.h"
#include "PDFPage.h"

#include <QElapsedTimer>
#include <QFileInfo>
#include <QGuiApplication>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTemporaryDir>

#include <cstdio>
#include <functional>
#include <future>
#include <optional>
#include <random>

#include <sys/resource.h>

using namespace Measurement;

namespace {

constexpr int pageCount = 1321;
constexpr int pictureSide = 160; // pixels
constexpr int annotationCount = 2000;
constexpr int annotatedPages = 500;
constexpr double snapshotAim = 100; // milliseconds

/// Pages that show a picture of noise each, which nothing makes smaller.
QByteArray largeFile() {
    QByteArray file = "%PDF-1.5\n%\xE2\xE3\xCF\xD3\n";
    std::vector<qsizetype> offsets;
    const auto add = [&](const QByteArray& value) {
        offsets.push_back(file.size());
        file += QByteArray::number(qsizetype(offsets.size())) + " 0 obj\n" + value + "\nendobj\n";
    };
    const auto stream = [](const QByteArray& keys, const QByteArray& data) {
        return "<< " + keys + " /Length " + QByteArray::number(data.size()) + " >>\nstream\n" + data + "\nendstream";
    };
    const QByteArray side = QByteArray::number(pictureSide);
    QByteArray kids;
    for (int i = 0; i < pageCount; ++i)
        kids += QByteArray::number(3 + i * 3) + " 0 R ";
    add("<< /Type /Catalog /Pages 2 0 R >>");
    add("<< /Type /Pages /Count " + QByteArray::number(pageCount) + " /Kids [" + kids + "] >>");
    std::mt19937 random(1);
    for (int i = 0; i < pageCount; ++i) {
        QByteArray noise(qsizetype(pictureSide) * pictureSide * 3, Qt::Uninitialized);
        for (char& byte : noise)
            byte = char(random());
        const QByteArray content = QByteArray::number(4 + i * 3);
        const QByteArray picture = QByteArray::number(5 + i * 3);
        add("<< /Type /Page /Parent 2 0 R /MediaBox [0 0 612 792] /Contents " + content +
            " 0 R /Resources << /XObject << /Im " + picture + " 0 R >> >> >>");
        add(stream({}, "q 500 0 0 500 56 146 cm /Im Do Q"));
        add(stream("/Type /XObject /Subtype /Image /Width " + side + " /Height " + side +
                       " /ColorSpace /DeviceRGB /BitsPerComponent 8",
                   noise));
    }
    const qsizetype table = file.size();
    const QByteArray size = QByteArray::number(qsizetype(offsets.size()) + 1);
    file += "xref\n0 " + size + "\n0000000000 65535 f \n";
    for (const qsizetype offset : offsets)
        file += QByteArray::number(offset).rightJustified(10, '0') + " 00000 n \n";
    return file + "trailer\n<< /Size " + size + " /Root 1 0 R >>\nstartxref\n" + QByteArray::number(table) +
           "\n%%EOF\n";
}

/// Strokes of 200 points, marks and text boxes in turn.
std::shared_ptr<PDFAnnotation> annotation(int number) {
    const QRectF bounds(40 + number % 7 * 60, 60 + number % 11 * 50, 120, 40);
    if (number % 3 == 0) {
        auto ink = std::make_shared<PDFAnnotation>(bounds, PDFAnnotationSubtype::ink);
        QPainterPath path(QPointF(2, 20));
        for (int i = 1; i < 200; ++i)
            path.lineTo(2 + i * 0.58, 20 + (i * 37) % 15);
        ink->add(path);
        ink->setColor(QColor(Qt::darkBlue));
        return ink;
    }
    auto other = std::make_shared<PDFAnnotation>(bounds, number % 3 == 1 ? PDFAnnotationSubtype::highlight
                                                                         : PDFAnnotationSubtype::freeText);
    other->setColor(QColor(Qt::yellow));
    other->setContents(QStringLiteral("Remark %1 of the reader").arg(number));
    other->setFont(QFont(QStringLiteral("DejaVu Sans"), 12));
    return other;
}

void annotate(PDFDocument& document) {
    for (int i = 0; i < annotationCount; ++i)
        document.page(i % annotatedPages * pageCount / annotatedPages)->addAnnotation(annotation(i));
}

double timeOf(const std::function<void()>& action) {
    QElapsedTimer clock;
    clock.start();
    action();
    return milliseconds(clock.nsecsElapsed());
}

struct Result {
    const char* job;
    std::vector<double> times; // milliseconds
    qint64 bytes = 0;          // that came of it
    std::optional<double> aim = std::nullopt;
};

void report(const Result& result) {
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    QJsonObject line{{QStringLiteral("job"), QString::fromLatin1(result.job)},
                     {QStringLiteral("p50_ms"), rounded(percentile(result.times, 0.5))},
                     {QStringLiteral("max_ms"), rounded(percentile(result.times, 1))},
                     {QStringLiteral("peak_memory_mb"), double(usage.ru_maxrss) / 1024}}; // of the program so far
    if (result.bytes > 0)
        line.insert(QStringLiteral("bytes"), result.bytes);
    if (result.aim) {
        line.insert(QStringLiteral("aim"), QStringLiteral("max_ms < %1").arg(*result.aim));
        line.insert(QStringLiteral("to_aim"), rounded(percentile(result.times, 1) - *result.aim));
    }
    std::puts(QJsonDocument(line).toJson(QJsonDocument::Compact).constData());
    std::fflush(stdout);
}

/// Takes a snapshot here and hands it to a worker.
struct Measured {
    double snapshot = 0; // milliseconds
    double work = 0;
};
Measured measured(const PDFDocument& document, const std::function<void(const PDFDocumentSnapshot&)>& work) {
    Measured times;
    std::shared_ptr<const PDFDocumentSnapshot> snapshot;
    times.snapshot = timeOf([&] { snapshot = PDFDocumentSnapshot::of(document); });
    times.work = std::async(std::launch::async, [&] { return timeOf([&] { work(*snapshot); }); }).get();
    return times;
}

void run() {
    const QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("saved.pdf"));
    const QByteArray file = largeFile();
    Result snapshot{"snapshot", {}, 0, snapshotAim};
    Result update{"update", {}};
    Result append{"append", {}};
    Result rewrite{"rewrite", {}};
    for (int i = 0; i < 5; ++i) {
        const auto document = PDFDocument::fromData(file); // anew, so that nothing has been read before
        annotate(*document);
        Measured times = measured(
            *document, [&](const PDFDocumentSnapshot& moment) { update.bytes = moment.update().value().size(); });
        snapshot.times.push_back(times.snapshot);
        update.times.push_back(times.work);
        times = measured(*document, [&](const PDFDocumentSnapshot& moment) { moment.write(path); });
        snapshot.times.push_back(times.snapshot);
        append.times.push_back(times.work);
        append.bytes = QFileInfo(path).size();
    }
    report(snapshot);
    report(update);
    report(append);
    for (int i = 0; i < 3; ++i) {
        const auto document = PDFDocument::fromData(file);
        annotate(*document);
        document->removePage(pageCount - 1);
        rewrite.times.push_back(
            measured(*document, [&](const PDFDocumentSnapshot& moment) { moment.write(path); }).work);
        rewrite.bytes = QFileInfo(path).size();
    }
    report(rewrite);
}

} // namespace

int main(int argc, char** argv) {
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    const QGuiApplication application(argc, argv);
    try {
        run();
    } catch (const PDFError& error) {
        std::fprintf(stderr, "%s\n", qPrintable(error.sentence()));
        return 1;
    }
    return 0;
}
