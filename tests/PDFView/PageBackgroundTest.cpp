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

TEST(PageBackgroundTest, findsTheColourOfThePaperAndWhatCanBeReadOnIt) {
    const struct {
        QByteArray content;
        QColor background;
        QColor text;
    } papers[] = {
        {"", Qt::white, Qt::black},
        {"0 g 0 0 612 792 re f", Qt::black, Qt::white},
        {"0.5 g 0 0 612 792 re f", QColor::fromRgbF(8 / 15.0F, 8 / 15.0F, 8 / 15.0F), Qt::black},
        {"0 0 1 rg 0 0 612 792 re f", Qt::blue, Qt::white},
        {"0 1 0 rg 0 0 612 792 re f", Qt::green, Qt::black},
    };
    for (const auto& [content, background, text] : papers) {
        const QColor found = sampleBackgroundColor(somewhere, *pageOf(content));
        EXPECT_EQ(found.rgba(), background.rgba()) << content.toStdString();
        EXPECT_EQ(contrastingTextColor(found), text) << content.toStdString();
    }
}

TEST(PageBackgroundTest, takesTheColourOfThePlaceAndNotThatOfItsSurroundingsOrLetters) {
    // A blue field exactly where is asked, with a third of it in white stripes.
    const QByteArray field = "0 0 1 rg 100 300 200 20 re f 1 g 100 300 66 20 re f";
    EXPECT_EQ(sampleBackgroundColor(somewhere, *pageOf(field)).rgba(), QColor(Qt::blue).rgba());
    EXPECT_EQ(sampleBackgroundColor(somewhere.translated(0, 25), *pageOf(field)).rgba(), QColor(Qt::white).rgba());
    EXPECT_EQ(sampleBackgroundColor(somewhere.translated(0, -25), *pageOf(field)).rgba(), QColor(Qt::white).rgba());
    // The same on a page whose coordinates don't start at zero.
    const QPointF corner(-300, 1000);
    const auto shifted = pageOf("0 0 1 rg -200 1300 200 20 re f", corner);
    EXPECT_EQ(sampleBackgroundColor(somewhere.translated(corner), *shifted).rgba(), QColor(Qt::blue).rgba());
    EXPECT_EQ(sampleBackgroundColor(somewhere, *shifted).rgba(), QColor(Qt::white).rgba());
}

TEST(PageBackgroundTest, samplesOffThePageDoNotCount) {
    const auto black = pageOf("0 g 0 0 612 792 re f");
    for (const QRectF& rect :
         {QRectF(-180, 300, 200, 20), QRectF(590, 300, 200, 20), QRectF(100, 780, 200, 80), QRectF(100, -70, 200, 80)})
        EXPECT_EQ(sampleBackgroundColor(rect, *black).rgba(), QColor(Qt::black).rgba()) << rect.left();
    EXPECT_EQ(sampleBackgroundColor(QRectF(700, 900, 50, 50), *black).rgba(), QColor(Qt::white).rgba());
}

} // namespace
