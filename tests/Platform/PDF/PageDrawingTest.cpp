#include "PDFAnnotation.h"
#include "PDFDocument.h"
#include "PDFPage.h"
#include "PDFSource.h"
#include "PageRenderer.h"
#include "PdfFixtures.h"
#include "PdfPrograms.h"

#include <QDateTime>
#include <QPainter>

#include <gtest/gtest.h>

#include <stop_token>
#include <thread>

namespace {

/// Red in the lower left quarter of a 200 by 100 page, blue in the upper right one.
constexpr auto quarters = "1 0 0 rg 0 0 100 50 re f 0 0 1 rg 100 50 100 50 re f";

const QRgb red = qRgb(255, 0, 0);
const QRgb blue = qRgb(0, 0, 255);
const QRgb white = qRgb(255, 255, 255);

std::shared_ptr<PDFDocument> quartersPage(const std::vector<std::pair<QByteArray, QByteArray>>& keys = {}) {
    PdfFixture pdf;
    pdf.addPageWithContent(quarters, "<< >>", QSizeF(200, 100));
    for (const auto& [key, value] : keys)
        pdf.setPageKey(0, key, value);
    return PDFDocument::fromData(pdf.bytes());
}

QRgb at(const QImage& image, double x, double y) {
    return image.pixel(int(x * image.width()), int(y * image.height())) | 0xFF000000U;
}

/// How many pixels of a picture are of plainly another colour than those of another one, or than white paper.
int pixelsApart(const QImage& one, const QImage* other) {
    int count = 0;
    for (int y = 0; y < one.height(); ++y)
        for (int x = 0; x < one.width(); ++x) {
            const QRgb a = one.pixel(x, y);
            const QRgb b = other ? other->pixel(x, y) : white;
            const int gap =
                std::max({std::abs(qRed(a) - qRed(b)), std::abs(qGreen(a) - qGreen(b)), std::abs(qBlue(a) - qBlue(b))});
            count += gap > 120 ? 1 : 0;
        }
    return count;
}

} // namespace

TEST(PageDrawing, ThumbnailsShowThePageTurnedAndKeepItsRatio) {
    struct Case {
        QByteArray rotate;
        QSize expected;
        QRgb upperLeft, upperRight, lowerLeft, lowerRight;
    };
    for (const Case& c :
         {Case{"0", {100, 50}, white, blue, red, white}, Case{"90", {50, 100}, red, white, white, blue},
          Case{"180", {100, 50}, white, red, blue, white}, Case{"270", {50, 100}, blue, white, white, red}}) {
        const auto document = quartersPage({{"/Rotate", c.rotate}});
        const QImage image = document->page(0)->thumbnail(QSize(100, 100), PDFDisplayBox::cropBox);
        ASSERT_EQ(image.size(), c.expected) << c.rotate.toStdString();
        EXPECT_EQ(at(image, 0.25, 0.25), c.upperLeft) << c.rotate.toStdString();
        EXPECT_EQ(at(image, 0.75, 0.25), c.upperRight) << c.rotate.toStdString();
        EXPECT_EQ(at(image, 0.25, 0.75), c.lowerLeft) << c.rotate.toStdString();
        EXPECT_EQ(at(image, 0.75, 0.75), c.lowerRight) << c.rotate.toStdString();
    }
    EXPECT_TRUE(quartersPage()->page(0)->thumbnail(QSize(0, 10), PDFDisplayBox::cropBox).isNull());
}

TEST(PageDrawing, DrawPutsTheBoxAtTheOriginAndDoesNotTurn) {
    const auto document = quartersPage({{"/CropBox", "[50 0 200 100]"}, {"/Rotate", "90"}});
    QImage image(300, 200, QImage::Format_RGB32);
    image.fill(Qt::white);
    QPainter painter(&image);
    painter.translate(0, image.height());
    painter.scale(2, -2);
    document->page(0)->draw(PDFDisplayBox::cropBox, painter);
    painter.end();
    EXPECT_EQ(image.pixel(50, 150), red); // page (75, 25)
    EXPECT_EQ(image.pixel(99, 150), red);
    EXPECT_EQ(image.pixel(101, 150), white);
    EXPECT_EQ(image.pixel(200, 50), blue); // page (150, 75)
}

