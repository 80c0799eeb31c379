// recognition_bench make SCAN.pdf TEXT.txt    draws known text to a scan of 20 pages, or PAGES of the environment
// recognition_bench apply SCAN.pdf OUT.pdf    recognizes it, as "Recognize Text (OCR)…" does, and saves
// recognition_bench accuracy TEXT.txt OUT.pdf prints the share of the known words that are in the file's text
// recognition_bench scroll SCAN.pdf           scrolls up and down through it while it is recognized; prints a JSON
//                                             object about the frames and the memory
//
// For recognition.sh, which times them beside another program.

#include "MeasuredView.h"
#include "Measurement.h"
#include "OCRTextLayerApplier.h"
#include "PDFDocument.h"
#include "PDFEditorDocument.h"
#include "PDFPage.h"
#include "RecognizerProcess.h"
#include "RecognizerServer.h"
#include "UndoManager.h"

#include <QApplication>
#include <QBuffer>
#include <QCoroTask>
#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QHash>
#include <QImage>
#include <QPainter>
#include <QScrollBar>
#include <QTimer>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <map>
#include <random>
#include <stop_token>
#include <thread>
#include <utility>

namespace {

constexpr double dotsPerInch = 300;
constexpr QSizeF paper(612, 792); // points
constexpr int linesOnPage = 40;
constexpr int wordsInLine = 10;
constexpr double skew = 1;  // degrees, of every third page
constexpr double noise = 6; // standard deviation, of 255

constexpr double frameAim = 16;   // milliseconds, for 99 of 100 frames
constexpr double memoryAim = 600; // MB

int pagesToMake() {
    constexpr int usual = 20;
    return qEnvironmentVariableIsSet("PAGES") ? qEnvironmentVariableIntValue("PAGES") : usual;
}

const QStringList& vocabulary() {
    static const QStringList words =
        QStringLiteral(
            "the quick invoice number of every report shows how many people have read this page before it was "
            "printed and scanned again with light that falls from one side while another clerk counts the "
            "letters, figures 1984 and 2026, names such as London or Vienna, and small words like in, on, at")
            .split(QLatin1Char(' '));
    return words;
}

QString line(std::mt19937& random) {
    QStringList words;
    for (int i = 0; i < wordsInLine; ++i)
        words.append(vocabulary()[int(random() % std::size_t(vocabulary().size()))]);
    return words.join(QLatin1Char(' '));
}

QImage scanOf(const QStringList& lines, bool isSkewed, std::mt19937& random) {
    QImage image((paper * dotsPerInch / 72).toSize(), QImage::Format_Grayscale8);
    image.fill(QColor(248, 248, 248));
    QPainter painter(&image);
    if (isSkewed)
        painter.rotate(skew);
    QFont font(QStringLiteral("DejaVu Serif"));
    font.setPixelSize(int(10 * dotsPerInch / 72));
    painter.setFont(font);
    for (int i = 0; i < int(lines.size()); ++i)
        painter.drawText(QPointF(60, 80 + 16.0 * i) * dotsPerInch / 72, lines[i]);
    painter.end();
    std::normal_distribution<double> grain(0, noise);
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x) {
            uchar& pixel = image.scanLine(y)[x];
            pixel = uchar(std::clamp(pixel + grain(random), 0.0, 255.0));
        }
    return image;
}

bool make(const QString& scan, const QString& text) {
    std::mt19937 random(5);
    PDFDocument document;
    QStringList all;
    for (int page = 0; page < pagesToMake(); ++page) {
        QStringList lines;
        for (int i = 0; i < linesOnPage; ++i)
            lines.append(line(random));
        all += lines;
        QByteArray jpeg;
        QBuffer buffer(&jpeg);
        if (!buffer.open(QIODevice::WriteOnly) || !scanOf(lines, page % 3 == 0, random).save(&buffer, "JPEG", 80))
            return false;
        document.insert(PDFPage::fromJpeg(jpeg, paper), page);
    }
    document.write(scan);
    QFile file(text);
    return file.open(QFile::WriteOnly) && file.write(all.join(QLatin1Char('\n')).toUtf8()) > 0;
}

bool apply(const QString& scan, const QString& out) {
    PDFEditorDocument document;
    document.setPdfDocument(PDFDocument::fromFile(scan));
    const int count = QCoro::waitFor(
        OCRTextLayerApplier::apply(document, document.undoManager().get(), OCRTextLayerApplier::Options()));
    document.pdfDocument()->write(out);
    return count == document.pdfDocument()->pageCount();
}

