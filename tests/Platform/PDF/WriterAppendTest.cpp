#include "PDFAnnotation.h"
#include "PDFDocument.h"
#include "PDFOutline.h"
#include "PDFPage.h"
#include "PdfFixtures.h"
#include "PdfPrograms.h"

#include <gtest/gtest.h>

namespace {

/// Large enough that a note is a small part of it.
void addManyPages(PdfFixture& fixture, int count = 40) {
    for (int i = 0; i < count; ++i)
        fixture.addPage({QStringLiteral("This is page %1.").arg(i + 1), QString(600, QLatin1Char('x'))});
}

std::shared_ptr<PDFAnnotation> highlight(const QRectF& bounds) {
    auto annotation = std::make_shared<PDFAnnotation>(bounds, PDFAnnotationSubtype::highlight);
    annotation->setColor(QColor(Qt::yellow));
    return annotation;
}

QByteArray appended(const QByteArray& before, const QByteArray& after) {
    EXPECT_TRUE(after.startsWith(before)) << "the old bytes must stay as they are";
    return after.mid(before.size());
}

class AppendTest : public testing::TestWithParam<PdfFixture::Style> {};

} // namespace

TEST_P(AppendTest, KeepsTheBytesAndAddsWhatChanged) {
    PdfFixture fixture;
    addManyPages(fixture);
    fixture.setPageKey(0, "/Bulk", fixture.addStream("<< >>", "% 4 7 R")); // which is no reference
    const QByteArray before = fixture.bytes(GetParam());
    const auto document = PDFDocument::fromData(before);
    EXPECT_EQ(document->dataRepresentation(), before) << "nothing changed";

    document->page(3)->addAnnotation(highlight({72, 700, 200, 14}));
    document->page(5)->setRotation(90);
    const QByteArray after = document->dataRepresentation();
    const QByteArray update = appended(before, after);
    EXPECT_LT(update.size(), 4000);
    const bool hasTable = update.contains("\nxref\n");
    EXPECT_EQ(hasTable, !before.mid(before.lastIndexOf("startxref") - 600).contains("/XRef"))
        << "the style of the last section";
    EXPECT_EQ(PdfPrograms::complaints(after), "");
    const auto isSameTwice = [&] { return document->dataRepresentation() == document->dataRepresentation(); };
    EXPECT_TRUE(isSameTwice() || isSameTwice()) << "the second in which it is saved is all that counts";

    const auto reopened = PDFDocument::fromData(after);
    EXPECT_FALSE(reopened->wasRepaired());
    ASSERT_EQ(reopened->page(3)->annotations().size(), 1U);
    EXPECT_EQ(reopened->page(3)->annotations()[0]->type(), PDFAnnotationSubtype::highlight);
    EXPECT_EQ(reopened->page(3)->annotations()[0]->bounds(), QRectF(72, 700, 200, 14));
    EXPECT_EQ(reopened->page(5)->rotation(), 90);
    EXPECT_TRUE(reopened->page(39)->string().contains(QStringLiteral("This is page 40.")));

    // A second update goes on top of the first.
    reopened->page(3)->annotations()[0]->setContents(QStringLiteral("Why?"));
    const QByteArray again = reopened->dataRepresentation();
    appended(after, again);
    EXPECT_EQ(PdfPrograms::complaints(again), "");
    EXPECT_EQ(PDFDocument::fromData(again)->page(3)->annotations()[0]->contents(), QStringLiteral("Why?"));
}

INSTANTIATE_TEST_SUITE_P(Styles, AppendTest,
                         testing::Values(PdfFixture::Style::classic, PdfFixture::Style::objectStreams,
                                         PdfFixture::Style::linearized));

TEST(WriterAppendTest, RewritesOnceUpdatesMakeUpHalfOfTheFile) {
    PdfFixture fixture;
    addManyPages(fixture);
    QByteArray file = fixture.bytes(PdfFixture::Style::objectStreams);
    const qsizetype original = file.size();
    bool rewritten = false;
    for (int round = 0; round < 200 && !rewritten; ++round) {
        const auto document = PDFDocument::fromData(file);
        for (int page = 0; page < 20; ++page) {
            auto note = highlight({72, 600, 100, 12});
            note->setContents(QString(60, QChar(u'a' + (round * 7 + page) % 26)));
            document->page(page)->addAnnotation(note);
        }
        const QByteArray next = document->dataRepresentation();
        rewritten = !next.startsWith(file);
        if (!rewritten) {
            EXPECT_LT((next.size() - original) * 2, next.size());
        }
        file = next;
    }
    EXPECT_TRUE(rewritten);
    EXPECT_EQ(PdfPrograms::complaints(file), "");
    EXPECT_EQ(file.count("startxref"), 1);
}

