#include "PDFPage.h"
#include "PDFSource.h"
#include "PdfFixtures.h"
#include "PdfPrograms.h"

#include <QBuffer>
#include <QColorSpace>
#include <QDir>
#include <QImage>
#include <QImageReader>
#include <QPainter>

#include <gtest/gtest.h>

namespace {

/// Every pixel another colour, opaque.
QImage colourful(QSize size) {
    QImage image(size, QImage::Format_RGB32);
    for (int y = 0; y < size.height(); ++y)
        for (int x = 0; x < size.width(); ++x)
            image.setPixel(x, y, qRgb(x * 7 % 256, y * 11 % 256, (x * y) % 256));
    return image;
}

/// The pictures of a file as another program takes them out of it; "-all" keeps JPEG bytes.
QList<QByteArray> extracted(const QByteArray& file, const char* format) {
    const QString folder = QDir::temp().filePath(QStringLiteral("extracted"));
    QDir(folder).removeRecursively();
    QDir().mkpath(folder);
    EXPECT_EQ(PdfPrograms::run(QStringLiteral("pdfimages"),
                               {QString::fromLatin1(format), QStringLiteral("FILE"), folder + QStringLiteral("/i")},
                               file)
                  .exitCode,
              0);
    QList<QByteArray> images;
    for (const QFileInfo& info : QDir(folder).entryInfoList(QDir::Files, QDir::Name)) {
        QFile image(info.filePath());
        EXPECT_TRUE(image.open(QIODevice::ReadOnly));
        images += image.readAll();
    }
    return images;
}

/// The bytes of the file that holds the page; empty without a page.
QByteArray fileOf(const std::shared_ptr<PDFPage>& page) {
    return page ? page->content().source->sharedBytes() : QByteArray();
}

/// Puts a segment behind the start of a JPEG file.
QByteArray withSegment(QByteArray jpeg, char marker, const QByteArray& content) {
    QByteArray segment("\xFF", 1);
    segment += marker;
    segment += char((content.size() + 2) >> 8);
    segment += char((content.size() + 2) & 0xFF);
    return jpeg.insert(2, segment + content);
}

} // namespace

TEST(ImagePageTest, KeepsEveryPixel) {
    for (const QSize size : {QSize(1, 1), QSize(50, 41), QSize(333, 7)}) {
        const QImage image = colourful(size);
        const QByteArray file = fileOf(PDFPage::fromImage(image, {200.5, 100}));
        EXPECT_EQ(PdfPrograms::complaints(file), "");
        const auto pictures = extracted(file, "-png");
        ASSERT_EQ(pictures.size(), 1);
        EXPECT_EQ(QImage::fromData(pictures[0]).convertToFormat(QImage::Format_RGB32), image);
        const auto page = PDFPage::fromImage(image, {200.5, 100});
        EXPECT_EQ(page->bounds(PDFDisplayBox::mediaBox), QRectF(0, 0, 200.5, 100));
        EXPECT_EQ(page->string(), QString());
        EXPECT_TRUE(page->annotations().empty());
    }
    for (const auto space : {QColorSpace::SRgb, QColorSpace::DisplayP3}) {
        QImage image = colourful({9, 9});
        image.setColorSpace(space);
        const QByteArray all = PdfPrograms::unpacked(fileOf(PDFPage::fromImage(image, {9, 9})));
        EXPECT_EQ(all.contains("/ICCBased"), space == QColorSpace::DisplayP3) << "colours that aren't the usual ones";
    }
}

TEST(ImagePageTest, GreyAndTranslucentPicturesAreStoredAsSuch) {
    QImage grey(20, 20, QImage::Format_ARGB32);
    grey.fill(Qt::white);
    QPainter(&grey).fillRect(5, 5, 10, 10, QColor(90, 90, 90));
    grey.setPixelColor(1, 1, Qt::black); // more than two colours
    const QByteArray greyFile = fileOf(PDFPage::fromImage(grey, {20, 20}));
    EXPECT_EQ(PdfPrograms::complaints(greyFile), "");
    EXPECT_TRUE(greyFile.contains("/DeviceGray"));
    EXPECT_FALSE(greyFile.contains("/SMask"));
    EXPECT_EQ(QImage::fromData(extracted(greyFile, "-png").at(0)).pixelColor(7, 7).red(), 90);

    QImage clear = colourful({20, 20}).convertToFormat(QImage::Format_ARGB32);
    for (int x = 0; x < 20; ++x)
        clear.setPixelColor(x, 3, QColor(255, 0, 0, 12 * x));
    const QByteArray clearFile = fileOf(PDFPage::fromImage(clear, {20, 20}));
    EXPECT_EQ(PdfPrograms::complaints(clearFile), "");
    EXPECT_TRUE(clearFile.contains("/SMask"));
    const auto pictures = extracted(clearFile, "-png");
    ASSERT_EQ(pictures.size(), 2);
    EXPECT_EQ(QImage::fromData(pictures[1]).pixelColor(10, 3).red(), 120);
    EXPECT_EQ(QImage::fromData(pictures[0]).pixelColor(10, 3), QColor(255, 0, 0)) << "the colour isn't darkened";
}

