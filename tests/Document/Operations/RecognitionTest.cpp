#include "OCRTextLayerApplier.h"

#include "EditorTest.h"
#include "PDFSource.h"
#include "PageOCRExtractor.h"
#include "PageOperations.h"
#include "PageText.h"

#include <QCoroTask>
#include <QPainter>

namespace {

constexpr auto media = PDFDisplayBox::mediaBox;
constexpr int dotsPerInch = 300;
constexpr QSizeF paper(360, 240); // points

/// A scan of `paper` with the line's baseline 90 points from the left and 100 from the top.
QImage scanOf(const QString& line) {
    QImage image((paper * dotsPerInch / 72).toSize(), QImage::Format_Grayscale8);
    image.fill(Qt::white);
    QPainter painter(&image);
    QFont font(QStringLiteral("DejaVu Serif"));
    font.setPixelSize(12 * dotsPerInch / 72);
    painter.setFont(font);
    painter.drawText(QPointF(90, 100) * dotsPerInch / 72, line);
    return image;
}

/// A page on which the scan stands upright once it is shown, with `more` content, in a media box anywhere.
int addScan(PdfFixture& fixture, const QString& line, int rotation = 0, const QRectF& box = {QPointF(), paper},
            const QByteArray& more = {}) {
    const QImage scan = scanOf(line);
    const QByteArray image = fixture.addStream(
        "<< /Type /XObject /Subtype /Image /BitsPerComponent 8 /ColorSpace /DeviceGray /Filter /DCTDecode /Width " +
            QByteArray::number(scan.width()) + " /Height " + QByteArray::number(scan.height()) + " >>",
        PdfFixture::jpegOf(scan));
    const QTransform turns[] = {{1, 0, 0, 1, 0, 0}, {0, 1, -1, 0, 1, 0}, {-1, 0, 0, -1, 1, 1}, {0, -1, 1, 0, 0, 1}};
    const QTransform place = turns[rotation / 90] * QTransform(box.width(), 0, 0, box.height(), box.left(), box.top());
    QByteArray content = "q ";
    for (const double value : {place.m11(), place.m12(), place.m21(), place.m22(), place.dx(), place.dy()})
        content += QByteArray::number(value) + ' ';
    const int page =
        fixture.addPageWithContent(content + "cm /Scan Do Q " + more, "<< /XObject << /Scan " + image + " >> >>");
    fixture.setPageKey(page, "/MediaBox", PdfFixture::rectArray(box));
    fixture.setPageKey(page, "/Rotate", QByteArray::number(rotation));
    return page;
}

/// What is read from the page to be told; blank when there is none, which no recognized text is.
std::string read(const std::shared_ptr<PDFPage>& page) {
    return QCoro::waitFor(PageOCRExtractor::recognizeText(page)).value_or(QStringLiteral(" ")).toStdString();
}

std::optional<OCRTextLayerApplier::Recognition> recognized(const std::shared_ptr<PDFPage>& page) {
    return QCoro::waitFor(OCRTextLayerApplier::recognizeAndFlatten(page));
}

/// The sentence of a run that has nothing to recognize with.
QCoro::Task<std::string> failure(PDFEditorDocument& document) {
    try {
        co_await OCRTextLayerApplier::apply(document, nullptr);
    } catch (const OCRTextLayerApplier::DataMissing& error) {
        co_return error.what();
    }
    co_return "none";
}

class RecognitionTest : public EditorTest {};

} // namespace

TEST_F(RecognitionTest, ANewPageShowsTheSameAndIsReadWhereItIsShown) {
    const QString line = QStringLiteral("The mountain railway opens in June");
    const QRectF turnedBox(-30, 40, 240, 360);
    const struct {
        int rotation;
        QRectF mediaBox;
        std::vector<std::pair<QByteArray, QByteArray>> keys;
        QByteArray more = {}; ///< beside the scan, so that its bytes can't be kept
    } cases[] = {
        {90, turnedBox, {{"/CropBox", "[-20 50 200 390]"}}},
        {270,
         {100, -50, 120, 180},
         {{"/UserUnit", "2"}, {"/TrimBox", "[110 -40 200 100]"}, {"/BleedBox", "[105 -45 210 110]"}}},
        {90, turnedBox, {{"/CropBox", "[-20 50 200 390]"}}, "0 0 1 rg 150 350 40 30 re f"},
    };
    for (const auto& [rotation, mediaBox, keys, more] : cases) {
        SCOPED_TRACE(rotation);
        PdfFixture fixture;
        addScan(fixture, line, rotation, mediaBox, more);
        for (const auto& [key, value] : keys)
            fixture.setPageKey(0, key, value);
        open(fixture.bytes());
        const auto before = pdf().page(0);
        EXPECT_TRUE(before->string().isEmpty());
        EXPECT_EQ(read(before), line.toStdString()) << "also what is outside of the crop box";
        EXPECT_EQ(QCoro::waitFor(OCRTextLayerApplier::applyToCurrentPage(0, m_document, &undoManager())), line);
        const auto page = pdf().page(0);
        ASSERT_NE(page, before);
        EXPECT_EQ(page->geometry(), before->geometry());
        EXPECT_EQ(page->string(), line);
        EXPECT_EQ(page->content().source->bytes().contains(PdfFixture::jpegOf(scanOf(line))), more.isEmpty());
        EXPECT_LT(difference(page->thumbnail({720, 720}, media), before->thumbnail({720, 720}, media)), 6);

        // Letters without and with descenders: their box is what the scan says, 9 of 12 points above the baseline.
        const auto text = page->text();
        ASSERT_EQ(text->lines.size(), 1U);
        QRectF marked;
        for (const PDFQuad& quad : text->lineQuads(0, int(line.size())))
            marked |= page->displayTransform(media).mapRect(quad.boundingRect());
        EXPECT_NEAR(marked.left(), 90, 3);
        EXPECT_NEAR(marked.bottom(), 103, 3);
        EXPECT_NEAR(marked.top(), 91, 3);

        EXPECT_EQ(PdfPrograms::text(pdf().dataRepresentation()).simplified(), line);
    }
}

