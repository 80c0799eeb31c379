#include "PageBackground.h"

#include "PDFAnnotation.h"
#include "PDFDocument.h"
#include "PDFPage.h"
#include "PdfFixtures.h"

#include <gtest/gtest.h>

namespace {

using PageBackground::contrastingTextColor;
using PageBackground::sampleBackgroundColor;

constexpr QRectF somewhere(100, 300, 200, 20);

/// A page of 612 by 792 points; the media box has its corner at `corner`.
std::shared_ptr<PDFPage> pageOf(const QByteArray& content, QPointF corner = {}) {
    PdfFixture fixture;
    const int page = fixture.addPageWithContent(content);
    fixture.setPageKey(page, "/MediaBox", PdfFixture::rectArray(QRectF(corner, QSizeF(612, 792))));
    const auto document = PDFDocument::fromData(fixture.bytes());
    return document->page(0);
}

TEST(PageBackgroundTest, takesTheColourOfThePlaceAndNotThatOfItsSurroundingsOrLetters) {
    // A blue field exactly where is asked, with a third of it in white stripes.
    const QByteArray field = "0 0 1 rg 100 300 200 20 re f 1 g 100 300 66 20 re f";
    const QPointF corner(-300, 1000); // of a page whose coordinates don't start at zero
    const QByteArray shifted = "0 0 1 rg -200 1300 200 20 re f";
    const QByteArray black = "0 g 0 0 612 792 re f";
    const struct {
        QByteArray content;
        QColor background;
        QRectF place = somewhere;
        QPointF corner = {};
    } papers[] = {
        {"", Qt::white},
        {black, Qt::black},
        {"0.5 g 0 0 612 792 re f", QColor::fromRgbF(8 / 15.0F, 8 / 15.0F, 8 / 15.0F)},
        {"0 1 0 rg 0 0 612 792 re f", Qt::green},
        {field, Qt::blue},
        {field, Qt::white, somewhere.translated(0, 25)},
        {field, Qt::white, somewhere.translated(0, -25)},
        {shifted, Qt::blue, somewhere.translated(corner), corner},
        {shifted, Qt::white, somewhere, corner},
        {black, Qt::black, {-180, 300, 200, 20}}, // what is off the page doesn't count
        {black, Qt::black, {590, 300, 200, 20}},
        {black, Qt::black, {100, 780, 200, 80}},
        {black, Qt::black, {100, -70, 200, 80}},
        {black, Qt::white, {700, 900, 50, 50}},
    };
    for (const auto& [content, background, place, cornerOfPage] : papers)
        EXPECT_EQ(sampleBackgroundColor(place, *pageOf(content, cornerOfPage)).rgba(), background.rgba())
            << content.toStdString() << " at " << place.left() << ' ' << place.top();
    for (const Qt::GlobalColor dark : {Qt::black, Qt::blue})
        EXPECT_EQ(contrastingTextColor(dark), QColor(Qt::white));
    for (const QColor& light : {QColor(Qt::white), QColor(Qt::green), QColor(136, 136, 136)})
        EXPECT_EQ(contrastingTextColor(light), QColor(Qt::black));
}

} // namespace