TEST(PageDrawing, RemovedAndChangedFileAnnotationsLeaveTheEnginesPicture) {
    PdfFixture pdf;
    pdf.addPageWithContent("", "<< >>", QSizeF(200, 100));
    const QByteArray form =
        pdf.addStream("<< /Type /XObject /Subtype /Form /BBox [0 0 10 10] >>", "1 0 0 rg 0 0 10 10 re f");
    const auto stamp = [&](const QByteArray& rect) {
        pdf.addAnnotation(0, "<< /Type /Annot /Subtype /Stamp /F 4 /Rect " + rect + " /AP << /N " + form + " >> >>");
    };
    stamp("[0 0 50 50]");
    stamp("[100 0 150 50]");
    const auto document = PDFDocument::fromData(pdf.bytes());
    const auto page = document->page(0);
    const auto look = [&] { return page->thumbnail(QSize(200, 100), PDFDisplayBox::cropBox); };
    EXPECT_EQ(look().pixel(25, 75), red);
    EXPECT_EQ(look().pixel(125, 75), red);
    EXPECT_FALSE(page->isModified());

    const auto first = page->annotations().at(0);
    const auto second = page->annotations().at(1);
    EXPECT_EQ(page->removeAnnotation(first), 0);
    EXPECT_EQ(page->hiddenFileAnnotations(), std::vector<int>{0});
    EXPECT_TRUE(page->isModified());
    EXPECT_EQ(look().pixel(25, 75), white);
    EXPECT_EQ(look().pixel(125, 75), red);

    second->setBounds(QRectF(100, 50, 50, 50)); // moved up: its own look moves with it
    EXPECT_EQ(page->hiddenFileAnnotations(), (std::vector<int>{0, 1}));
    EXPECT_EQ(look().pixel(125, 75), white);
    EXPECT_EQ(look().pixel(125, 25), red);

    page->insertAnnotation(first, 0);
    EXPECT_EQ(page->hiddenFileAnnotations(), std::vector<int>{1});
    EXPECT_EQ(look().pixel(25, 75), red);
    EXPECT_EQ(page->annotations().at(0), first);
}

TEST(PageDrawing, AbsurdAndBrokenPagesDrawWhatTheyCan) {
    PdfFixture pdf;
    pdf.addPageWithContent("1 0 0 rg 0 0 1000000 1000000 re f", "<< >>", QSizeF(1e6, 1e6));
    pdf.addPageWithContent("1 0 0 rg 0 0 1 1 re f", "<< >>", QSizeF(1, 1));
    QByteArray deep;
    for (int i = 0; i < 100000; ++i)
        deep += "q ";
    pdf.addPageWithContent(deep + "1 0 0 rg 0 0 612 792 re f");
    const QByteArray selfish = pdf.reserveObject();
    pdf.addPageWithContent("/X Do 1 0 0 rg 0 0 612 792 re f", "<< /XObject << /X " + selfish + " >> >>");
    pdf.fillObject(selfish, "null");
    const auto document = PDFDocument::fromData(pdf.bytes());
    for (int i = 0; i < document->pageCount(); ++i) {
        const QImage image = document->page(i)->thumbnail(QSize(40, 40), PDFDisplayBox::mediaBox);
        ASSERT_FALSE(image.isNull()) << i;
        EXPECT_EQ(at(image, 0.5, 0.5), red) << i;
    }
}

