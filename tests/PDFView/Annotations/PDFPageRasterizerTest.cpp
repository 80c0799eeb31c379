#include "PDFPageRasterizer.h"

#include "PDFDocument.h"
#include "PDFPage.h"
#include "PdfFixtures.h"

#include <QPainter>

#include <cmath>
#include <tuple>

#include <gtest/gtest.h>

TEST(PDFPageRasterizer, cutsOffFractionsOfAPixelAndDrawsNothingOfAnAbsurdSize) {
    const QSizeF letter(612, 792);
    const std::tuple<QSizeF, double, QSize> cases[] = {
        {{100.9, 99.4}, 1.5, {151, 149}}, {letter, 1.0 / 612, {1, 1}},
        {letter, 1.0 / 613, {}},          {{14'400, 14'400}, 2.0, {}}, // the greatest that readers allow
        {{200'000, 10}, 1.0, {}},         {letter, std::nan(""), {}}};
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
    fixture.addAnnotation(0, "<< /Subtype /Square /Rect [200 100 250 150] /C [0 0 1] /IC [0 0 1] >>");
    const auto document = PDFDocument::fromData(fixture.bytes());
    const QImage image = PDFPageRasterizer::render(*document->page(0), 2.0, [](QPainter& painter) {
        painter.fillRect(QRectF(130, 180, 20, 20), Qt::green); // in page coordinates
        painter.fillRect(QRectF(50, 100, 10, 10), Qt::black);  // over the page's red
    });
    ASSERT_EQ(image.size(), QSize(400, 200));
    // From the lower left, in page units from the box's corner.
    const std::tuple<int, int, Qt::GlobalColor> probes[] = {
        {5, 5, Qt::black},   {30, 30, Qt::red},    {45, 30, Qt::white}, {90, 90, Qt::green},
        {175, 25, Qt::blue}, {175, 75, Qt::white}, {199, 99, Qt::white}};
    for (const auto& [x, y, color] : probes)
        EXPECT_EQ(image.pixelColor(2 * x, 199 - 2 * y), QColor(color)) << x << ' ' << y;
}