TEST_F(RecognitionTest, PagesBelowTwentyCharactersNeedIt) {
    open(pagesOf({QStringLiteral("1234567890123456789"), QStringLiteral("12345678901234567890"), QString(22, u' '),
                  QStringLiteral("    3456789012    ")}));
    EXPECT_EQ(OCRTextLayerApplier::pagesNeedingOCR(pdf()), (std::vector<int>{0, 2, 3}));
}

TEST_F(RecognitionTest, WhatAnnotationsShowIsReadAndStaysInThePicture) {
    PdfFixture fixture;
    addScan(fixture, QStringLiteral("Delivered on Monday"));
    fixture.addTextField(0, QStringLiteral("name"), {60, 60, 220, 20}, QStringLiteral("Checked by Marianne"));
    addScan(fixture, QStringLiteral("Nothing over it"));
    fixture.addLink(1, {10, 10, 50, 20}, 0);
    fixture.addPageWithContent({}, fixture.defaultResources(), {360, 240});
    fixture.addPageWithContent({}, "<< >>", {200'000, 0.01});
    fixture.addPageWithContent("BT /F1 60 Tf 200 60 Td (Panorama of the harbour) Tj ET", fixture.defaultResources(),
                               {33'000, 160}); // too large for the scale of others
    open(fixture.bytes());
    const auto page = pdf().page(0);
    EXPECT_EQ(read(page), "Delivered on Monday\nChecked by Marianne");
    const auto note = std::make_shared<PDFAnnotation>(QRectF(60, 20, 200, 24), PDFAnnotationSubtype::freeText);
    note->setFont(QFont(QStringLiteral("DejaVu Sans"), 14));
    note->setFontColor(QColor(Qt::black));
    note->setContents(QStringLiteral("Paid in full"));
    page->addAnnotation(note);
    EXPECT_EQ(read(page), "Delivered on Monday\nChecked by Marianne\nPaid in full");
    const auto noted = recognized(page);
    ASSERT_TRUE(noted);
    EXPECT_EQ(noted->text, QStringLiteral("Delivered on Monday\nChecked by Marianne\nPaid in full"));
    EXPECT_TRUE(noted->page->annotations().empty());
    EXPECT_TRUE(PdfPrograms::unpacked(noted->page->content().source->sharedBytes()).contains("/Width 1500"))
        << "as sharp as the scan";
    const auto blank = recognized(pdf().page(2));
    ASSERT_TRUE(blank);
    EXPECT_EQ(blank->text, QString());
    EXPECT_TRUE(PdfPrograms::unpacked(blank->page->content().source->sharedBytes()).contains("/Width 720"));
    EXPECT_FALSE(recognized(pdf().page(3))) << "narrower than a pixel";
    EXPECT_EQ(read(pdf().page(2)) + read(pdf().page(3)) + read(pdf().page(4)), "  Panorama of the harbour");
    EXPECT_TRUE(page->string().isEmpty()) << "the document is as it was";

    // A page that changes while it is drawn is read as it was or as it is, with no mixture.
    auto task = PageOCRExtractor::recognizeText(page);
    page->removeAnnotation(page->annotations().front());
    const std::string text = QCoro::waitFor(std::move(task)).value_or(QString()).toStdString();
    EXPECT_TRUE(text == "Delivered on Monday\nPaid in full" ||
                text == "Delivered on Monday\nChecked by Marianne\nPaid in full")
        << text;

    std::stop_source stop;
    auto stopped = PageOCRExtractor::recognizeText(page, stop.get_token());
    stop.request_stop();
    EXPECT_EQ(read(page), "Delivered on Monday\nPaid in full") << "the other one goes on";
    EXPECT_FALSE(QCoro::waitFor(std::move(stopped)).has_value());
}

TEST_F(RecognitionTest, APageMayGoWhileItIsRead) {
    auto document = PDFDocument::fromData(pagesOf({QStringLiteral("Still readable")}));
    auto page = document->page(0);
    auto task = PageOCRExtractor::recognizeText(page);
    const std::weak_ptr<PDFPage> watched = std::exchange(page, nullptr);
    document.reset();
    EXPECT_EQ(QCoro::waitFor(std::move(task)).value_or(QString()).toStdString(), "Still readable");
    EXPECT_TRUE(watched.expired()) << "nobody keeps the page any longer";
}

TEST_F(RecognitionTest, ARunReplacesWhatNobodyHasChangedAndIsOneStep) {
    PdfFixture fixture;
    for (const char* name : {"Alpha", "Bravo", "Charlie", "Delta"})
        addScan(fixture, QStringLiteral("This is page ") + QLatin1String(name));
    fixture.addPage({QStringLiteral("A page that has its own text")});
    open(fixture.bytes());
    std::vector<std::shared_ptr<PDFPage>> before;
    for (int i = 0; i < pdf().pageCount(); ++i)
        before.push_back(pdf().page(i));
    OCRTextLayerApplier::Options options;
    QStringList progress;
    options.progress = [&](int page, int count) {
        progress.append(QStringLiteral("%1/%2").arg(page).arg(count));
        if (progress.size() > 1)
            return;
        PageOperations::movePage(m_document, 0, 4, nullptr);
        PageOperations::deletePages(m_document, {0}, nullptr); // Bravo
        before[2]->setRotation(180);
    };
    auto run = OCRTextLayerApplier::apply(m_document, &undoManager(), options);
    EXPECT_EQ(QCoro::waitFor(std::move(run)), 2);
    const QString after = QStringLiteral("|This is page Delta|A page that has its own text|This is page Alpha");
    EXPECT_EQ(texts(pdf()), after);
    EXPECT_EQ(pdf().page(0), before[2]);
    EXPECT_EQ(progress.join(u' ').toStdString(), "1/4 2/4 3/4 4/4");
    EXPECT_EQ(m_told, 3);

    QCoreApplication::processEvents();
    edit([this] { undoManager().undo(); }, true);
    EXPECT_EQ(texts(pdf()), QStringLiteral("||A page that has its own text|"));
    EXPECT_EQ(pdf().page(1), before[3]);
    EXPECT_EQ(pdf().page(3), before[0]);
    EXPECT_FALSE(undoManager().canUndo());
    undoManager().redo();
    EXPECT_EQ(texts(pdf()), after);
    EXPECT_EQ(m_told, 5);
    EXPECT_FALSE(undoManager().canUndo()) << "a redo is the end of the line";
}

TEST_F(RecognitionTest, ARunThatEndsEarlyLeavesEverythingAsItWas) {
    PdfFixture fixture;
    fixture.addPage({QStringLiteral("A page that has its own text")});
    for (int i = 0; i < 3; ++i)
        addScan(fixture, QStringLiteral("One of several scans"));
    open(fixture.bytes());
    const auto expectUntouched = [this](const char* what) {
        EXPECT_EQ(texts(pdf()), QStringLiteral("A page that has its own text|||")) << what;
        QCoreApplication::processEvents();
        EXPECT_FALSE(undoManager().canUndo()) << what;
    };
    EXPECT_EQ(QCoro::waitFor(OCRTextLayerApplier::applyToCurrentPage(0, m_document, &undoManager())),
              QStringLiteral("A page that has its own text"));
    EXPECT_FALSE(QCoro::waitFor(OCRTextLayerApplier::applyToCurrentPage(4, m_document, &undoManager())));
    expectUntouched("text that was there already");

    std::stop_source stop;
    OCRTextLayerApplier::Options stopped;
    stopped.stop = stop.get_token();
    stopped.progress = [&stop](int page, int) {
        if (page == 2)
            stop.request_stop();
    };
    EXPECT_EQ(QCoro::waitFor(OCRTextLayerApplier::apply(m_document, &undoManager(), stopped)), 0);
    expectUntouched("stopped after a page");

    OCRTextLayerApplier::Options hasty;
    hasty.limit = std::chrono::milliseconds(1);
    EXPECT_EQ(QCoro::waitFor(OCRTextLayerApplier::apply(m_document, &undoManager(), hasty)), 0);
    expectUntouched("workers that take too long");
    const QByteArray before = qgetenv("TESSDATA_PREFIX");
    qputenv("TESSDATA_PREFIX", m_folder.path().toLocal8Bit());
    const std::string sentence = QCoro::waitFor(failure(m_document));
    before.isNull() ? qunsetenv("TESSDATA_PREFIX") : qputenv("TESSDATA_PREFIX", before);
    EXPECT_NE(sentence.find("tesseract-ocr-eng"), std::string::npos) << sentence;
    expectUntouched("no language data");
}