TEST(PageDrawing, TheFileAloneSaysHowItsAnnotationsLook) {
    PdfFixture pdf;
    pdf.addPageWithContent("", "<< >>", QSizeF(200, 100));
    const auto filled = [&pdf](const QByteArray& color) {
        return pdf.addStream("<< /Type /XObject /Subtype /Form /BBox [0 0 10 10] >>", color + " rg 0 0 10 10 re f");
    };
    const QByteArray look = filled("1 0 0");
    const QByteArray looks = "/AP << /N << /Yes " + look + " >> >> ";
    const QByteArray circle = pdf.reserveObject();
    pdf.fillObject(circle, "<< /Kids [] /Parent " + circle + " >>");
    struct Case {
        const char* name;
        QByteArray keys;
        QRgb expected;
    };
    const std::vector<Case> cases = {
        {"a state with a look", "/Subtype /Widget /FT /Btn /T (a) /AS /Yes " + looks, red},
        {"a state without one", "/Subtype /Widget /FT /Btn /T (b) /AS /Off /MK << /BG [0 0 1] >> " + looks, white},
        {"a signature to come", "/Subtype /Widget /FT /Sig /T (c) /AP << /N " + look + " >>", red},
        {"a field among its own parents", "/Subtype /Widget /FT /Tx /T (d) /AP << /N " + look + " >> /Parent " + circle,
         red},
        {"a hidden one", "/Subtype /Stamp /F 2 /AP << /N " + look + " >>", white},
        {"a stamp of the engine's own", "/Subtype /Stamp /Name /Draft /C [0 0 1]", white},
        {"a field with a colour", "/Subtype /Widget /FT /Tx /T (e) /V (text) /MK << /BG [0 0 1] >>", white},
        {"a broken look", "/Subtype /Stamp /AP << /N << /Length 5 >> >>", white},
        {"one behind it", "/Subtype /Stamp /AP << /N " + look + " >>", red},
    };
    for (std::size_t i = 0; i < cases.size(); ++i)
        pdf.addAnnotation(0, "<< /Type /Annot /Rect " + PdfFixture::rectArray(QRectF(20 * double(i), 20, 10, 10)) +
                                 ' ' + cases[i].keys + " >>");
    pdf.addAnnotation(0,
                      "<< /Subtype /Stamp /Rect [0 20 10 30] /AP << /N " + filled("0 0 1") + " >> >>"); // below a field
    const auto document = PDFDocument::fromData(pdf.bytes());
    const auto page = document->page(0);
    PageRenderRequest request{
        page->content(), {}, true, page->displayTransform(PDFDisplayBox::cropBox), QRect(0, 0, 200, 100)};
    (void)page->text(); // which loads the page as well
    const QImage image = PageRenderer::render(request);
    ASSERT_FALSE(image.isNull());
    for (std::size_t i = 0; i < cases.size(); ++i)
        EXPECT_EQ(image.pixel(20 * int(i) + 5, 75), cases[i].expected) << cases[i].name;
    request.annotations = false;
    EXPECT_EQ(PageRenderer::render(request).pixel(5, 75), white);
    request.deviceRect = QRect(0, 0, 100000, 100000);
    EXPECT_TRUE(PageRenderer::render(request).isNull());
    EXPECT_EQ(page->annotations().size(), cases.size() + 1);
}

TEST(PageDrawing, ShapesAndFramesWithoutAnAppearanceLookAsElsewhere) {
    const QByteArray corners = " 10 10 50 10 50 50 30 30 10 50] /C [0 0 1] ";
    const std::vector<std::pair<const char*, QByteArray>> cases = {
        {"polygon", "/Subtype /Polygon /IC [1 1 0] /BS << /W 4 >> /Vertices [" + corners},
        {"dashed polygon", "/Subtype /Polygon /BS << /W 3 /S /D /D [6 4] >> /Vertices [" + corners},
        {"polyline", "/Subtype /PolyLine /IC [1 0 0] /BS << /W 3 >> /LE [/None /OpenArrow] /Vertices [" + corners},
        {"squiggly", "/Subtype /Squiggly /C [1 0 0] /QuadPoints [10 30 50 30 10 10 50 10]"},
        {"frame", "/Subtype /Link /Border [0 0 3] /C [1 0 0]"},
        {"frame of a link that says nothing", "/Subtype /Link"},
        {"dashed frame", "/Subtype /Link /Border [0 0 2 [6 3]] /C [0 1 0]"},
        {"underlined", "/Subtype /Link /BS << /W 3 /S /U >> /C [0 0.5 0.5]"},
        {"no width", "/Subtype /Link /Border [0 0 0] /C [1 0 0]"},
        {"no colour", "/Subtype /Link /Border [0 0 2] /C []"},
        {"hidden", "/Subtype /Link /Border [0 0 2] /F 2"},
    };
    for (const auto& [name, keys] : cases) {
        SCOPED_TRACE(name);
        PdfFixture pdf;
        pdf.addPageWithContent("", "<< >>", QSizeF(60, 60));
        pdf.addAnnotation(0, "<< /Type /Annot /Rect [5 5 55 55] " + keys + " >>");
        const QImage theirs =
            QImage::fromData(PdfPrograms::run(QStringLiteral("pdftoppm -r 144 FILE"), pdf.bytes()).output, "PPM");
        const auto document = PDFDocument::fromData(pdf.bytes());
        const auto page = document->page(0);
        const QImage ours = page->thumbnail(QSize(120, 120), PDFDisplayBox::cropBox);
        ASSERT_EQ(ours.size(), theirs.size());
        const int ink = pixelsApart(theirs, nullptr);
        EXPECT_EQ(ink == 0, std::string(name).starts_with("no ") || keys.contains("/F 2"));
        EXPECT_LE(pixelsApart(ours, &theirs), ink * (keys.contains("Squiggly") ? 1.2 : 0.12));
        const auto inkNow = [&page] {
            return pixelsApart(page->thumbnail(QSize(120, 120), PDFDisplayBox::cropBox), nullptr);
        };
        EXPECT_NEAR(inkNow(), ink, 0.3 * ink);
        const auto annotation = page->annotations().at(0);
        annotation->setModificationDate(QDateTime::currentDateTime()); // drawn by the live object now
        EXPECT_NEAR(inkNow(), ink, 0.3 * ink);
        page->removeAnnotation(annotation);
        EXPECT_EQ(inkNow(), 0);
    }
}

