#include "PDFPageRasterizer.h"

#include "PDFAnnotation.h"
#include "PDFDocument.h"
#include "PDFPage.h"
#include "PdfFixtures.h"

#include <QPainter>

#include <cmath>
#include <limits>

#include <gtest/gtest.h>

TEST(PDFPageRasterizer, cutsOffFractionsOfAPixelAndDrawsNothingOfAnAbsurdSize) {
    const QSizeF letter(612, 792);
    const QSizeF odd(100.9, 99.4);
    const QSizeF thin(0.9, 50);
    const QSizeF greatest(14'400, 14'400); // that other readers allow
    const struct {
        QSizeF page;
        double scale;
        QSize size = {};
    } cases[] = {
        {letter, 1.5, {918, 1188}},
        {odd, 1.0, {100, 99}},
        {odd, 1.5, {151, 149}},
        {letter, 1.0 / 612, {1, 1}},
        {letter, 1.0 / 613},
        {thin, 2.0, {1, 100}},
        {thin, 1.0},
        {greatest, 2.0},
        {{200'000, 10}, 1.0},
        {letter, 0.0},
        {letter, -1.0},
        {letter, std::nan("")},
        {letter, std::numeric_limits<double>::infinity()},
    };
    for (const auto& [page, scale, size] : cases) {
        PdfFixture fixture;
        fixture.addPageWithContent({}, "<< >>", page);
        const QImage image = PDFPageRasterizer::render(*PDFDocument::fromData(fixture.bytes())->page(0), scale);
        EXPECT_EQ(image.isNull() ? QSize() : image.size(), size) << page.width() << " at " << scale;
    }
}

TEST(PDFPageRasterizer, drawsThePageThenTheOverlayOnWhite) {
    PdfFixture fixture;
    // The media box doesn't begin at zero, the crop box is smaller, and the page is turned when shown: the bitmap holds
    // the whole media box as the file has it.
    fixture.addPageWithContent("1 0 0 rg 50 100 40 40 re f");
    fixture.setPageKey(0, "/MediaBox", "[50 100 250 200]");
    fixture.setPageKey(0, "/CropBox", "[100 120 150 150]");
    fixture.setPageKey(0, "/Rotate", "90");
    const auto document = PDFDocument::fromData(fixture.bytes());
    const auto square = std::make_shared<PDFAnnotation>(QRectF(200, 100, 50, 50), PDFAnnotationSubtype::square);
    square->setColor(Qt::blue);
    square->setInteriorColor(QColor(Qt::blue));
    document->page(0)->addAnnotation(square);

    int calls = 0;
    const QImage image = PDFPageRasterizer::render(*document->page(0), 2.0, [&calls](QPainter& painter) {
        ++calls;
        painter.fillRect(QRectF(130, 180, 20, 20), Qt::green); // in page coordinates
        painter.fillRect(QRectF(50, 100, 10, 10), Qt::black);  // over the page's red
    });
    ASSERT_EQ(image.size(), QSize(400, 200));
    EXPECT_EQ(calls, 1);
    // From the lower left, in page units from the box's corner.
    const auto at = [&image](int x, int y) { return image.pixelColor(2 * x, 199 - 2 * y); };
    EXPECT_EQ(at(5, 5), QColor(Qt::black));
    EXPECT_EQ(at(30, 30), QColor(Qt::red));
    EXPECT_EQ(at(45, 30), QColor(Qt::white));
    EXPECT_EQ(at(90, 90), QColor(Qt::green));
    EXPECT_EQ(at(175, 25), QColor(Qt::blue));
    EXPECT_EQ(at(175, 75), QColor(Qt::white));
    EXPECT_EQ(at(199, 99), QColor(Qt::white));
}
