#include "SearchablePage.h"

#include "PDFDocument.h"
#include "PDFPage.h"
#include "PDFSource.h"
#include "PageText.h"
#include "PdfFixtures.h"
#include "PdfPrograms.h"

#include <QImage>
#include <QPainter>
#include <QRandomGenerator>
#include <QRegularExpression>

#include <gtest/gtest.h>

namespace {

constexpr auto media = PDFDisplayBox::mediaBox;

/// Two bars across, the upper one with `upper` dots on it, so that no side looks like another.
QImage barred(QSize size, const QColor& ink = Qt::black) {
    QImage image(size, QImage::Format_RGB32);
    image.fill(Qt::white);
    QPainter painter(&image);
    painter.fillRect(0, size.height() / 10, size.width(), size.height() / 10, ink);
    painter.fillRect(0, size.height() * 6 / 10, size.width() / 3, size.height() / 10, ink);
    return image;
}

std::shared_ptr<PDFPage> opened(const QByteArray& bytes) {
    return bytes.isEmpty() ? nullptr : PDFDocument::fromData(bytes)->page(0);
}

double difference(const QImage& one, const QImage& other) {
    if (one.isNull() || one.size() != other.size())
        return 255;
    double sum = 0;
    for (int y = 0; y < one.height(); ++y)
        for (int x = 0; x < one.width(); ++x)
            sum += std::abs(qGray(one.pixel(x, y)) - qGray(other.pixel(x, y)));
    return sum / (double(one.width()) * one.height());
}

QImage shown(const std::shared_ptr<PDFPage>& page) {
    return page->thumbnail({400, 400}, PDFDisplayBox::cropBox);
}

} // namespace

TEST(SearchablePage, LinesLieOnThePictureHoweverThePageIsTurnedAndCut) {
    const QByteArray boxes[] = {"/MediaBox [0 0 300 400]", "/MediaBox [-50 70 250 470] /CropBox [-20 90 240 450]",
                                "/MediaBox [0 0 300 400] /UserUnit 2 /TrimBox [10 10 290 390]"};
    for (const QByteArray& box : boxes) {
        for (const int rotation : {0, 90, 180, 270}) {
            SCOPED_TRACE(box.toStdString() + " " + std::to_string(rotation));
            PdfFixture fixture;
            fixture.addPageWithContent("0.5 g 20 100 90 60 re f 1 0 0 rg 0 200 40 40 re f");
            for (const QByteArray& pair : box.split('/'))
                if (!pair.isEmpty())
                    fixture.setPageKey(0, "/" + pair.left(pair.indexOf(' ')), pair.mid(pair.indexOf(' ')));
            fixture.setPageKey(0, "/Rotate", QByteArray::number(rotation));
            const auto before = PDFDocument::fromData(fixture.bytes())->page(0);
            const QImage picture = before->thumbnail({900, 900}, media);
            const QRectF upper(0.25, 0.75, 0.5, 0.05);
            const QRectF lower(0.125, 0.25, 0.5, 0.025);
            const QByteArray bytes = SearchablePage::fromPicture(
                picture, before->geometry(),
                {{QStringLiteral("Above the other"), upper}, {QStringLiteral("Below it"), lower}});
            EXPECT_EQ(PdfPrograms::complaints(bytes), "");
            const auto page = opened(bytes);
            EXPECT_EQ(page->geometry(), before->geometry());
            EXPECT_LT(difference(shown(page), shown(before)), 2);
            EXPECT_EQ(page->string().toStdString(), "Above the other\nBelow it");
            EXPECT_EQ(PdfPrograms::text(bytes).simplified().toStdString(), "Above the other Below it");
            const auto text = page->text();
            ASSERT_EQ(text->lines.size(), 2U);
            const QTransform toShown = page->displayTransform(media);
            const QSizeF size = page->displaySize(media);
            for (const auto& [line, expected] : {std::pair(text->lines[0], upper), std::pair(text->lines[1], lower)}) {
                QRectF marked;
                for (const PDFQuad& quad : text->lineQuads(line.start, line.end))
                    marked |= toShown.mapRect(quad.boundingRect());
                EXPECT_NEAR(marked.left(), expected.left() * size.width(), 1);
                EXPECT_NEAR(marked.bottom(), (1 - expected.top()) * size.height(), 3);
                EXPECT_NEAR(marked.top(), (1 - expected.bottom()) * size.height(), 3);
            }
        }
    }
}

