#include "PicturePages.h"

#include "FolderTest.h"
#include "PDFDocument.h"
#include "PDFPage.h"
#include "PdfPrograms.h"

#include <QColorSpace>
#include <QImage>
#include <QProcess>

#include <algorithm>
#include <cstdlib>
#include <string_view>
#include <utility>

namespace {

const QColor red(255, 0, 0);

/// Columns 4 and 6 to 9 of what another program lists of the file's pictures, one picture a line.
QString picturesIn(const QByteArray& pdf) {
    QStringList found;
    const QString list = QString::fromUtf8(
        PdfPrograms::run(QStringLiteral("pdfimages"), {QStringLiteral("-list"), QStringLiteral("FILE")}, pdf).output);
    for (const QString& line : list.split(u'\n').mid(2))
        if (const QStringList words = line.simplified().split(u' '); words.size() > 9)
            found << QStringList(words.mid(3, 2) + words.mid(5, 4)).join(u' ');
    return found.join(u'\n');
}

class PicturePagesTest : public FolderTest {
protected:
    /// Four quarters, red at the upper left, with what `arguments` ask for, separated by spaces.
    void make(const char* name, const QString& arguments = {}) const {
        const QString command =
            QStringLiteral("-size 30x20 ( xc:#ff0000 xc:#00a000 +append ) ( xc:#0000ff xc:#ffc000 +append ) -append ") +
            arguments;
        ASSERT_EQ(QProcess::execute(QStringLiteral("convert"),
                                    command.split(u' ', Qt::SkipEmptyParts) + QStringList{path(name)}),
                  0);
    }

    /// The PDF of it; empty when there is none.
    [[nodiscard]] QByteArray converted(const char* name) const {
        const QString destination = path("page.pdf");
        QFile::remove(destination);
        const bool isWritten = PicturePages::write(path(name), destination);
        EXPECT_EQ(QFile::exists(destination), isWritten);
        return isWritten ? contentOf("page.pdf") : QByteArray();
    }
};

} // namespace

TEST_F(PicturePagesTest, EveryKindOfPictureBecomesAPageThatLooksLikeIt) {
    const struct {
        const char* name;
        const char* arguments;
        QSizeF page;
        const char* stored; ///< width, height, colours, components, bits, packing
        QColor corner;
    } kinds[] = {
        {"photo.jpg", "-quality 95 -sampling-factor 1x1", {60, 40}, "60 40 rgb 3 8 jpeg", red},
        {"gray.jpeg", "-colorspace Gray -quality 95", {60, 40}, "60 40 gray 1 8 jpeg", "#363636"},
        {"inks.jpg", "-colorspace CMYK -quality 95", {60, 40}, "60 40 cmyk 4 8 jpeg", red},
        {"wide.jpg", "-scale 6000x3000! -quality 90", {3000, 1500}, "6000 3000 rgb 3 8 jpeg", red},
        {"true.png", "-depth 8 -define png:color-type=2", {60, 40}, "60 40 rgb 3 8 image", red},
        {"deep.png", "-depth 16 -type TrueColor -evaluate subtract 1", {60, 40}, "60 40 rgb 3 16 image", red},
        {"palette.png", "-type Palette", {60, 40}, "60 40 index 1 4 image", red},
        {"bilevel.png", "-threshold 50%", {60, 40}, "60 40 gray 1 1 image", Qt::black},
        {"interlaced.png", "-interlace PNG -define png:color-type=2", {60, 40}, "60 40 index 1 8 image", red},
        {"clear.png", "-transparent #ff0000", {60, 40}, "60 40 index 1 8 image", Qt::white},
        {"haze.png", "-alpha set -channel A -evaluate set 60%", {60, 40}, "60 40 index 1 8 image", "#ff6666"},
        {"frames.gif", "xc:blue", {60, 40}, "60 40 index 1 8 image", red},
        {"plain.BMP", "", {60, 40}, "60 40 index 1 8 image", red},
        {"fax.tif", "-threshold 50% -compress Group4 xc:white", {60, 40}, "60 40 index 1 1 image", Qt::black},
        {"inks.tiff", "-colorspace CMYK -depth 8", {60, 40}, "60 40 index 1 8 image", red},
        {"deep.tiff", "-depth 16", {60, 40}, "60 40 index 1 8 image", red},
        {"phone.heic", "-quality 100", {60, 40}, "60 40 index 1 8 image", red},
    };
    for (const auto& kind : kinds) {
        SCOPED_TRACE(kind.name);
        make(kind.name, QLatin1String(kind.arguments));
        const QByteArray pdf = converted(kind.name);
        ASSERT_FALSE(pdf.isEmpty());
        EXPECT_EQ(PdfPrograms::complaints(pdf), "");
        EXPECT_EQ(picturesIn(pdf).toStdString(), kind.stored);
        const auto document = PDFDocument::fromData(pdf);
        ASSERT_EQ(document->pageCount(), 1);
        EXPECT_EQ(document->page(0)->bounds(PDFDisplayBox::mediaBox).size(), kind.page);
        const QColor corner = document->page(0)->thumbnail({60, 40}, PDFDisplayBox::mediaBox).pixelColor(8, 8);
        const auto away = [&](auto part) { return std::abs((corner.*part)() - (kind.corner.*part)()); };
        EXPECT_LT(std::max({away(&QColor::red), away(&QColor::green), away(&QColor::blue)}), 24)
            << corner.name().toStdString();
        EXPECT_EQ(pdf.contains(contentOf(kind.name)), QLatin1String(kind.stored).endsWith(QLatin1String("jpeg")));
    }
}

