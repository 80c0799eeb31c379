// recognition_bench make SCAN.pdf TEXT.txt    draws known text to a scan of 20 pages
// recognition_bench apply SCAN.pdf OUT.pdf    recognizes it, as "Recognize Text (OCR)…" does, and saves
// recognition_bench accuracy TEXT.txt OUT.pdf prints the share of the known words that are in the file's text
//
// For recognition.sh, which times them beside another program.

#include "OCRTextLayerApplier.h"
#include "PDFDocument.h"
#include "PDFEditorDocument.h"
#include "PDFPage.h"
#include "UndoManager.h"

#include <QBuffer>
#include <QCoroTask>
#include <QFile>
#include <QGuiApplication>
#include <QHash>
#include <QImage>
#include <QPainter>

#include <cstdio>
#include <random>

namespace {

constexpr int pageCount = 20;
constexpr double dotsPerInch = 300;
constexpr QSizeF paper(612, 792); // points
constexpr int linesOnPage = 40;
constexpr int wordsInLine = 10;
constexpr double skew = 1;  // degrees, of every third page
constexpr double noise = 6; // standard deviation, of 255

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
    for (int page = 0; page < pageCount; ++page) {
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
    const QGuiApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    if (arguments.size() != 4)
        return 2;
    const QString& job = arguments[1];
    const auto run = job == QLatin1String("make") ? make : job == QLatin1String("apply") ? apply : accuracy;
    return run(arguments[2], arguments[3]) ? 0 : 1;
}
