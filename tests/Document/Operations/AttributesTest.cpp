#include "BookmarkOperations.h"
#include "MetadataOperations.h"
#include "PDFDestination.h"
#include "PDFDocument.h"
#include "PDFEditorDocument.h"
#include "PDFOutline.h"
#include "PDFPage.h"
#include "PdfFixtures.h"
#include "PdfPrograms.h"
#include "UndoManager.h"

#include <QCoreApplication>

#include <gtest/gtest.h>

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

QString information(const QByteArray& file, const QStringList& options = {}) {
    const QStringList arguments = options + QStringList{QStringLiteral("FILE")};
    return QString::fromUtf8(PdfPrograms::run(QStringLiteral("pdfinfo"), arguments, file).output);
}

class AttributesTest : public testing::Test {
protected:
    void open(PdfFixture& file) {
        m_document.setPdfDocument(PDFDocument::fromData(file.bytes()));
        QObject::connect(&m_document, &PDFEditorDocument::objectWillChange, [this] { ++m_told; });
    }
    [[nodiscard]] PDFDocument& pdf() const { return *m_document.pdfDocument(); }
    [[nodiscard]] UndoManager& undoManager() const { return *m_document.undoManager(); }

    PDFEditorDocument m_document;
    int m_told = 0;
};

} // namespace

TEST_F(AttributesTest, bookmarksAreFlatAndSortedAndUndoneAnyNumberOfTimes) {
    PdfFixture fixture;
    for (int i = 0; i < 4; ++i)
        fixture.addPage({QStringLiteral("Words")});
    open(fixture);
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
    QCoreApplication::processEvents(); // the step ends
    const QString after = QStringLiteral("1 Überblick 概要 نظرة, 1 First, 3 Part, 4 Below");
    for (int round = 0; round < 3; ++round) {
        EXPECT_EQ(said(pdf()), after);
        EXPECT_EQ(pdf().outlineRoot()->numberOfChildren(), 4);
        EXPECT_TRUE(m_document.isDocumentEdited());
        undoManager().undo();
        EXPECT_EQ(said(pdf()), before);
        EXPECT_EQ(pdf().outlineRoot(), root);
        EXPECT_FALSE(m_document.isDocumentEdited());
        undoManager().redo();
    }
    EXPECT_EQ(m_told, 7);
    const QByteArray saved = pdf().dataRepresentation();
    EXPECT_EQ(PdfPrograms::complaints(saved), "");
    EXPECT_EQ(said(*PDFDocument::fromData(saved)), after);
    const auto place = PDFDocument::fromData(saved)->outlineRoot()->child(2)->destination();
    EXPECT_EQ(place->x(), 0);
    EXPECT_EQ(place->y(), 0);

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
    open(fixture);
    const DocumentMetadata before = MetadataOperations::read(pdf());
    EXPECT_EQ(before, (DocumentMetadata{
                          QStringLiteral("Old"), QStringLiteral("Jane Doe"), {}, QStringLiteral("plums, pears")}));
    MetadataOperations::save(before, m_document, &undoManager());
    EXPECT_EQ(m_told, 0);
    EXPECT_FALSE(undoManager().canUndo());

    const struct {
        DocumentMetadata typed;
        DocumentMetadata result;
        std::vector<const char*> inPacket;
        std::vector<const char*> notInPacket;
    } cases[] = {
        {{QStringLiteral(" Ñandú 概要 "), {}, QStringLiteral("Birds <&>"), QStringLiteral(" a b ,, c,")},
         {QStringLiteral(" Ñandú 概要 "), {}, QStringLiteral("Birds <&>"), QStringLiteral("a b, c")},
         {"> Ñandú 概要 <", "Birds &lt;&amp;", "a b, c", "my:own=\"kept\""},
         {"Jane", "plums"}},
        {{QStringLiteral("Old"), {}, {}, QStringLiteral(" , ,")},
         {QStringLiteral("Old"), {}, {}, {}},
         {"Old"},
         {"plums", "Keywords", "subject"}},
    };
    for (const auto& each : cases) {
        MetadataOperations::save(each.typed, m_document, &undoManager());
        QCoreApplication::processEvents();
        for (int round = 0; round < 3; ++round) {
            EXPECT_EQ(MetadataOperations::read(pdf()), each.result);
            undoManager().undo();
            EXPECT_EQ(MetadataOperations::read(pdf()), before);
            undoManager().redo();
        }
        const QByteArray saved = pdf().dataRepresentation();
        EXPECT_EQ(MetadataOperations::read(*PDFDocument::fromData(saved)), each.result);
        EXPECT_TRUE(PdfPrograms::unpacked(saved).contains("(Unknown Ltd)"));
        const QString packet = information(saved, {QStringLiteral("-meta")});
        for (const char* words : each.inPacket)
            EXPECT_TRUE(packet.contains(QString::fromUtf8(words))) << packet.toStdString();
        for (const char* words : each.notInPacket)
            EXPECT_FALSE((packet + information(saved)).contains(QLatin1String(words))) << packet.toStdString();
        undoManager().undo();
    }
}
