#include "PageBackground.h"

#include "PDFDocument.h"
#include "PDFPage.h"
#include "PdfFixtures.h"

#include <gtest/gtest.h>

#include <tuple>

using PageBackground::contrastingTextColor;
using PageBackground::sampleBackgroundColor;

TEST(PageBackgroundTest, takesTheColourOfThePlaceAndNotThatOfItsSurroundingsOrLetters) {
    const QRectF place(100, 300, 200, 20);
    // A blue field exactly where is asked, with a third of it in white stripes.
    const QByteArray field = "0 0 1 rg 100 300 200 20 re f 1 g 100 300 66 20 re f";
    const QPointF corner(-300, 1000); // of a page whose coordinates don't start at zero
    const QByteArray shifted = "0 0 1 rg -200 1300 200 20 re f";
    const QByteArray black = "0 g 0 0 612 792 re f";
    const std::tuple<QByteArray, QColor, QRectF, QPointF> papers[] = {
        {"0.5 g 0 0 612 792 re f", QColor::fromRgbF(8 / 15.0F, 8 / 15.0F, 8 / 15.0F), place, {}},
        {"0 1 0 rg 0 0 612 792 re f", Qt::green, place, {}},
        {field, Qt::blue, place, {}},
        {field, Qt::white, place.translated(0, 25), {}},
        {field, Qt::white, place.translated(0, -25), {}},
        {shifted, Qt::blue, place.translated(corner), corner},
        {black, Qt::black, {-180, 300, 200, 20}, {}}, // what is off the page doesn't count
        {black, Qt::black, {590, 300, 200, 20}, {}},
        {black, Qt::black, {100, 780, 200, 80}, {}},
        {black, Qt::black, {100, -70, 200, 80}, {}},
        {black, Qt::white, {700, 900, 50, 50}, {}},
    };
    for (const auto& [content, background, where, cornerOfPage] : papers) {
        PdfFixture fixture;
        fixture.addPageWithContent(content);
        fixture.setPageKey(0, "/MediaBox", PdfFixture::rectArray(QRectF(cornerOfPage, QSizeF(612, 792))));
        const auto document = PDFDocument::fromData(fixture.bytes());
        EXPECT_EQ(sampleBackgroundColor(where, *document->page(0)).rgba(), background.rgba())
            << content.toStdString() << " at " << where.left() << ' ' << where.top();
    }
    for (const Qt::GlobalColor dark : {Qt::black, Qt::blue})
        EXPECT_EQ(contrastingTextColor(dark), QColor(Qt::white));
    for (const QColor& light : {QColor(Qt::green), QColor(136, 136, 136)})
        EXPECT_EQ(contrastingTextColor(light), QColor(Qt::black));
}
