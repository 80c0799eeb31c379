// pdf_jobs JOB FILE [OUT]: does one job with a PDF file and ends. See bench/compare.sh.

#include "FlowingText.h"
#include "PDFAnnotation.h"
#include "PDFDocument.h"
#include "PDFError.h"
#include "PDFPage.h"
#include "PDFSource.h"
#include "PageRenderer.h"
#include "PageText.h"

#include <QCoreApplication>
#include <QFile>
#include <QImage>
#include <QTextStream>
#include <QThreadPool>
#include <QtConcurrent/QtConcurrentMap>

#include <cstdio>
#include <functional>
#include <map>

namespace {

constexpr double scale = 2.0; // 144 dpi
constexpr int spreadPages = 50;
constexpr int workers = 2;

QImage draw(const PDFPageContent& content) {
    const PDFPageGeometry geometry = content.source->geometry(content.pageNumber);
    const QSize size = (geometry.displaySize(PDFDisplayBox::cropBox) * scale).toSize();
    return PageRenderer::render(
        {content,
         {},
         true,
         geometry.displayTransform(PDFDisplayBox::cropBox) * QTransform::fromScale(scale, scale),
         QRect(QPoint(0, 0), size)});
}

bool drawFirst(const PDFDocument& document, const QString&) {
    return !draw(document.pageContents().at(0)).isNull();
}

/// The pages that compare.sh asks the reference program for: the first of each fiftieth part.
std::vector<PDFPageContent> spreadOf(const PDFDocument& document) {
    const std::vector<PDFPageContent> all = document.pageContents();
    std::vector<PDFPageContent> spread;
    for (int i = 0; i < spreadPages; ++i)
        spread.push_back(all.at(std::size_t(i) * all.size() / spreadPages));
    return spread;
}

bool drawSpread(const PDFDocument& document, const QString&) {
    const std::vector<PDFPageContent> spread = spreadOf(document);
    QThreadPool pool;
    pool.setMaxThreadCount(workers);
    std::atomic<int> drawn{0};
    QtConcurrent::blockingMap(&pool, spread,
                              [&](const PDFPageContent& content) { drawn += draw(content).isNull() ? 0 : 1; });
    return drawn == spreadPages;
}

/// Pages end with a form feed each, as the reference program writes them.
bool readText(const PDFDocument& document, const QString& out) {
    const QByteArray text = document.string().toUtf8();
    QFile file(out);
    return !text.isEmpty() && (out.isEmpty() || (file.open(QFile::WriteOnly) && file.write(text) == text.size()));
}

bool readTextSpread(const PDFDocument& document, const QString&) {
    std::vector<PDFPageContent> spread = spreadOf(document);
    const QList<QString> texts =
        QtConcurrent::blockingMapped<QList<QString>>(spread, [](const PDFPageContent& content) {
            return FlowingText(*content.source->readText(content.pageNumber)).string();
        });
    return texts.size() == spreadPages;
}

bool saveAnnotation(const PDFDocument& document, const QString& out) {
    const auto highlight = std::make_shared<PDFAnnotation>(QRectF(72, 600, 200, 14), PDFAnnotationSubtype::highlight);
    highlight->setColor(QColor(242, 169, 59));
    document.page(document.pageCount() / 2)->addAnnotation(highlight);
    document.write(out);
    return true;
}

bool saveMove(PDFDocument& document, const QString& out) {
    document.insert(document.removePage(document.pageCount() - 1), 0);
    document.write(out);
    return true;
}

bool saveDelete(PDFDocument& document, const QString& out) {
    document.removePage(document.pageCount() / 2);
    document.write(out);
    return true;
}

bool writeCopy(const PDFDocument& document, int first, int last, const QString& out) {
    PDFDocument copy;
    for (int i = first; i < last; ++i)
        copy.insert(document.page(i)->copy(), copy.pageCount());
    copy.write(out);
    return true;
}

/// The page that compare.sh asks the reference program for.
bool extract(const PDFDocument& document, const QString& out) {
    const int page = document.pageCount() / 2;
    return writeCopy(document, page, page + 1, out);
}

bool splitHalf(const PDFDocument& document, const QString& out) {
    return writeCopy(document, 0, document.pageCount() / 2, out);
}

/// The file and once more the same.
bool mergeTwo(const PDFDocument& document, const QString& out) {
    const auto again = PDFDocument::fromData(document.source()->sharedBytes());
    PDFDocument merged;
    for (const PDFDocument* each : {&document, static_cast<const PDFDocument*>(again.get())})
        for (int i = 0; i < each->pageCount(); ++i)
            merged.insert(each->page(i)->copy(), merged.pageCount());
    merged.write(out);
    return true;
}

/// With the passwords that compare.sh gives the reference program.
bool encrypt(const PDFDocument& document, const QString& out) {
    PDFWriteOptions options;
    options.userPassword = options.ownerPassword = QStringLiteral("secret");
    document.write(out, options);
    const auto copy = PDFDocument::fromFile(out);
    return copy->isLocked() && copy->unlock(options.userPassword) && copy->pageCount() == document.pageCount();
}

} // namespace

int main(int argc, char** argv) {
    const QCoreApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    static const std::map<QString, std::function<bool(PDFDocument&, const QString&)>> jobs{
        {QStringLiteral("draw-first"), drawFirst},
        {QStringLiteral("draw-spread"), drawSpread},
        {QStringLiteral("text"), readText},
        {QStringLiteral("text-spread"), readTextSpread},
        {QStringLiteral("save-annotation"), saveAnnotation},
        {QStringLiteral("save-move"), saveMove},
        {QStringLiteral("save-delete"), saveDelete},
        {QStringLiteral("encrypt"), encrypt},
        {QStringLiteral("extract"), extract},
        {QStringLiteral("split-half"), splitHalf},
        {QStringLiteral("merge-two"), mergeTwo},
    };
    const auto job = jobs.find(arguments.value(1));
    if (arguments.size() < 3 || job == jobs.end()) {
        std::fputs("usage: pdf_jobs JOB FILE [OUT], JOB one of", stderr);
        for (const auto& [name, run] : jobs)
            std::fprintf(stderr, " %s", qPrintable(name));
        std::fputs("\n", stderr);
        return 2;
    }
    QThreadPool::globalInstance()->setMaxThreadCount(workers);
    try {
        const auto document = PDFDocument::fromFile(arguments[2]);
        return job->second(*document, arguments.value(3)) ? 0 : 1;
    } catch (const PDFError& error) {
        std::fprintf(stderr, "%s: %s\n", qPrintable(arguments[2]), error.what());
        return 1;
    }
}
