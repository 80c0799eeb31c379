#include "BookmarkOperations.h"
#include "EditorTest.h"
#include "MetadataOperations.h"
#include "PDFDestination.h"
#include "PDFOutline.h"

namespace {

using BookmarkOperations::Bookmark;

std::shared_ptr<PDFOutline> entry(const QString& label, const std::shared_ptr<PDFPage>& page, PDFOutline& parent) {
    auto entry = std::make_shared<PDFOutline>();
    entry->setLabel(label);
    if (page)
        entry->setDestination(PDFDestination(page, 10.0, 500.0, 2.0));
    parent.insertChild(entry, parent.numberOfChildren());
    return entry;
}

/// Such as "1 Alpha, 2 Beta".
QString said(const PDFDocument& document) {
    std::vector<Bookmark> bookmarks;
    if (const auto root = document.outlineRoot())
        BookmarkOperations::collect(*root, bookmarks, document);
    QStringList all;
    for (const Bookmark& each : bookmarks)
        all.append(QStringLiteral("%1 %2").arg(each.pageIndex + 1).arg(each.title));
    return all.join(QStringLiteral(", "));
}

QString told(const DocumentMetadata& metadata) {
    return QStringList{metadata.title, metadata.author, metadata.subject, metadata.keywords}.join(u'|');
}

class AttributesTest : public EditorTest {};

} // namespace

TEST_F(AttributesTest, bookmarksAreFlatAndSortedAndUndoneAnyNumberOfTimes) {
    open(pagesOf(QStringList(4, QStringLiteral("Words"))));
    EXPECT_EQ(said(pdf()), QString());
    const auto root = std::make_shared<PDFOutline>();
    const auto part = entry(QStringLiteral("Part"), pdf().page(2), *root);
    entry(QStringLiteral("Überblick 概要 نظرة"), pdf().page(0), *part);
    entry(QString(), pdf().page(1), *part);
    entry(QStringLiteral("Below"), pdf().page(3), *entry(QStringLiteral("Nowhere"), nullptr, *root));
    pdf().setOutlineRoot(root);
    const QString before = QStringLiteral("3 Part, 1 Überblick 概要 نظرة, 4 Below");
    ASSERT_EQ(said(pdf()), before);

    std::vector<Bookmark> bookmarks;
    BookmarkOperations::collect(*root, bookmarks, pdf());
    bookmarks.push_back({.title = QStringLiteral("First"), .pageIndex = 0});
    bookmarks.push_back({.title = QStringLiteral("Too far"), .pageIndex = 4});
    BookmarkOperations::writeBookmarks(bookmarks, m_document, &undoManager());
    const QString after = QStringLiteral("1 Überblick 概要 نظرة, 1 First, 3 Part, 4 Below");
    expectReversible([this] { return said(pdf()); }, before, after);
    EXPECT_EQ(pdf().outlineRoot()->numberOfChildren(), 4);
    EXPECT_EQ(m_told, 7);
    const QByteArray saved = pdf().dataRepresentation();
    EXPECT_EQ(PdfPrograms::complaints(saved), "");
    EXPECT_EQ(said(*PDFDocument::fromData(saved)), after);
    EXPECT_EQ(PDFDocument::fromData(saved)->outlineRoot()->child(2)->destination()->y(), 0);

    BookmarkOperations::writeBookmarks({}, m_document, nullptr);
    EXPECT_FALSE(PDFDocument::fromData(pdf().dataRepresentation())->outlineRoot());
}

TEST_F(AttributesTest, metadataGoesIntoInformationAndPacketAndTheRestStays) {
    PdfFixture fixture;
    fixture.addPage({QStringLiteral("Words")});
    fixture.setInfo("/Title", QStringLiteral("Old"));
    fixture.setInfo("/Author", QStringLiteral("Jane Doe"));
    fixture.setInfo("/Keywords", QStringLiteral("plums; pears"));
    fixture.setInfo("/Company", QStringLiteral("Unknown Ltd"));
    fixture.setMetadata("<x:xmpmeta xmlns:x=\"adobe:ns:meta/\"><rdf:RDF "
                        "xmlns:rdf=\"http://www.w3.org/1999/02/22-rdf-syntax-ns#\"><rdf:Description rdf:about=\"\" "
                        "xmlns:pdf=\"http://ns.adobe.com/pdf/1.3/\" xmlns:my=\"urn:my\" my:own=\"kept\" "
                        "pdf:Keywords=\"plums; pears\"/></rdf:RDF></x:xmpmeta>");
    open(fixture.bytes());
    const DocumentMetadata former = MetadataOperations::read(pdf());
    const QString before = QStringLiteral("Old|Jane Doe||plums, pears");
    MetadataOperations::save(former, m_document, &undoManager());
    EXPECT_EQ(m_told, 0);
    EXPECT_FALSE(undoManager().canUndo());

    const struct {
        DocumentMetadata typed;
        QString result;
        std::vector<const char*> inPacket;
        std::vector<const char*> gone;
    } cases[] = {
        {{QStringLiteral(" Ñandú 概要 "), {}, QStringLiteral("Birds <&>"), QStringLiteral(" a b ,, c,")},
         QStringLiteral(" Ñandú 概要 ||Birds <&>|a b, c"),
         {"> Ñandú 概要 <", "Birds &lt;&amp;", "a b, c", "my:own=\"kept\""},
         {"Jane", "plums"}},
        {{QStringLiteral("Old"), {}, {}, QStringLiteral(" , ,")},
         QStringLiteral("Old|||"),
         {"Old"},
         {"plums", "Keywords", "subject"}},
    };
    for (const auto& each : cases) {
        MetadataOperations::save(each.typed, m_document, &undoManager());
        expectReversible([this] { return told(MetadataOperations::read(pdf())); }, before, each.result);
        const QByteArray saved = pdf().dataRepresentation();
        EXPECT_EQ(told(MetadataOperations::read(*PDFDocument::fromData(saved))), each.result);
        EXPECT_TRUE(PdfPrograms::unpacked(saved).contains("(Unknown Ltd)"));
        const auto seen = [&saved](const char* arguments) {
            return PdfPrograms::run(QStringLiteral("pdfinfo"), QString::fromLatin1(arguments).split(u' '), saved)
                .output;
        };
        const QByteArray packet = seen("-meta FILE");
        for (const char* words : each.inPacket)
            EXPECT_TRUE(packet.contains(words)) << packet.constData();
        for (const char* words : each.gone)
            EXPECT_FALSE((packet + seen("FILE")).contains(words)) << packet.constData();
        undoManager().undo();
    }
}