TEST(ImagePageTest, JpegBytesStayAsTheyAre) {
    const QImage picture = colourful({64, 32});
    const QImage grey = picture.convertToFormat(QImage::Format_Grayscale8);
    for (const QByteArray& jpeg : {PdfFixture::jpegOf(picture), PdfFixture::jpegOf(grey)}) {
        const QByteArray file = fileOf(PDFPage::fromJpeg(jpeg, {300, 150}));
        EXPECT_EQ(PdfPrograms::complaints(file), "");
        EXPECT_EQ(extracted(file, "-all"), QList<QByteArray>{jpeg});
        const auto page = PDFPage::fromJpeg(jpeg, {300, 150});
        const QImage shown = page->thumbnail({64, 64}, PDFDisplayBox::mediaBox);
        EXPECT_EQ(shown.size(), QSize(64, 32));
        EXPECT_NEAR(shown.pixelColor(33, 17).red(), QImage::fromData(jpeg).pixelColor(33, 17).red(), 12);
    }
}

TEST(ImagePageTest, TurnedJpegsStandUpright) {
    // Four quarters: red, green / blue, white.
    QImage upright(40, 40, QImage::Format_RGB32);
    upright.fill(Qt::white);
    QPainter painter(&upright);
    painter.fillRect(0, 0, 20, 20, Qt::red);
    painter.fillRect(20, 0, 20, 20, Qt::green);
    painter.fillRect(0, 20, 20, 20, Qt::blue);
    painter.end();
    for (int orientation = 1; orientation <= 8; ++orientation) {
        // How the picture is stored for that orientation to make it upright: Qt's reader is the judge.
        QImage found;
        for (int turn = 0; turn < 4; ++turn)
            for (const bool mirrored : {false, true}) {
                const QImage stored = upright.transformed(QTransform().rotate(90 * turn)).mirrored(mirrored, false);
                const QByteArray exif = QByteArray("Exif\0\0MM\0\x2A\0\0\0\x08\0\x01\x01\x12\0\x03\0\0\0\x01\0", 25) +
                                        char(orientation) + QByteArray("\0\0\0\0\0\0", 6);
                const QByteArray jpeg = withSegment(PdfFixture::jpegOf(stored), '\xE1', exif);
                QBuffer buffer;
                buffer.setData(jpeg);
                QImageReader reader(&buffer, "JPEG");
                reader.setAutoTransform(true);
                const QImage read = reader.read();
                if (read.pixelColor(5, 5).red() < 200 || read.pixelColor(5, 5).green() > 60 ||
                    read.pixelColor(35, 5).green() < 200 || read.pixelColor(35, 5).red() > 60)
                    continue;
                found = PDFPage::fromJpeg(jpeg, {40, 40})->thumbnail({40, 40}, PDFDisplayBox::mediaBox);
            }
        ASSERT_FALSE(found.isNull()) << orientation;
        EXPECT_GT(found.pixelColor(5, 5).red() - found.pixelColor(5, 5).blue(), 150) << orientation;
        EXPECT_GT(found.pixelColor(35, 5).green() - found.pixelColor(35, 5).red(), 150) << orientation;
        EXPECT_GT(found.pixelColor(5, 35).blue() - found.pixelColor(5, 35).red(), 150) << orientation;
    }
}

TEST(ImagePageTest, WhatIsNoPictureGivesNothing) {
    EXPECT_TRUE(fileOf(PDFPage::fromImage(QImage(), {10, 10})).isEmpty());
    EXPECT_TRUE(fileOf(PDFPage::fromImage(colourful({5, 5}), {0, 10})).isEmpty());
    EXPECT_FALSE(PDFPage::fromImage(QImage(), {10, 10}));
    const QByteArray jpeg = PdfFixture::jpegOf(colourful({32, 32}));
    EXPECT_TRUE(fileOf(PDFPage::fromJpeg(jpeg, {10, -1})).isEmpty());
    EXPECT_TRUE(fileOf(PDFPage::fromJpeg("GIF89a", {10, 10})).isEmpty());
    EXPECT_TRUE(fileOf(PDFPage::fromJpeg({}, {10, 10})).isEmpty());
    const qsizetype frame = jpeg.indexOf(QByteArray("\xFF\xC0", 2));
    for (qsizetype length = 0; length < frame + 10; ++length)
        EXPECT_TRUE(fileOf(PDFPage::fromJpeg(jpeg.left(length), {10, 10})).isEmpty()) << length;
    QByteArray lossless = jpeg;
    lossless[frame + 1] = char(0xC3);
    EXPECT_TRUE(fileOf(PDFPage::fromJpeg(lossless, {10, 10})).isEmpty());
    QByteArray deep = jpeg;
    deep[frame + 4] = 12;
    EXPECT_TRUE(fileOf(PDFPage::fromJpeg(deep, {10, 10})).isEmpty());
    // Four colours by Adobe's programs are stored the other way round.
    QByteArray inks = jpeg;
    inks[frame + 9] = 4;
    EXPECT_FALSE(fileOf(PDFPage::fromJpeg(inks, {10, 10})).contains("/Decode ["));
    inks = withSegment(inks, '\xEE', QByteArray("Adobe\0d\0\0\0\0\x02", 12));
    EXPECT_TRUE(fileOf(PDFPage::fromJpeg(inks, {10, 10})).contains("/DeviceCMYK"));
    EXPECT_TRUE(fileOf(PDFPage::fromJpeg(inks, {10, 10})).contains("/Decode ["));
}
