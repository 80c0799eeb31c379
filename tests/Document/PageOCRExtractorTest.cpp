#include "PageOCRExtractor.h"

#include "PDFAnnotation.h"
#include "PDFDocument.h"
#include "PDFPage.h"
#include "PdfFixtures.h"

#include <QCoroTask>
#include <QPainter>
#include <QPointer>
#include <QTest>

#include <gtest/gtest.h>

namespace {

/// A scan of a page of 300 by 150 points.
QImage scanOf(const QStringList& lines) {
    QImage image(600, 300, QImage::Format_RGB32);
    image.fill(Qt::white);
    QPainter painter(&image);
    QFont font(QStringLiteral("DejaVu Sans"));
    font.setPixelSize(28);
    painter.setFont(font);
    for (int i = 0; i < lines.size(); ++i)
        painter.drawText(40, 60 + 50 * i, lines[i]);
    return image;
}

std::shared_ptr<PDFPage> scannedPage(const QStringList& lines) {
    return PDFPage::fromImage(scanOf(lines), {300, 150});
}

/// Blank when there is none, which no recognized text is.
std::string read(const std::shared_ptr<PDFPage>& page) {
    return QCoro::waitFor(PageOCRExtractor::recognizeText(page)).value_or(QStringLiteral(" ")).toStdString();
}

std::shared_ptr<PDFAnnotation> freeText(const QRectF& bounds, const QString& text) {
    auto annotation = std::make_shared<PDFAnnotation>(bounds, PDFAnnotationSubtype::freeText);
    QFont font(QStringLiteral("DejaVu Sans"));
    font.setPointSizeF(14);
    annotation->setFont(font);
    annotation->setFontColor(QColor(Qt::black));
    annotation->setContents(text);
    return annotation;
}

/// What a window does that reads a page.
class Reader : public QObject {
public:
    QCoro::Task<> read(std::shared_ptr<const PDFPage> page, std::shared_ptr<QStringList> log) {
        const QPointer<Reader> self(this);
        const auto text = co_await PageOCRExtractor::recognizeText(page, m_stop.get_token());
        log->append(self ? text.value_or(QStringLiteral("none")) : QStringLiteral("gone"));
    }
    ~Reader() override { m_stop.request_stop(); }

private:
    std::stop_source m_stop;
};

TEST(PageOCRExtractor, ReadsAPageAsItIsShown) {
    const QTransform quarterBack = QTransform().rotate(-90);
    const QStringList lines{QStringLiteral("Invoice number 4711"), QStringLiteral("Total amount 86 euros")};
    const auto turned =
        PDFPage::fromImage(scanOf(lines).transformed(quarterBack), quarterBack.mapRect(QRectF(0, 0, 300, 150)).size());
    turned->setRotation(90);
    EXPECT_EQ(read(turned), "Invoice number 4711\nTotal amount 86 euros");
    EXPECT_TRUE(turned->string().isEmpty());

    PdfFixture fixture;
    // All of the media box, wherever it begins; a unit of the page may be larger than a point.
    fixture.addPage({QStringLiteral("First line outside of the crop box"), QStringLiteral("Second line")}, {400, 200});
    fixture.setPageKey(0, "/MediaBox", "[-50 50 400 250]");
    fixture.setPageKey(0, "/CropBox", "[0 60 100 70]");
    fixture.setPageKey(0, "/UserUnit", "2");
    fixture.addPageWithContent("BT /F1 60 Tf 200 60 Td (Panorama of the harbour) Tj ET", fixture.defaultResources(),
                               {33'000, 160}); // too large for the scale of others
    fixture.addPageWithContent({});
    fixture.addPageWithContent({}, "<< >>", {200'000, 4}); // less than a pixel high at any scale that fits
    const auto document = PDFDocument::fromData(fixture.bytes());
    const char* texts[] = {"First line outside of the crop box\nSecond line", "Panorama of the harbour", " ", " "};
    for (int i = 0; i < document->pageCount(); ++i)
        EXPECT_EQ(read(document->page(i)), texts[i]);

    std::stop_source stop;
    auto task = PageOCRExtractor::recognizeText(document->page(0), stop.get_token());
    stop.request_stop();
    EXPECT_FALSE(QCoro::waitFor(std::move(task)).has_value());
}

TEST(PageOCRExtractor, ReadsAnnotationsOfTheFileAndNewOnes) {
    PdfFixture fixture;
    fixture.addPage({QStringLiteral("Delivered on Monday")}, {300, 150});
    fixture.addTextField(0, QStringLiteral("name"), {36, 50, 200, 20}, QStringLiteral("Checked by Marianne"));
    const auto document = PDFDocument::fromData(fixture.bytes());
    const auto page = document->page(0);
    EXPECT_EQ(read(page), "Delivered on Monday\nChecked by Marianne");

    // The worker draws the field, which goes meanwhile: the page is read as it was or as it is, with no mixture.
    auto task = PageOCRExtractor::recognizeText(page);
    page->removeAnnotation(page->annotations().front());
    page->addAnnotation(freeText({36, 10, 200, 24}, QStringLiteral("Paid in full")));
    const std::string text = QCoro::waitFor(std::move(task)).value_or(QString()).toStdString();
    EXPECT_TRUE(text == "Delivered on Monday\nPaid in full" || text == "Delivered on Monday\nChecked by Marianne")
        << text;
    EXPECT_EQ(read(page), "Delivered on Monday\nPaid in full");
}

TEST(PageOCRExtractor, PagesAndReadersMayGoMeanwhile) {
    PdfFixture fixture;
    fixture.addPage({QStringLiteral("Still readable")}, {300, 150});
    auto document = PDFDocument::fromData(fixture.bytes());
    auto page = document->page(0);
    auto task = PageOCRExtractor::recognizeText(page);
    const std::weak_ptr<PDFPage> watched = std::exchange(page, nullptr);
    document.reset();
    EXPECT_EQ(QCoro::waitFor(std::move(task)).value_or(QString()).toStdString(), "Still readable");
    EXPECT_TRUE(watched.expired()) << "nobody keeps the page any longer";

    const auto log = std::make_shared<QStringList>();
    const auto lasting = std::make_unique<Reader>();
    auto closing = std::make_unique<Reader>();
    closing->read(scannedPage({QStringLiteral("Window that closes")}), log); // the tasks are dropped
    lasting->read(scannedPage({QStringLiteral("Window that stays")}), log);
    closing.reset();
    ASSERT_TRUE(QTest::qWaitFor([&log] { return log->size() == 2; }, 60'000));
    log->sort(); // either may come first: their pages are drawn and read in turns
    EXPECT_EQ(*log, QStringList({QStringLiteral("Window that stays"), QStringLiteral("gone")}));
}

} // namespace