TEST(SearchablePage, EveryScriptIsReadAgainByAllPrograms) {
    const struct {
        QStringList lines;
        bool isMixed = false; // for which one program moves blanks
    } pages[] = {{{QStringLiteral("Grüße, naïve café: 30 €"), QStringLiteral("Η γρήγορη αλεπού"),
                   QStringLiteral("Съешь ещё этих булок"), QStringLiteral("我能吞下玻璃而不伤身体"),
                   QStringLiteral("日本語のテキスト"), QStringLiteral("Outside 𝔘𝔫𝔦𝔠𝔬𝔡𝔢 planes 𠀋")}},
                 {{QStringLiteral("שלום עולם טוב"), QStringLiteral("السلام عليكم ورحمة")}},
                 {{QStringLiteral("שלום עולם, עמוד 12.5 מתוך ספר")}, true},
                 {{QStringLiteral("The word שלום means peace")}, true}};
    PDFPageGeometry geometry;
    geometry.boxes.fill({0, 0, 595, 842});
    for (const auto& [lines, isMixed] : pages) {
        std::vector<SearchablePage::Line> placed{{QStringLiteral("nothing"), QRectF(0.1, 0.9, 0.5, 0)},
                                                 {QStringLiteral("\u0007\n"), QRectF(0.1, 0.9, 0.5, 0.02)}};
        for (const QString& line : lines)
            placed.push_back({line, QRectF(0.1, 0.8 - 0.1 * double(placed.size() - 2), 0.8, 0.03)});
        const QString all = lines.join(QLatin1Char('\n'));
        const QByteArray bytes = SearchablePage::fromPicture(barred({100, 100}), geometry, placed);
        EXPECT_EQ(PdfPrograms::complaints(bytes), "");
        EXPECT_EQ(opened(bytes)->string().toStdString(), all.toStdString());
        const QByteArray byEngine = PdfPrograms::run(QStringLiteral("mutool draw -F txt FILE"), bytes).output;
        EXPECT_EQ(QString::fromUtf8(byEngine).simplified().toStdString(), all.simplified().toStdString());
        QString other = PdfPrograms::text(bytes).simplified();
        other.remove(QRegularExpression(QStringLiteral("[\u202A-\u202E]"))); // its own marks of directions
        QString expected = all.simplified();
        if (isMixed)
            for (QString* text : {&other, &expected})
                text->remove(QLatin1Char(' '));
        EXPECT_EQ(other.simplified().toStdString(), expected.toStdString());
        EXPECT_TRUE(SearchablePage::fromPicture({}, geometry, placed).isEmpty());
    }
}

