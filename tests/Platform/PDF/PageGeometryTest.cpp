#include "PDFDocument.h"
#include "PDFPage.h"
#include "PdfFixtures.h"

#include <gtest/gtest.h>

namespace {

std::shared_ptr<PDFDocument> pageWith(const std::vector<std::pair<QByteArray, QByteArray>>& keys) {
    PdfFixture pdf;
    pdf.addPage({QStringLiteral("Text")});
    for (const auto& [key, value] : keys)
        pdf.setPageKey(0, key, value);
    return PDFDocument::fromData(pdf.bytes());
}

} // namespace

TEST(PageGeometry, ReadsBoxesAsReadersDo) {
    struct Case {
        const char* what;
        QByteArray media;
        QByteArray crop;
        QRectF expectedMedia;
        QRectF expectedCrop;
    };
    const QRectF letter(0, 0, 612, 792);
    const std::vector<Case> cases{
        {"plain", "[0 0 612 792]", "null", letter, letter},
        {"crop inside", "[0 0 612 792]", "[100 50 300 400]", letter, QRectF(100, 50, 200, 350)},
        {"not from zero", "[-100 -200 100 200]", "null", QRectF(-100, -200, 200, 400), QRectF(-100, -200, 200, 400)},
        {"corners exchanged", "[612 792 0 0]", "null", letter, letter},
        {"crop sticks out", "[0 0 612 792]", "[-50 -50 700 300]", letter, QRectF(0, 0, 612, 300)},
        {"crop outside", "[0 0 612 792]", "[1000 1000 1100 1100]", letter, letter},
        {"empty media", "[0 0 0 0]", "null", letter, letter},
        {"endless media", "[0 0 1e30 1e30]", "null", letter, letter},
        {"not numbers", "[(a) /b null 5]", "null", letter, letter},
        {"one point", "[0 0 1 1]", "null", QRectF(0, 0, 1, 1), QRectF(0, 0, 1, 1)},
        {"a hall", "[0 0 1000000 1000000]", "null", QRectF(0, 0, 1e6, 1e6), QRectF(0, 0, 1e6, 1e6)},
    };
    for (const Case& c : cases) {
        const auto document = pageWith({{"/MediaBox", c.media}, {"/CropBox", c.crop}});
        EXPECT_EQ(document->page(0)->bounds(PDFDisplayBox::mediaBox), c.expectedMedia) << c.what;
        EXPECT_EQ(document->page(0)->bounds(PDFDisplayBox::cropBox), c.expectedCrop) << c.what;
    }
}

TEST(PageGeometry, ShowsThePageTurnedAndInUserUnits) {
    struct Case {
        QByteArray rotate;
        int expected;
        QPointF upperLeftCorner; ///< where the corner (100, 400) of the crop box is shown
    };
    for (const Case& c :
         {Case{"0", 0, {0, 0}}, Case{"90", 90, {700, 0}}, Case{"180", 180, {400, 700}}, Case{"270", 270, {0, 400}},
          Case{"-90", 270, {0, 400}}, Case{"450", 90, {700, 0}}, Case{"91", 90, {700, 0}}, Case{"(x)", 0, {0, 0}}}) {
        const auto document = pageWith({{"/CropBox", "[100 50 300 400]"}, {"/Rotate", c.rotate}, {"/UserUnit", "2"}});
        const auto page = document->page(0);
        EXPECT_EQ(page->rotation(), c.expected);
        EXPECT_EQ(page->userUnit(), 2.0);
        const QSizeF upright(400, 700);
        const QSizeF shown = c.expected % 180 == 0 ? upright : upright.transposed();
        EXPECT_EQ(page->displaySize(PDFDisplayBox::cropBox), shown);
        const QTransform toShown = page->displayTransform(PDFDisplayBox::cropBox);
        EXPECT_EQ(toShown.map(QPointF(100, 400)), c.upperLeftCorner) << c.rotate.toStdString();
        EXPECT_EQ(toShown.mapRect(QRectF(100, 50, 200, 350)), QRectF(QPointF(0, 0), shown));
    }
}

TEST(PageGeometry, IsTheSameWhetherPagesAreLookedUpOneByOneOrAllAtOnce) {
    PdfFixture pdf;
    for (int i = 0; i < 60; ++i)
        pdf.addPage({QStringLiteral("Page")}, QSizeF(200 + i, 300));
    pdf.nestPageTree(7);
    const QByteArray file = pdf.bytes();
    for (int i : {0, 13, 59})
        EXPECT_EQ(PDFDocument::fromData(file)->geometry(i).box(PDFDisplayBox::mediaBox).width(), 200 + i);
    const auto document = PDFDocument::fromData(file);
    for (int i = 59; i >= 0; --i)
        EXPECT_EQ(document->geometry(i).box(PDFDisplayBox::mediaBox).width(), 200 + i);
}
