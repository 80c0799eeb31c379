#include "PDFEditorDocument.h"

#include "DocumentSnapshot.h"
#include "PDFAnnotation.h"
#include "PDFDocument.h"
#include "PDFPage.h"
#include "PdfFixtures.h"
#include "PdfPrograms.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <thread>

#include <gtest/gtest.h>

namespace {

class PDFEditorDocumentTest : public testing::Test {
protected:
    QUrl store(const QString& name, const QByteArray& bytes) {
        QFile file(m_folder.filePath(name));
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(bytes);
        return QUrl::fromLocalFile(file.fileName());
    }

    [[nodiscard]] static QByteArray load(const QUrl& url) {
        QFile file(url.toLocalFile());
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }

    void SetUp() override {
        for (const QString& word : {QStringLiteral("First"), QStringLiteral("Second"), QStringLiteral("Third")})
            m_fixture.addPage({word});
        m_bytes = m_fixture.bytes();
    }

    PdfFixture m_fixture; ///< three pages that say "First", "Second" and "Third"
    QByteArray m_bytes;
    QTemporaryDir m_folder;
};

TEST_F(PDFEditorDocumentTest, aFileThatCannotBeReadLeavesASentenceAndTheDocumentAsItWas) {
    PDFEditorDocument document;
    document.read(store(QStringLiteral("good.pdf"), m_bytes));
    const auto before = document.pdfDocument();

    ASSERT_TRUE(QDir(m_folder.path()).mkdir(QStringLiteral("folder.pdf")));
    const QUrl bad[] = {
        QUrl::fromLocalFile(m_folder.filePath(QStringLiteral("missing.pdf"))),
        QUrl::fromLocalFile(m_folder.filePath(QStringLiteral("folder.pdf"))),
        store(QStringLiteral("empty.pdf"), {}),
        store(QStringLiteral("text.pdf"), "This is a letter, not a document.\n"),
        store(QStringLiteral("zeros.pdf"), QByteArray(100'000, '\0')),
        QUrl(QStringLiteral("https://example.org/a.pdf")),
    };
    for (const QUrl& url : bad) {
        try {
            document.read(url);
            ADD_FAILURE() << url.toString().toStdString() << " was read";
        } catch (const DocumentError& error) {
            EXPECT_TRUE(error.sentence().endsWith(u'.')) << error.what();
            EXPECT_FALSE(error.sentence().contains(url.fileName())) << error.what();
        }
        EXPECT_EQ(document.pdfDocument(), before);
    }
}

TEST_F(PDFEditorDocumentTest, aLockedDocumentIsHeldAndSavedOnlyAfterItsPassword) {
    PDFEditorDocument document;
    document.read(
        store(QStringLiteral("locked.pdf"), m_fixture.encrypted("user", "owner", PdfFixture::Encryption::aes256)));
    EXPECT_TRUE(document.pdfDocument()->isLocked());
    EXPECT_TRUE(document.wasPasswordProtected());
    const QUrl target = store(QStringLiteral("target.pdf"), "old");
    EXPECT_THROW(static_cast<void>(document.dataRepresentation()), DocumentError);
    EXPECT_THROW(document.write(target.toLocalFile()), DocumentError);
    EXPECT_EQ(load(target), "old");

    ASSERT_TRUE(document.pdfDocument()->unlock(QStringLiteral("user")));
    EXPECT_TRUE(document.wasPasswordProtected());
    document.write(target.toLocalFile());
    const auto saved = PDFDocument::fromData(load(target));
    EXPECT_TRUE(!saved->isLocked() || saved->unlock(QStringLiteral("user")));
    EXPECT_EQ(saved->pageCount(), 3);
}

TEST_F(PDFEditorDocumentTest, aSnapshotHoldsAnnotationsAndPageChangesAndIsWrittenByAnotherThread) {
    PDFEditorDocument document;
    EXPECT_EQ(document.pdfDocument()->pageCount(), 0);
    EXPECT_TRUE(document.suggestedFileName().endsWith(QStringLiteral(".pdf")));
    QStringList log;
    QObject::connect(&document, &PDFEditorDocument::pdfDocumentChanged, &document,
                     [&] { log << QStringLiteral("another, %1 pages").arg(document.pdfDocument()->pageCount()); });
    QObject::connect(&document, &PDFEditorDocument::objectWillChange, &document,
                     [&log] { log << QStringLiteral("look"); });
    document.read(store(QStringLiteral("a b.pdf"), m_bytes));
    document.setPdfDocument(document.pdfDocument());
    EXPECT_EQ(log.join(u';'), QStringLiteral("another, 3 pages;look"));
    EXPECT_FALSE(document.wasPasswordProtected());
    EXPECT_TRUE(document.openNotice().isEmpty());

    const auto note = std::make_shared<PDFAnnotation>(QRectF(100, 700, 80, 14), PDFAnnotationSubtype::highlight);
    note->setColor(Qt::yellow);
    note->setContents(QStringLiteral("Before"));
    document.pdfDocument()->page(2)->addAnnotation(note);
    document.pdfDocument()->removePage(0);
    const auto snapshot = document.snapshot(SignatureCare::keep);
    note->setContents(QStringLiteral("After"));
    document.pdfDocument()->removePage(0);
    const QUrl target = store(QStringLiteral("b.pdf"), {});
    std::thread([&] { snapshot->write(target.toLocalFile(), std::nullopt); }).join();

    const QByteArray saved = load(target);
    EXPECT_EQ(PdfPrograms::complaints(saved), "");
    EXPECT_EQ(PdfPrograms::text(saved).simplified(), QStringLiteral("Second Third"));
    EXPECT_FALSE(PdfPrograms::unpacked(saved).contains("(First)"));
    document.read(target);
    ASSERT_EQ(document.pdfDocument()->pageCount(), 2);
    EXPECT_EQ(document.pdfDocument()->page(1)->annotations().at(0)->contents(), QStringLiteral("Before"));
}

TEST_F(PDFEditorDocumentTest, aFileThatCannotBeWrittenIsToldWithWhatCanBeDone) {
    PDFEditorDocument document;
    document.read(store(QStringLiteral("a.pdf"), m_bytes));
    const std::pair<QString, const char*> places[] = {
        {m_folder.filePath(QStringLiteral("gone/a.pdf")),
         "The folder “gone” doesn't exist. Choose Save As to store it in another place."},
        {m_folder.path(), "There is a folder of this name. Choose Save As to give it another name."}};
    for (const auto& [path, sentence] : places) {
        try {
            document.snapshot(SignatureCare::keep)->write(path, std::nullopt);
            ADD_FAILURE() << sentence;
        } catch (const DocumentError& error) {
            EXPECT_EQ(error.sentence().toStdString(), sentence);
            EXPECT_TRUE(error.isHelpedBySaveAs());
        }
    }
}

TEST_F(PDFEditorDocumentTest, aFileWithoutItsEndDoesNotLookWholeAndARepairedOneOpensWithANotice) {
    PDFEditorDocument document;
    EXPECT_TRUE(document.wholeCheck()(store(QStringLiteral("whole.pdf"), m_bytes + "\n")));
    EXPECT_FALSE(document.wholeCheck()(store(QStringLiteral("half.pdf"), m_bytes.left(m_bytes.size() / 2))));
    EXPECT_FALSE(document.wholeCheck()(store(QStringLiteral("empty.pdf"), {})));
    EXPECT_FALSE(document.wholeCheck()(QUrl::fromLocalFile(m_folder.filePath(QStringLiteral("missing.pdf")))));
    document.read(store(QStringLiteral("damaged.pdf"), PdfFixture::damaged(m_bytes)));
    EXPECT_EQ(document.pdfDocument()->pageCount(), 3);
    EXPECT_TRUE(document.openNotice().contains(QStringLiteral("repaired")));
    EXPECT_EQ(PdfPrograms::complaints(document.dataRepresentation()), "");
}

TEST_F(PDFEditorDocumentTest, aProtectedFileThatIsReadAgainNeedsNoPassword) {
    for (const auto encryption : {PdfFixture::Encryption::rc4, PdfFixture::Encryption::aes256}) {
        PDFEditorDocument document;
        const QUrl url = store(QStringLiteral("locked.pdf"), m_fixture.encrypted("grün", "owner", encryption));
        document.read(url);
        document.setFileURL(url);
        document.read(url);
        EXPECT_TRUE(document.pdfDocument()->isLocked()) << "nobody has given a password";
        ASSERT_TRUE(document.pdfDocument()->unlock(QStringLiteral("grün")) ||
                    document.pdfDocument()->unlock(QStringLiteral("owner")));
        document.read(url);
        EXPECT_FALSE(document.pdfDocument()->isLocked());
        EXPECT_EQ(document.pdfDocument()->pageCount(), 3);
        EXPECT_TRUE(document.wasPasswordProtected());

        store(QStringLiteral("locked.pdf"), m_fixture.encrypted("other", "owner 2", encryption));
        document.read(url);
        EXPECT_TRUE(document.pdfDocument()->isLocked()) << "it has another password now";
    }
}

} // namespace
