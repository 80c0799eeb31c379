#include "FreeTextAnnotation.h"
#include "LineAnnotation.h"
#include "NoteAnnotation.h"
#include "OvalAnnotation.h"
#include "PDFDocument.h"
#include "PDFPage.h"
#include "PDFPageRasterizer.h"
#include "PdfFixtures.h"
#include "RectangleAnnotation.h"
#include "RedactionMarkerAnnotation.h"
#include "SignatureAnnotation.h"

#include <QBitmap>
#include <QImage>
#include <QPainter>

#include <gtest/gtest.h>

#include <cmath>
#include <tuple>

namespace {

constexpr int scale = 10; // pixels to a point
const QRectF bounds(10, 20, 60, 40);
const QRgb white = qRgb(255, 255, 255);
const QRgb red = qRgb(255, 0, 0);

/// What the annotation draws on a white page of 80 by 80 points.
QImage drawn(const PDFAnnotation& annotation) {
    QImage image(80 * scale, 80 * scale, QImage::Format_RGB32);
    image.fill(Qt::white);
    QPainter painter(&image);
    painter.translate(0, image.height());
    painter.scale(scale, -scale);
    annotation.draw(PDFDisplayBox::mediaBox, painter);
    return image;
}

void expectColors(const PDFAnnotation& annotation, const std::vector<std::tuple<double, double, QRgb>>& probes) {
    const QImage image = drawn(annotation);
    for (const auto& [x, y, color] : probes)
        EXPECT_EQ(image.pixel(int(x * scale), image.height() - 1 - int(y * scale)), color) << x << ' ' << y;
}

} // namespace

TEST(AnnotationKinds, LinesAreTwoPointsWideInsideTheBoundsWithDecorationsByTheirWidth) {
    RectangleAnnotation rectangle(bounds);
    OvalAnnotation oval(bounds);
    for (PDFAnnotation* const outline : {static_cast<PDFAnnotation*>(&rectangle), static_cast<PDFAnnotation*>(&oval)}) {
        outline->setColor(QColor(Qt::red));
        expectColors(*outline, {{9.7, 40, white}, {10.3, 40, red}, {11.7, 40, red}, {12.3, 40, white}});
    }
    LineAnnotation line(QRectF(0, 0, 500, 500));
    line.setColor(QColor(Qt::red));
    line.setStartPoint({40, 40});
    line.setEndLineStyle(PDFLineStyle::closedArrow);
    line.setEndPoint({70, 40});
    expectColors(line, {{50, 40.8, red}, {50, 41.2, white}});
    // Eight points long at least, and half as high at its back as sin(pi / 7) says.
    const double back = 70 - 0.9 * 8 + 0.3;
    const double high = 40 + 0.37 * 8;
    expectColors(line, {{back, high, red}, {back, 80 - high, red}, {back - 0.6, high, white}, {40, high, white}});
    line.setBorder(PDFBorder{5});                    // 3.4 times which it is now, and turned back to the line
    line.setStartLineStyle(PDFLineStyle::openArrow); // turned back to the line
    expectColors(line, {{40 + 0.9 * 17, 40 + 0.43 * 17, red}});
}

TEST(AnnotationKinds, FreeTextShowsItsWordsAlone) {
    FreeTextAnnotation text(bounds);
    text.setColor(QColor(Qt::yellow));
    text.setBorder(PDFBorder{3});
    text.setContents(QStringLiteral("words that are too many for the box and so are cut off at its lower edge"));
    text.setFontColor(QColor(Qt::red));
    const QImage ink = drawn(text).createMaskFromColor(white, Qt::MaskInColor);
    const QRect around = QRegion(QBitmap::fromImage(ink)).boundingRect();
    EXPECT_TRUE(QRect(159, 239, 482, 322).contains(around)) << "within the margins";
    EXPECT_GT(around.width() * around.height(), 300 * 200);
}

TEST(AnnotationKinds, NotesMarkersAndSignaturesFill) {
    NoteAnnotation note(bounds);
    note.setColor(QColor(Qt::red));
    const QRgb paper = NoteAnnotation::paperCream.rgb();
    const QRgb shadow = qRgb(0xdd, 0xdc, 0xdb);
    const QRgb tab = qRgb(0xff, 0x26, 0x25); // through which the paper shows
    expectColors(note, {{40, 40, paper}, {40, 23, NoteAnnotation::ink.rgb()}, {40, 21, shadow}, {69, 40, shadow}});
    expectColors(note, {{40, 56, tab}, {40, 52.5, paper}, {10.4, 59.6, white}}); // beside a round corner

    RedactionMarkerAnnotation marker(bounds);
    marker.setColor(QColor(Qt::green));
    expectColors(marker, {{40, 40, qRgb(0x40, 0x40, 0x40)}, {9.8, 40, white}});
    // A dash of four points and a gap of three around the edge.
    int dashes = 0;
    for (int x = 11; x < 69; ++x)
        dashes += drawn(marker).pixel(x * scale + scale / 2, (80 - 20) * scale - 8) == qRgb(0xff, 0x3b, 0x30) ? 1 : 0;
    EXPECT_NEAR(dashes, 58 * 4.0 / 7, 4);

    QImage halves(2, 1, QImage::Format_ARGB32);
    halves.setPixelColor(0, 0, Qt::red);
    halves.setPixelColor(1, 0, Qt::transparent);
    expectColors(SignatureAnnotation(halves, bounds), {{10.2, 20.2, red}, {10.2, 59.8, red}, {69.8, 40, white}});
    expectColors(SignatureAnnotation(QImage(), bounds), {{40, 40, white}});
}

TEST(PDFPageRasterizer, cutsOffFractionsOfAPixelAndDrawsNothingOfAnAbsurdSize) {
    const QSizeF letter(612, 792);
    const std::tuple<QSizeF, double, QSize> cases[] = {
        {{100.9, 99.4}, 1.5, {151, 149}}, {letter, 1.0 / 612, {1, 1}},
        {letter, 1.0 / 613, {}},          {{14'400, 14'400}, 2.0, {}}, // the greatest that readers allow
        {{200'000, 10}, 1.0, {}},         {letter, std::nan(""), {}}};
    for (const auto& [page, ratio, size] : cases) {
        PdfFixture fixture;
        fixture.addPageWithContent({}, "<< >>", page);
        const QImage image = PDFPageRasterizer::render(*PDFDocument::fromData(fixture.bytes())->page(0), ratio);
        EXPECT_EQ(image.isNull() ? QSize() : image.size(), size) << page.width() << " at " << ratio;
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