TEST_F(PicturePagesTest, ATurnedPhotoStandsUprightAndKeepsItsColours) {
    makeFile("wide.icc", QColorSpace(QColorSpace::DisplayP3).iccProfile());
    for (const char* name : {"turned.jpg", "wide.png"})
        make(name, QStringLiteral("-quality 95 -profile ") + path("wide.icc"));
    const QByteArray turnedClockwise("\xFF\xE1\0\x22"
                                     "Exif\0\0MM\0\x2A\0\0\0\x08\0\x01\x01\x12\0\x03\0\0\0\x01\0\x06\0\0\0\0\0\0",
                                     36);
    makeFile("turned.jpg", contentOf("turned.jpg").insert(2, turnedClockwise));
    for (const auto& [name, size] : {std::pair("turned.jpg", QSizeF(40, 60)), {"wide.png", QSizeF(60, 40)}}) {
        SCOPED_TRACE(name);
        const QByteArray pdf = converted(name);
        EXPECT_TRUE(pdf.contains("/ICCBased"));
        EXPECT_EQ(PdfPrograms::complaints(pdf), "");
        const auto page = PDFDocument::fromData(pdf)->page(0);
        EXPECT_EQ(page->bounds(PDFDisplayBox::mediaBox).size(), size);
        const QImage shown = page->thumbnail(size.toSize(), PDFDisplayBox::mediaBox);
        const QColor corner = shown.pixelColor(name == std::string_view("wide.png") ? 6 : 34, 6);
        EXPECT_TRUE(corner.red() > 240 && corner.green() < 12) << corner.name().toStdString();
    }
}