TEST(WriterAppendTest, IsNotTriedWhereItWouldBreakTheFile) {
    const auto saved = [](const QByteArray& file, const QString& password = {}) {
        const auto document = PDFDocument::fromData(file);
        EXPECT_TRUE(document->unlock(password));
        document->page(0)->addAnnotation(highlight({72, 700, 200, 14}));
        return document->dataRepresentation();
    };
    PdfFixture fixture;
    addManyPages(fixture);
    const QByteArray file = fixture.bytes();
    const QByteArray encrypted = fixture.encrypted("user", "owner", PdfFixture::Encryption::aes128);
    for (const QByteArray& odd : {PdfFixture::damaged(file), "junk\n" + file, file.chopped(20) + "\n"}) {
        const QByteArray result = saved(odd);
        EXPECT_FALSE(result.startsWith(odd.left(200)) && result.size() > odd.size() - 200 && result.count("%%EOF") > 1);
        EXPECT_EQ(PdfPrograms::complaints(result), "");
        EXPECT_EQ(PDFDocument::fromData(result)->pageCount(), 40);
    }
    const QByteArray result = saved(encrypted, QStringLiteral("user"));
    EXPECT_EQ(PdfPrograms::complaints(result, QStringLiteral("user")), "");
    EXPECT_NE(PdfPrograms::complaints(result), "") << "still protected";
    const auto reopened = PDFDocument::fromData(result);
    EXPECT_TRUE(reopened->isLocked());
    EXPECT_TRUE(reopened->unlock(QStringLiteral("owner")));
    EXPECT_EQ(reopened->page(0)->annotations().size(), 1U);
}

TEST(WriterAppendTest, KeepsWhatTheProgramDoesNotKnow) {
    PdfFixture fixture;
    addManyPages(fixture);
    fixture.setInfo("/Title", QStringLiteral("Old title"));
    fixture.setInfo("/Company", QStringLiteral("Unknown Ltd"));
    fixture.setInfo("/Keywords", QStringLiteral("one, two;three"));
    fixture.setInfo("/CreationDate", QStringLiteral("D:20240101000000Z"));
    fixture.setTrailerKey("/MyTrailerKey", "(kept)");
    fixture.setRootKey("/MyRootKey", "<< /A [1 2 3] >>");
    fixture.setPageKey(2, "/MyPageKey", "/Yes");
    fixture.addAnnotation(2,
                          "<< /Type /Annot /Subtype /Square /Rect [100 100 200 200] /C [1 0 0] /MyKey (secret sauce) "
                          "/BE << /S /C /I 1 >> /BS << /W 3 /S /S >> >>");
    fixture.addAnnotation(2, "<< /Type /Annot /Subtype /3D /Rect [0 0 10 10] >>");
    const QByteArray before = fixture.bytes();
    const auto document = PDFDocument::fromData(before);
    document->page(2)->annotations()[0]->setContents(QStringLiteral("changed"));
    QVariantMap attributes = document->documentAttributes();
    EXPECT_EQ(attributes.value(QStringLiteral("Keywords")).toStringList().join(QLatin1Char('|')),
              QStringLiteral("one|two|three"));
    EXPECT_EQ(attributes.value(QStringLiteral("CreationDate")), QDateTime(QDate(2024, 1, 1), QTime(0, 0), Qt::UTC));
    attributes.insert(QStringLiteral("Title"), QStringLiteral("Neuer Titel – ☃"));
    attributes.insert(QStringLiteral("Keywords"), QStringList{QStringLiteral("one"), QStringLiteral("two words")});
    document->setDocumentAttributes(attributes);

    const QByteArray after = document->dataRepresentation();
    appended(before, after);
    EXPECT_EQ(PdfPrograms::complaints(after), "");
    const QByteArray all = PdfPrograms::unpacked(after);
    for (const char* kept : {"/MyTrailerKey (kept)", "/MyRootKey", "/MyPageKey /Yes", "/MyKey (secret sauce)", "/BE <<",
                             "/3D", "(Unknown Ltd)", "(one, two words)", "(changed)"})
        EXPECT_TRUE(all.contains(kept)) << kept;
    const auto reopened = PDFDocument::fromData(after);
    QVariantMap saved = reopened->documentAttributes();
    EXPECT_LE(saved.take(QStringLiteral("ModDate")).toDateTime().secsTo(QDateTime::currentDateTime()), 600);
    EXPECT_EQ(saved, attributes);
    EXPECT_EQ(reopened->page(2)->annotations()[0]->border()->lineWidth, 3);
}