TEST(PageDrawing, AnnotationsWithoutAnAppearanceAreSeenToo) {
    PdfFixture pdf;
    pdf.addPageWithContent("", "<< >>", QSizeF(200, 100));
    pdf.addAnnotation(0, "<< /Subtype /Ink /Rect [0 0 50 50] /C [1 0 0] /BS << /W 20 >> /InkList [[0 25 50 25]] >>");
    pdf.addAnnotation(0, "<< /Subtype /Text /Rect [100 50 120 70] /C [0 0 1] /Contents (note) >>");
    pdf.addAnnotation(0, "<< /Subtype /Square /F 2 /Rect [150 0 200 50] /IC [1 0 0] >>"); // hidden
    pdf.addAnnotation(0, "<< /Subtype /Square /Rect [60 0 90 30] /IC [1 0 0] /CA 0.5 /BS << /W 0 >> >>");
    const auto document = PDFDocument::fromData(pdf.bytes());
    const auto page = document->page(0);
    const QImage image = page->thumbnail(QSize(200, 100), PDFDisplayBox::cropBox);
    EXPECT_EQ(image.pixel(25, 75), red);
    EXPECT_EQ(image.pixel(108, 34), blue);
    EXPECT_EQ(image.pixel(175, 75), white);
    EXPECT_NEAR(qGreen(image.pixel(75, 85)), 128, 2) << "translucent, and drawn once";
    EXPECT_FALSE(page->isModified());

    // Nor does a picture of the file alone leave them out, when it is asked for them.
    PageRenderRequest request{
        page->content(), {}, true, page->displayTransform(PDFDisplayBox::cropBox), QRect(0, 0, 200, 100)};
    EXPECT_EQ(PageRenderer::render(request).pixel(25, 75), white);
    request.bareAnnotations = true;
    EXPECT_EQ(PageRenderer::render(request).pixel(25, 75), red);
}

TEST(PageDrawing, GoesOnWhileCachesAreGivenUp) {
    PdfFixture pdf;
    pdf.addPages(4, QStringLiteral("Words of page %1"));
    const auto document = PDFDocument::fromData(pdf.bytes());
    const QImage before = document->page(3)->thumbnail(QSize(300, 300), PDFDisplayBox::cropBox);
    const std::jthread memoryPressure([](const std::stop_token& stop) {
        while (!stop.stop_requested())
            PDFSource::releaseAllCaches();
    });
    for (int i = 0; i < 100; ++i)
        ASSERT_EQ(document->page(i % 4)->thumbnail(QSize(300, 300), PDFDisplayBox::cropBox) == before, i % 4 == 3);
}