TEST_F(PicturePagesTest, AScanIsOfTheSizeThatItsFileTells) {
    // Exif data alone: turned clockwise when shown, 300 by 150 pixels as stored for an inch.
    const QByteArray turned("\xFF\xE1\0\x56"
                            "Exif\0\0MM\0\x2A\0\0\0\x08\0\x04"
                            "\x01\x12\0\x03\0\0\0\x01\0\x06\0\0\x01\x1A\0\x05\0\0\0\x01\0\0\0\x3E"
                            "\x01\x1B\0\x05\0\0\0\x01\0\0\0\x46\x01\x28\0\x03\0\0\0\x01\0\x02\0\0"
                            "\0\0\0\0\0\0\x01\x2C\0\0\0\x01\0\0\0\x96\0\0\0\x01",
                            88);
    const struct {
        const char* name;
        const char* pixels;
        const char* density; ///< with its unit; none when empty
        QByteArray exif;
        const char* page; ///< as another program says it
    } scans[] = {
        {"scan.jpg", "2550x3300", "-density 300 -units PixelsPerInch", {}, "612 x 792"},
        {"scan.png", "2550x3300", "-density 300 -units PixelsPerInch", {}, "612 x 792"},
        {"scan.tif", "2550x3300", "-density 300 -units PixelsPerInch", {}, "612 x 792"},
        {"scan.bmp", "255x330", "-density 300 -units PixelsPerInch", {}, "61.2 x 79.2"},
        {"metric.tif", "1200x600", "-density 118.1103 -units PixelsPerCentimeter", {}, "288 x 144"},
        {"fax.tif", "1728x1078", "-density 204x98 -units PixelsPerInch", {}, "609.882 x 792"},
        {"exif.jpg", "600x300", "", turned, "144 x 144"},
        {"screen.png", "300x200", "-density 96 -units PixelsPerInch", {}, "300 x 200"},
        {"hundred.jpg", "300x200", "-density 100 -units PixelsPerInch", {}, "300 x 200"},
        {"none.gif", "300x200", "", {}, "300 x 200"},
        {"wide.jpg", "6000x3000", "", {}, "3000 x 1500"},
        {"poster.png", "6000x3000", "-density 150 -units PixelsPerInch", {}, "2880 x 1440"},
        {"absurd.png", "300x200", "-density 9600 -units PixelsPerInch", {}, "300 x 200"},
        {"sliver.png", "300x4", "-density 200 -units PixelsPerInch", {}, "300 x 4"},
    };
    for (const auto& scan : scans) {
        SCOPED_TRACE(scan.name);
        make(scan.name, QStringLiteral("-scale %1! ").arg(QLatin1String(scan.pixels)) + QLatin1String(scan.density));
        if (!scan.exif.isEmpty()) // instead of the segment with a density of none
            makeFile(scan.name, contentOf(scan.name).replace(2, 18, scan.exif));
        const QString told = QString::fromLatin1(
            PdfPrograms::run(QStringLiteral("pdfinfo"), {QStringLiteral("FILE")}, converted(scan.name)).output);
        EXPECT_TRUE(told.simplified().contains(QStringLiteral("Page size: %1 pts").arg(QLatin1String(scan.page))))
            << told.toStdString();
    }
}

TEST_F(PicturePagesTest, WhatCantBeShownGivesNothing) {
    for (const char* name : {"sound.png", "sound.jpg", "sound.heic"})
        make(name);
    const QByteArray jpeg = contentOf("sound.jpg");
    const qsizetype frame = jpeg.indexOf(QByteArray("\xFF\xC0", 2));
    QByteArray huge = jpeg;
    huge.replace(frame + 5, 4, QByteArray("\x4E\x20\x4E\x20", 4)); // 20,000 by 20,000
    QImage wall(20'000, 20'000, QImage::Format_Mono);
    wall.fill(0);
    ASSERT_TRUE(wall.save(path("wall.png")));
    const std::pair<const char*, QByteArray> files[] = {
        {"words.jpg", "Dear reader, this is no picture."},
        {"empty.png", ""},
        {"cut.png", contentOf("sound.png").chopped(40)},
        {"cut.jpg", jpeg.left(frame + 20)},
        {"cut.heic", contentOf("sound.heic").left(300)},
        {"huge.jpg", huge},
        {"drawing.png", "<svg xmlns='http://www.w3.org/2000/svg' width='9' height='9'><rect/></svg>"},
        {"wall.png", contentOf("wall.png")},
        {"frame.gif", QByteArray("GIF89a\xFF\xFF\xFF\xFF\x80\0\0", 13)}};
    for (const auto& [name, bytes] : files) {
        makeFile(name, bytes);
        EXPECT_TRUE(converted(name).isEmpty()) << name;
    }
    EXPECT_TRUE(converted("missing.png").isEmpty());
    EXPECT_FALSE(PicturePages::write(path("sound.png"), path("no/such/folder.pdf")));
}
