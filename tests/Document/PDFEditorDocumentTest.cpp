#include "PDFEditorDocument.h"

#include "DocumentSnapshot.h"
#include "FolderTest.h"
#include "PDFAnnotation.h"
#include "PDFDocument.h"
#include "PDFPage.h"
#include "PdfFixtures.h"
#include "PdfPrograms.h"

#include <QSignalSpy>

#include <thread>

#include <gtest/gtest.h>

namespace {

class PDFEditorDocumentTest : public FolderTest {
protected:
    void SetUp() override {
        for (const QString& word : {QStringLiteral("First"), QStringLiteral("Second"), QStringLiteral("Third")})
            m_fixture.addPage({word});
        m_bytes = m_fixture.bytes();
    }

    PdfFixture m_fixture; ///< three pages that say "First", "Second" and "Third"
    QByteArray m_bytes;
    PDFEditorDocument m_document;
};

TEST_F(PDFEditorDocumentTest, aFileThatCannotBeReadLeavesASentenceAndTheDocumentAsItWas) {
    m_document.read(makeFile("good.pdf", m_bytes));
    const auto before = m_document.pdfDocument();
    makeFolder("folder.pdf");
    for (const QUrl& bad :
         {url("missing.pdf"), url("folder.pdf"), makeFile("empty.pdf", {}), makeFile("text.pdf"),
          makeFile("zeros.pdf", QByteArray(100'000, '\0')), QUrl(QStringLiteral("https://example.org/a.pdf"))}) {
        try {
            m_document.read(bad);
            ADD_FAILURE() << bad.toString().toStdString() << " was read";
        } catch (const DocumentError& error) {
            EXPECT_TRUE(error.sentence().endsWith(u'.')) << error.what();
            EXPECT_FALSE(error.sentence().contains(bad.fileName())) << error.what();
        }
        EXPECT_EQ(m_document.pdfDocument(), before);
    }
}

TEST_F(PDFEditorDocumentTest, aSnapshotHoldsAnnotationsAndPageChangesAndIsWrittenByAnotherThread) {
    EXPECT_EQ(m_document.pdfDocument()->pageCount(), 0);
    EXPECT_TRUE(m_document.suggestedFileName().endsWith(QStringLiteral(".pdf")));
    QSignalSpy another(&m_document, &PDFEditorDocument::pdfDocumentChanged);
    QSignalSpy looks(&m_document, &PDFEditorDocument::objectWillChange);
    m_document.read(makeFile("a b.pdf", m_bytes));
    const auto pdf = m_document.pdfDocument();
    m_document.setPdfDocument(pdf);
    EXPECT_TRUE(another.size() == 1 && looks.size() == 1);
    EXPECT_FALSE(m_document.wasPasswordProtected());
    EXPECT_TRUE(m_document.openNotice().isEmpty());

    const auto note = std::make_shared<PDFAnnotation>(QRectF(100, 700, 80, 14), PDFAnnotationSubtype::highlight);
    note->setContents(QStringLiteral("Before"));
    pdf->page(2)->addAnnotation(note);
    pdf->removePage(0);
    const auto snapshot = m_document.snapshot(SignatureCare::keep);
    note->setContents(QStringLiteral("After"));
    pdf->removePage(0);
    std::thread([&] { snapshot->write(path("b.pdf"), std::nullopt); }).join();
    try {
        snapshot->write(path("gone/a.pdf"), std::nullopt);
        ADD_FAILURE() << "it was written";
    } catch (const DocumentError& error) {
        EXPECT_TRUE(error.isHelpedBySaveAs()) << error.what();
    }

    const QByteArray saved = contentOf("b.pdf");
    EXPECT_EQ(PdfPrograms::complaints(saved), "");
    EXPECT_EQ(PdfPrograms::text(saved).simplified(), QStringLiteral("Second Third"));
    EXPECT_FALSE(PdfPrograms::unpacked(saved).contains("(First)"));
    m_document.read(url("b.pdf"));
    EXPECT_EQ(m_document.pdfDocument()->page(1)->annotations().at(0)->contents(), QStringLiteral("Before"));
}

TEST_F(PDFEditorDocumentTest, aFileWithoutItsEndDoesNotLookWholeAndARepairedOneOpensWithANotice) {
    const auto looksWhole = m_document.wholeCheck();
    EXPECT_TRUE(looksWhole(makeFile("whole.pdf", m_bytes + "\n")));
    for (const QUrl& bad :
         {makeFile("half.pdf", m_bytes.left(m_bytes.size() / 2)), makeFile("empty.pdf", {}), url("missing.pdf")})
        EXPECT_FALSE(looksWhole(bad)) << bad.toString().toStdString();
    m_document.read(makeFile("damaged.pdf", PdfFixture::damaged(m_bytes)));
    EXPECT_EQ(m_document.pdfDocument()->pageCount(), 3);
    EXPECT_TRUE(m_document.openNotice().contains(QStringLiteral("repaired")));
    EXPECT_EQ(PdfPrograms::complaints(m_document.dataRepresentation()), "");
}

TEST_F(PDFEditorDocumentTest, aLockedDocumentIsSavedOnlyAfterItsPasswordAndNeedsItOnce) {
    for (const auto encryption : {PdfFixture::Encryption::rc4, PdfFixture::Encryption::aes256}) {
        PDFEditorDocument document;
        const auto isLocked = [&document] { return document.pdfDocument()->isLocked(); };
        const QUrl locked = makeFile("locked.pdf", m_fixture.encrypted("grün", "owner", encryption));
        document.read(locked);
        document.setFileURL(locked);
        document.read(locked);
        EXPECT_TRUE(isLocked()) << "nobody has given a password";
        makeFile("target.pdf", "old");
        EXPECT_THROW(static_cast<void>(document.dataRepresentation()), DocumentError);
        EXPECT_THROW(document.write(path("target.pdf")), DocumentError);
        EXPECT_EQ(contentOf("target.pdf"), "old");

        const auto unlock = [](PDFDocument& pdf) {
            return pdf.unlock(QStringLiteral("grün")) || pdf.unlock(QStringLiteral("owner"));
        };
        ASSERT_TRUE(unlock(*document.pdfDocument()));
        document.write(path("target.pdf"));
        const auto saved = PDFDocument::fromData(contentOf("target.pdf"));
        EXPECT_TRUE(!saved->isLocked() || unlock(*saved));
        EXPECT_EQ(saved->pageCount(), 3);
        document.read(locked);
        EXPECT_EQ(document.pdfDocument()->pageCount(), 3);
        EXPECT_TRUE(document.wasPasswordProtected());

        document.read(makeFile("locked.pdf", m_fixture.encrypted("other", "owner 2", encryption)));
        EXPECT_TRUE(isLocked()) << "it has another password now";
    }
}

} // namespace