TEST(SearchablePage, APictureIsStoredAsSmallAsItGoes) {
    QImage photograph(1200, 900, QImage::Format_RGB32);
    for (int y = 0; y < photograph.height(); ++y)
        for (int x = 0; x < photograph.width(); ++x)
            photograph.setPixel(x, y,
                                qRgb((x / 5 + y / 7 + QRandomGenerator::global()->bounded(9)) % 256, y / 4, x / 5));
    QImage text(1700, 2200, QImage::Format_RGB32); // letters with soft edges
    text.fill(Qt::white);
    QPainter painter(&text);
    painter.setFont(QFont(QStringLiteral("DejaVu Serif"), 26));
    for (int y = 100; y < 2100; y += 55)
        painter.drawText(150, y, QStringLiteral("The quick brown fox jumps over the lazy dog %1 times a day").arg(y));
    painter.end();
    QImage stained = text;
    stained.setPixel(3, 3, qRgb(255, 0, 0));
    const struct {
        QImage picture;
        const char* keys;
        qsizetype mostBytes;
        double mostDifference;
    } cases[] = {
        {barred({1001, 900}), "/BitsPerComponent 1 ", 5'000, 0},
        {barred({1001, 900}, QColor(128, 128, 128)), "/DeviceGray", 10'000, 0},
        {barred({1000, 900}, Qt::blue), "/Indexed", 10'000, 0},
        {text, "/DeviceGray", 250'000, 0},
        {stained, "/DeviceRGB", 350'000, 0},
        {photograph, "/DCTDecode", 900'000, 3},
    };
    for (const auto& [picture, keys, mostBytes, mostDifference] : cases) {
        SCOPED_TRACE(keys);
        PDFPageGeometry geometry;
        geometry.boxes.fill(QRectF(QPointF(), picture.size()));
        const QByteArray bytes = SearchablePage::fromPicture(picture, geometry, {});
        EXPECT_EQ(PdfPrograms::complaints(bytes), "");
        EXPECT_TRUE(PdfPrograms::unpacked(bytes).contains(keys) || bytes.contains(keys))
            << bytes.left(600).toStdString();
        EXPECT_LT(bytes.size(), mostBytes);
        const QImage again = opened(bytes)->thumbnail(picture.size(), media);
        EXPECT_LE(difference(again, picture), mostDifference) << again.width() << " by " << again.height();
    }
}

TEST(SearchablePage, APageThatIsOnePictureKeepsThePicturesBytes) {
    const QImage scan = barred({600, 800});
    const QByteArray jpeg = PdfFixture::jpegOf(scan);
    const QByteArray place = "q 300 0 0 400 0 0 cm /Scan Do Q";
    const struct {
        QByteArray content;
        bool isScan = true;
    } cases[] = {
        {place},
        {"q /Plain gs 0 0 300 400 re W n 0 400 -300 0 300 0 cm /Scan Do Q"},
        {place + " BT 3 Tr /F1 9 Tf 10 10 Td (Unseen) Tj ET"},
        {place + " BT /F1 9 Tf 10 10 Td (Seen) Tj ET", false},
        {place + place, false},
        {"/Faint gs " + place, false},
        {"0 0 100 400 re W n " + place, false},
        {place + " 0 0 1 rg 10 10 30 30 re f", false},
        {"/OC /Layer BDC " + place + " EMC", false},
    };
    for (const auto& [content, isScan] : cases) {
        SCOPED_TRACE(content.toStdString());
        for (const bool isProtected : {false, true}) {
            PdfFixture fixture;
            const QByteArray image =
                fixture.addStream("<< /Subtype /Image /Width 600 /Height 800 /BitsPerComponent 8 /ColorSpace "
                                  "/DeviceRGB /Filter /DCTDecode >>",
                                  jpeg);
            fixture.addPage({QStringLiteral("Another page")});
            fixture.addPageWithContent(content,
                                       "<< /XObject << /Scan " + image +
                                           " >> /ExtGState << /Plain << /ca 1 /BM /Normal >> /Faint << /ca 0.5 >> >> "
                                           "/Font << /F1 << /Type /Font /Subtype /Type1 /BaseFont /Helvetica >> >> >>",
                                       {300, 400});
            fixture.setPageKey(1, "/Rotate", "90");
            const QByteArray file = isProtected ? fixture.encrypted("", "owner", PdfFixture::Encryption::aes256)
                                                : fixture.bytes(PdfFixture::Style::objectStreams);
            const auto before = PDFDocument::fromData(file)->page(1);
            EXPECT_NEAR(SearchablePage::finestImage(before->content()), 2, 0.7);
            const QByteArray bytes = SearchablePage::fromOwnPicture(
                before->content(), before->geometry(), {{QStringLiteral("Found"), QRectF(0.1, 0.1, 0.5, 0.05)}});
            EXPECT_EQ(!bytes.isEmpty(), isScan);
            if (bytes.isEmpty())
                continue;
            EXPECT_EQ(PdfPrograms::complaints(bytes), "");
            EXPECT_TRUE(bytes.contains(jpeg));
            EXPECT_LT(bytes.size(), jpeg.size() + 10'240);
            const auto page = opened(bytes);
            EXPECT_EQ(page->string(), QStringLiteral("Found"));
            EXPECT_EQ(page->geometry(), before->geometry());
            EXPECT_EQ(shown(page), shown(before));
        }
    }
}