TEST(WriterAppendTest, OutlineIsReplacedAndCanBeRemoved) {
    PdfFixture fixture;
    addManyPages(fixture);
    fixture.setOutline({{QStringLiteral("Old"), 0}});
    const QByteArray before = fixture.bytes(PdfFixture::Style::objectStreams);
    const auto document = PDFDocument::fromData(before);

    const auto root = std::make_shared<PDFOutline>();
    for (int i = 0; i < 2; ++i) {
        root->insertChild(std::make_shared<PDFOutline>(), i);
        root->child(i)->setLabel(QStringLiteral("Chapter %1 – Überblick").arg(i));
        root->child(i)->setDestination(PDFDestination(document->page(i * 10), 0.0, 792.0, 1.5));
        root->child(i)->setOpen(i == 1);
        root->child(i)->insertChild(std::make_shared<PDFOutline>(), 0);
        root->child(i)->child(0)->setUrl(QStringLiteral("https://example.org/a b?ü"));
    }
    document->setOutlineRoot(root);
    const QByteArray after = document->dataRepresentation();
    appended(before, after);
    EXPECT_EQ(PdfPrograms::complaints(after), "");

    const auto reopened = PDFDocument::fromData(after);
    ASSERT_EQ(reopened->outlineRoot()->numberOfChildren(), 2);
    for (int i = 0; i < 2; ++i) {
        const auto item = reopened->outlineRoot()->child(i);
        EXPECT_EQ(item->label(), root->child(i)->label());
        EXPECT_EQ(item->isOpen(), i == 1);
        EXPECT_EQ(item->destination()->page(), reopened->page(i * 10));
        EXPECT_EQ(item->destination()->zoom(), 1.5);
        EXPECT_EQ(item->child(0)->url(), QStringLiteral("https://example.org/a%20b?%C3%BC"));
    }
    reopened->setOutlineRoot(nullptr);
    EXPECT_FALSE(PDFDocument::fromData(reopened->dataRepresentation())->outlineRoot());
}

TEST(WriterAppendTest, AttributesGoFromTheMetadataStreamToo) {
    PdfFixture fixture;
    addManyPages(fixture);
    fixture.setInfo("/Author", QStringLiteral("Jane Doe"));
    fixture.setInfo("/Subject", QStringLiteral("Apples"));
    fixture.setMetadata(
        "<?xpacket begin=\"\" id=\"W5M0MpCehiHzreSzNTczkc9d\"?>\n<x:xmpmeta xmlns:x=\"adobe:ns:meta/\">"
        "<rdf:RDF xmlns:rdf=\"http://www.w3.org/1999/02/22-rdf-syntax-ns#\"><rdf:Description "
        "rdf:about=\"\" xmlns:dc=\"http://purl.org/dc/elements/1.1/\" xmlns:my=\"urn:my\" "
        "xmlns:xmp=\"http://ns.adobe.com/xap/1.0/\" xmp:ModifyDate=\"2001-01-01\" my:own=\"kept\">"
        "<dc:title><rdf:Alt><rdf:li xml:lang=\"fr\">Pommes</rdf:li><rdf:li xml:lang=\"x-default\">"
        "Apple pie</rdf:li></rdf:Alt></dc:title><dc:creator><rdf:Seq><rdf:li>Jane Doe</rdf:li></rdf:Seq></dc:creator>"
        "</rdf:Description></rdf:RDF></x:xmpmeta>\n<?xpacket end=\"w\"?>");
    const auto document = PDFDocument::fromData(fixture.bytes());
    QVariantMap attributes = document->documentAttributes();
    EXPECT_EQ(attributes.value(QStringLiteral("Title")), QStringLiteral("Apple pie"))
        << "which the metadata says alone";
    attributes.remove(QStringLiteral("Author"));
    attributes.insert(QStringLiteral("Title"), QStringLiteral("Fruit & <more>"));
    document->setDocumentAttributes(attributes);
    const QByteArray after = document->dataRepresentation();
    const QString information = QString::fromUtf8(PdfPrograms::run(QStringLiteral("pdfinfo FILE"), after).output);
    EXPECT_TRUE(information.contains(QStringLiteral("Fruit & <more>"))) << information.toStdString();
    EXPECT_FALSE(information.contains(QStringLiteral("Jane")));
    EXPECT_TRUE(information.contains(QStringLiteral("Apples")));
    const QByteArray packet = PdfPrograms::run(QStringLiteral("pdfinfo -meta FILE"), after).output;
    EXPECT_FALSE(packet.contains("Jane"));
    EXPECT_TRUE(packet.contains("my:own=\"kept\""));
    EXPECT_TRUE(packet.contains("Fruit &amp; &lt;more&gt;")) << packet.toStdString();
    const QVariant date = PDFDocument::fromData(after)->documentAttributes().value(QStringLiteral("ModDate"));
    const QString minute = date.toDateTime().toUTC().toString(QStringLiteral("yyyy-MM-ddThh:mm"));
    EXPECT_TRUE(packet.contains("<xmp:ModifyDate>" + minute.toLatin1())) << packet.toStdString();
    EXPECT_FALSE(packet.contains("2001"));

    document->setDocumentAttributes({});
    EXPECT_FALSE(
        PDFDocument::fromData(document->dataRepresentation())->documentAttributes().contains(QStringLiteral("Title")));
}
