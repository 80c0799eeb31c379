#include "FreeTextAnnotation.h"
#include "LineAnnotation.h"
#include "NoteAnnotation.h"
#include "OvalAnnotation.h"
#include "RectangleAnnotation.h"
#include "RedactionMarkerAnnotation.h"
#include "SignatureAnnotation.h"

#include <QImage>
#include <QPainter>

#include <gtest/gtest.h>

namespace {

constexpr int scale = 10; // pixels to a point
const QRectF bounds(10, 20, 60, 40);

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

std::string colorAt(const QImage& image, double x, double y) {
    return image.pixelColor(int(x * scale), image.height() - 1 - int(y * scale)).name().toStdString();
}

const std::string white = "#ffffff";
const std::string red = "#ff0000";

} // namespace

TEST(AnnotationKinds, OutlinesAreTwoPointsWideInsideTheBounds) {
    const std::shared_ptr<PDFAnnotation> outlines[] = {std::make_shared<RectangleAnnotation>(bounds),
                                                       std::make_shared<OvalAnnotation>(bounds)};
    for (const auto& outline : outlines) {
        outline->setColor(QColor(Qt::red));
        const auto fromLeft = [&outline](double inset) { return colorAt(drawn(*outline), 10 + inset, 40); };
        EXPECT_EQ(fromLeft(-0.3), white);
        EXPECT_EQ(fromLeft(0.3), red);
        EXPECT_EQ(fromLeft(1.7), red);
        EXPECT_EQ(fromLeft(2.3), white);
        EXPECT_EQ(fromLeft(30), white) << "not filled";
        outline->setBorder(PDFBorder{5, PDFBorderStyle::solid, {}});
        EXPECT_EQ(fromLeft(4.7), red);
        EXPECT_EQ(fromLeft(5.3), white);
    }
}

TEST(AnnotationKinds, LinesGoFromPointToPointWithDecorationsByTheirWidth) {
    LineAnnotation line(QRectF(0, 0, 500, 500));
    line.setColor(QColor(Qt::red));
    line.setStartPoint({40, 40});
    line.setEndPoint({40, 40});
    line.setEndLineStyle(PDFLineStyle::closedArrow);
    EXPECT_EQ(colorAt(drawn(line), 40.7, 40), red) << "a dot";
    EXPECT_EQ(colorAt(drawn(line), 36, 40), white) << "without an arrow";
    line.setEndPoint({70, 40});
    // Eight points long at least, and 3.4 widths of the line: half as high at its back as sin(pi / 7) says.
    for (const auto& [width, length] : {std::pair(1.0, 8.0), {2.0, 8.0}, {5.0, 17.0}}) {
        line.setBorder(PDFBorder{width, PDFBorderStyle::solid, {}});
        const QImage image = drawn(line);
        const double back = 70 - 0.9 * length + 0.3;
        EXPECT_EQ(colorAt(image, back, 40 + 0.37 * length), red) << width;
        EXPECT_EQ(colorAt(image, back, 40 - 0.37 * length), red) << width;
        EXPECT_EQ(colorAt(image, back - 0.6, 40 + 0.37 * length), white) << width;
        EXPECT_EQ(colorAt(image, 40, 40 + 0.37 * length), white) << width;
    }
    line.setStartLineStyle(PDFLineStyle::openArrow);
    EXPECT_EQ(colorAt(drawn(line), 40 + 0.9 * 17, 40 + 0.43 * 17), red) << "turned back to the line";
}

TEST(AnnotationKinds, ANoteIsPaperWithATabAndAShadow) {
    NoteAnnotation note(bounds);
    note.setColor(QColor(Qt::red));
    EXPECT_EQ(note.paperRect(), QRectF(10, 23, 57, 37));
    const QImage image = drawn(note);
    EXPECT_EQ(colorAt(image, 40, 40), NoteAnnotation::paperCream.name().toStdString());
    EXPECT_EQ(colorAt(image, 40, 23), NoteAnnotation::ink.name().toStdString());
    EXPECT_EQ(colorAt(image, 40, 21), "#dddcdb") << "shadow below";
    EXPECT_EQ(colorAt(image, 69, 40), "#dddcdb") << "and to the right";
    EXPECT_EQ(colorAt(image, 11, 21), white);
    EXPECT_EQ(colorAt(image, 40, 56), "#ff2625") << "the tab, through which the paper shows";
    EXPECT_EQ(colorAt(image, 40, 52.5), NoteAnnotation::paperCream.name().toStdString());
    EXPECT_EQ(colorAt(image, 10.4, 59.6), white) << "a round corner";
}

TEST(AnnotationKinds, FreeTextShowsItsWordsAlone) {
    FreeTextAnnotation text(bounds);
    QImage empty(80 * scale, 80 * scale, QImage::Format_RGB32);
    empty.fill(Qt::white);
    text.setColor(QColor(Qt::yellow));
    text.setBorder(PDFBorder{3, PDFBorderStyle::solid, {}});
    EXPECT_EQ(drawn(text), empty) << "neither box nor border";
    text.setContents(QStringLiteral("words that are too many for the box and so are cut off at its lower edge"));
    text.setFontColor(QColor(Qt::red));
    const QImage image = drawn(text);
    int inside = 0;
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x)
            if (image.pixel(x, y) != qRgb(255, 255, 255)) {
                EXPECT_TRUE(bounds.adjusted(5.9, 3.9, -5.9, -3.9).contains((x + 0.5) / scale, 80 - (y + 0.5) / scale));
                ++inside;
            }
    EXPECT_GT(inside, 5000);
}

TEST(AnnotationKinds, MarkersCoverAndSignaturesFill) {
    RedactionMarkerAnnotation marker(bounds);
    marker.setColor(QColor(Qt::green));
    const QImage marked = drawn(marker);
    EXPECT_EQ(colorAt(marked, 40, 40), "#404040");
    // A dash of four points and a gap of three around the edge.
    int dashes = 0;
    for (int x = 11; x < 69; ++x)
        dashes += colorAt(marked, x + 0.5, 20.7) == "#ff3b30" ? 1 : 0;
    EXPECT_NEAR(dashes, 58 * 4.0 / 7, 4);
    EXPECT_EQ(colorAt(marked, 9.8, 40), white);

    QImage halves(2, 1, QImage::Format_ARGB32);
    halves.setPixelColor(0, 0, Qt::red);
    halves.setPixelColor(1, 0, Qt::transparent);
    const QImage signedPage = drawn(SignatureAnnotation(halves, bounds));
    EXPECT_EQ(colorAt(signedPage, 10.2, 20.2), red);
    EXPECT_EQ(colorAt(signedPage, 10.2, 59.8), red);
    EXPECT_EQ(colorAt(signedPage, 69.8, 40), white);
    EXPECT_EQ(colorAt(drawn(SignatureAnnotation(QImage(), bounds)), 40, 40), white);
}