/// As who holds the scroll bar: a page in 100 ms, back from the end.
bool scroll(const QString& scan, const QString& /*unused*/) {
    constexpr double pagesPerMillisecond = 1.0 / 100;
    constexpr int frameInterval = 16; // milliseconds
    PDFEditorDocument document;
    document.setPdfDocument(PDFDocument::fromFile(scan));
    const int pageCount = document.pdfDocument()->pageCount();
    MeasuredView view;
    view.resize(1200, 900);
    view.setAutoScales(true);
    view.setDocument(document.pdfDocument());
    view.show();
    QElapsedTimer sinceStart;
    sinceStart.start();
    QTimer frames;
    frames.setTimerType(Qt::PreciseTimer);
    QObject::connect(&frames, &QTimer::timeout, &view, [&] {
        QScrollBar* bar = view.verticalScrollBar();
        const double there = double(sinceStart.elapsed()) * pagesPerMillisecond / pageCount;
        const double share = std::abs(std::remainder(there, 2.0)); // 0 to 1 and back
        view.beginFrame();
        bar->setValue(static_cast<int>(share * bar->maximum()));
    });
    frames.start(frameInterval);
    double memory = 0; // with the programs that recognize
    std::jthread looks([&memory](const std::stop_token& stop) {
        constexpr std::chrono::milliseconds pause(250);
        for (; !stop.stop_requested(); std::this_thread::sleep_for(pause))
            memory = std::max(memory, Measurement::familyMegabytes());
    });
    OCRTextLayerApplier::Options options;
    const int count =
        QCoro::waitFor(OCRTextLayerApplier::apply(document, document.undoManager().get(), std::move(options)));
    const double p99 = Measurement::percentile(view.frames, 0.99);
    std::printf("{\"job\": \"scroll-while-recognizing\", \"pages\": %d, \"seconds\": %.1f, \"frames\": %zu, "
                "\"p50_ms\": %.1f, \"p99_ms\": %.1f, \"max_ms\": %.1f, \"p99_cpu_ms\": %.1f, "
                "\"aim\": \"p99_ms < %.0f\", \"to_aim\": %.1f}\n",
                count, double(sinceStart.elapsed()) / 1000, view.frames.size(),
                Measurement::percentile(view.frames, 0.5), p99, Measurement::percentile(view.frames, 1),
                Measurement::percentile(view.frameCpu, 0.99), frameAim, p99 - frameAim);
    looks.request_stop();
    looks.join();
    std::printf("{\"job\": \"recognize-memory\", \"pages\": %d, \"file_mb\": %.0f, \"peak_mb\": %.0f, "
                "\"own_peak_mb\": %.0f, \"aim\": \"peak_mb < %.0f\", \"to_aim\": %.0f}\n",
                count, double(QFileInfo(scan).size()) / 1e6, memory, Measurement::peakMegabytes(), memoryAim,
                memory - memoryAim);
    return count == pageCount;
}

bool accuracy(const QString& text, const QString& out) {
    QFile file(text);
    if (!file.open(QFile::ReadOnly))
        return false;
    QHash<QString, int> found;
    for (const QString& word : PDFDocument::fromFile(out)->string().simplified().split(QLatin1Char(' ')))
        ++found[word];
    const QStringList known = QString::fromUtf8(file.readAll()).simplified().split(QLatin1Char(' '));
    int right = 0;
    for (const QString& word : known)
        right += --found[word] >= 0 ? 1 : 0;
    std::printf("%.4f\n", double(right) / double(known.size()));
    return true;
}

} // namespace

int main(int argc, char** argv) {
    if (argc == 2)
        return RecognizerServer::run();
    RecognizerProcess::setCommand({"/proc/self/exe", "--recognizer"});
    const QApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    const std::map<QString, bool (*)(const QString&, const QString&)> jobs{{QStringLiteral("make"), make},
                                                                           {QStringLiteral("apply"), apply},
                                                                           {QStringLiteral("scroll"), scroll},
                                                                           {QStringLiteral("accuracy"), accuracy}};
    const auto job = jobs.find(arguments.value(1));
    if (arguments.size() < 3 || job == jobs.end())
        return 2;
    return job->second(arguments[2], arguments.value(3)) ? 0 : 1;
}
