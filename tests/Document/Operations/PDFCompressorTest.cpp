#include "PDFCompressor.h"

#include "CompressedCopy.h"
#include "CompressionEstimate.h"
#include "EditorTest.h"
#include "FileError.h"
#include "PDFPageRasterizer.h"
#include "RectangleAnnotation.h"

using Quality = PDFCompressor::Quality;

class PDFCompressorTest : public EditorTest {
protected:
    /// The copy as a file; empty when none could be made.
    QByteArray compressed(const PDFDocument& document, Quality quality) const {
        const auto copy = CompressedCopy::of(PDFCompressor(document), quality, {}, [](int) {});
        EXPECT_TRUE(!copy || copy->write(path("copy.pdf"), {}));
        return copy ? contentOf("copy.pdf") : QByteArray();
    }
    /// "page: width x height, components, encoding" of the pictures.
    static std::string pictures(const QByteArray& file) {
        QByteArrayList all;
        const QStringList arguments{QStringLiteral("-list"), QStringLiteral("FILE")};
        const QByteArray listed = PdfPrograms::run(QStringLiteral("pdfimages"), arguments, file).output;
        for (const QByteArray& line : listed.trimmed().split('\n').mid(2)) {
            const QByteArrayList words = line.simplified().split(' ');
            all.append(words.value(0) + ": " + words.value(3) + 'x' + words.value(4) + ' ' + words.value(5) + ' ' +
                       words.value(8));
        }
        return all.join('\n').toStdString();
    }
};

TEST_F(PDFCompressorTest, pagesBecomePicturesOfTheirSize) {
    PdfFixture fixture;
    fixture.addPage({QStringLiteral("Text")});
    fixture.addPageWithContent("1 0 0 rg 100 100 200 200 re f", "<< >>", {300.7, 200.9});
    fixture.addPageWithContent("0 0 1 rg 30 40 10 10 re f", "<< >>", {400, 300});
    fixture.setPageKey(2, "/MediaBox", "[20 30 420 330]");
    fixture.setPageKey(2, "/CropBox", "[30 40 320 330]");
    fixture.setPageKey(2, "/Rotate", "90");
    fixture.addAnnotation(
        2, "<< /Type /Annot /Subtype /Square /Rect [200 200 260 260] /C [0 1 0] /IC [0 1 0] >>"); // without a look
    fixture.setInfo("/Title", QStringLiteral("A title"));
    const auto document = PDFDocument::fromData(fixture.bytes());
    const auto drawn = std::make_shared<RectangleAnnotation>(QRectF(100, 100, 100, 100));
    drawn->setColor(Qt::red);
    const std::pair<Quality, const char*> cases[] = {
        {Quality::good, "1: 612x792 gray jpeg\n2: 300x200 rgb jpeg\n3: 400x300 rgb jpeg"},
        {Quality::better, "1: 918x1188 gray jpeg\n2: 451x301 rgb jpeg\n3: 600x450 rgb jpeg"},
        {Quality::best, "1: 1224x1584 rgb jpeg\n2: 601x401 rgb jpeg\n3: 800x600 rgb jpeg"}};
    for (const auto& [quality, expected] : cases) {
        if (quality == Quality::best)
            document->page(0)->addAnnotation(drawn); // which makes a gray page a coloured one
        const QByteArray file = compressed(*document, quality);
        EXPECT_EQ(PdfPrograms::complaints(file), "");
        EXPECT_EQ(pictures(file), expected);
        const auto copy = PDFDocument::fromData(file);
        ASSERT_EQ(copy->pageCount(), 3);
        EXPECT_TRUE(copy->documentAttributes().isEmpty()) << "what a page shows is kept, and nothing else";
        for (int i = 0; i < 3; ++i) {
            EXPECT_EQ(copy->geometry(i), document->geometry(i));
            const QImage before = PDFPageRasterizer::render(*document->page(i), 0.25);
            EXPECT_LT(difference(before, PDFPageRasterizer::render(*copy->page(i), 0.25)), 6) << "beyond JPEG's loss";
        }
    }
}

TEST_F(PDFCompressorTest, pagesThatCannotBeDrawnAreLeftOutAndNothingIsLeftOfAStop) {
    PdfFixture fixture;
    fixture.addPageWithContent("", "<< >>", {999999, 999999});
    fixture.addPageWithContent("", "<< >>", {500, 0.5});
    const QByteArray hopeless = fixture.bytes();
    EXPECT_EQ(compressed(*PDFDocument::fromData(hopeless), Quality::good), QByteArray());
    fixture.addPage({QStringLiteral("Text")});
    const auto document = PDFDocument::fromData(fixture.bytes());
    EXPECT_EQ(PDFDocument::fromData(compressed(*document, Quality::good))->pageCount(), 1);

    const PDFCompressor compressor(*document);
    std::stop_source stop;
    EXPECT_FALSE(
        CompressedCopy::of(compressor, Quality::good, stop.get_token(), [&stop](int) { stop.request_stop(); }));
    const auto copy = CompressedCopy::of(compressor, Quality::good, {}, [](int) {});
    EXPECT_FALSE(copy->write(path("stopped.pdf"), stop.get_token()));
    EXPECT_THROW(static_cast<void>(copy->write(QStringLiteral("/proc/copy.pdf"), {})), FileError);
    EXPECT_FALSE(QFile::exists(path("stopped.pdf")));
}

TEST_F(PDFCompressorTest, theSizeIsToldInAdvance) {
    PdfFixture fixture;
    for (int i = 0; i < 16; ++i)
        fixture.addPage(QStringList(10 + i * 7 % 30, QStringLiteral("Some words in a line of text, page %1").arg(i)));
    const auto document = PDFDocument::fromData(fixture.bytes());
    const auto sizes = CompressionEstimate::of(PDFCompressor(*document), {}, std::chrono::minutes(1));
    ASSERT_TRUE(sizes);
    for (const Quality quality : PDFCompressor::qualities) {
        const double size = double(compressed(*document, quality).size());
        EXPECT_NEAR(double(sizes->at(std::size_t(quality))) / size, 1, 0.02) << int(quality);
    }
    // Of a few pages when there is no time for more, or of one, which may have between 0.4 and 1.7 times the words.
    const auto soon = CompressionEstimate::of(PDFCompressor(*document), {}, std::chrono::milliseconds(0));
    ASSERT_TRUE(soon);
    EXPECT_NEAR(double(soon->at(1)) / double(sizes->at(1)), 1, 0.75);
    EXPECT_EQ(CompressionEstimate::sentence(2'140'000, 12'340'000), QStringLiteral("About 2.1 MB (now 12.3 MB)"));
}
