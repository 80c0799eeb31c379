#include "PDFEditorDocument.h"

#include "DocumentSnapshot.h"
#include "PDFAnnotation.h"
#include "PDFDocument.h"
#include "PDFPage.h"
#include "PdfFixtures.h"
#include "PdfPrograms.h"
#include "RestrictedRuns.h"
#include "UndoManager.h"

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

    /// Three pages that say "First", "Second" and "Third".
    static void fill(PdfFixture& fixture) {
        for (const QString& word : {QStringLiteral("First"), QStringLiteral("Second"), QStringLiteral("Third")})
            fixture.addPage({word});
    }

    QTemporaryDir m_folder;
};

TEST_F(PDFEditorDocumentTest, aNewOneIsEmptyAndUntitled) {
    const PDFEditorDocument document;
    ASSERT_TRUE(document.pdfDocument());
    EXPECT_EQ(document.pdfDocument()->pageCount(), 0);
    EXPECT_FALSE(document.pdfDocument()->isLocked());
    EXPECT_FALSE(document.wasPasswordProtected());
    EXPECT_FALSE(document.isDocumentEdited());
    EXPECT_TRUE(document.openNotice().isEmpty());
    EXPECT_TRUE(document.suggestedFileName().endsWith(QStringLiteral(".pdf")));
}

TEST_F(PDFEditorDocumentTest, readingPutsTheFilesDocumentInPlace) {
    PdfFixture fixture;
    fill(fixture);
    const QUrl url = store(QStringLiteral("a b.pdf"), fixture.bytes());
    PDFEditorDocument document;
    QStringList log;
    QObject::connect(&document, &PDFEditorDocument::pdfDocumentChanged, &document,
                     [&] { log << QStringLiteral("another, %1 pages").arg(document.pdfDocument()->pageCount()); });
    QObject::connect(&document, &PDFEditorDocument::objectWillChange, &document,
                     [&log] { log << QStringLiteral("look"); });
    document.read(url);
    EXPECT_EQ(log.join(u';'), QStringLiteral("another, 3 pages;look"));
    EXPECT_FALSE(document.wasPasswordProtected());
    EXPECT_TRUE(document.openNotice().isEmpty());

    document.setPdfDocument(document.pdfDocument());
    EXPECT_EQ(log.size(), 2);
}

TEST_F(PDFEditorDocumentTest, aFileThatCannotBeReadLeavesASentenceAndTheDocumentAsItWas) {
    PdfFixture fixture;
    fill(fixture);
    PDFEditorDocument document;
    document.read(store(QStringLiteral("good.pdf"), fixture.bytes()));
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
    PdfFixture fixture;
    fill(fixture);
    PDFEditorDocument document;
    document.read(
        store(QStringLiteral("locked.pdf"), fixture.encrypted("user", "owner", PdfFixture::Encryption::aes256)));
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

TEST_F(PDFEditorDocumentTest, aSavedFileHoldsTheAnnotationsAndPageChanges) {
    PdfFixture fixture;
    fill(fixture);
    const QUrl url = store(QStringLiteral("a.pdf"), fixture.bytes());
    PDFEditorDocument document;
    document.read(url);
    const auto note = std::make_shared<PDFAnnotation>(QRectF(100, 700, 80, 14), PDFAnnotationSubtype::highlight);
    note->setColor(Qt::yellow);
    note->setContents(QStringLiteral("Remember"));
    document.pdfDocument()->page(2)->addAnnotation(note);
    document.pdfDocument()->removePage(0);
    document.write(url.toLocalFile());

    const QByteArray saved = load(url);
    EXPECT_EQ(PdfPrograms::complaints(saved), "");
    EXPECT_EQ(PdfPrograms::text(saved, 1).trimmed(), QStringLiteral("Second"));
    EXPECT_EQ(PdfPrograms::text(saved, 2).trimmed(), QStringLiteral("Third"));
    const QByteArray unpacked = PdfPrograms::unpacked(saved);
    EXPECT_TRUE(unpacked.contains("/Subtype /Highlight"));
    EXPECT_TRUE(unpacked.contains("(Remember)"));
    EXPECT_FALSE(unpacked.contains("(First)"));

    PDFEditorDocument again;
    again.read(url);
    ASSERT_EQ(again.pdfDocument()->pageCount(), 2);
    ASSERT_EQ(again.pdfDocument()->page(1)->annotations().size(), 1U);
    EXPECT_EQ(again.pdfDocument()->page(1)->annotations()[0]->contents(), QStringLiteral("Remember"));
}

TEST_F(PDFEditorDocumentTest, aSnapshotIsWrittenByAnotherThreadAsTheDocumentWas) {
    PdfFixture fixture;
    fill(fixture);
    PDFEditorDocument document;
    document.read(store(QStringLiteral("a.pdf"), fixture.bytes()));
    const auto pdf = document.pdfDocument();
    const auto note = std::make_shared<PDFAnnotation>(QRectF(100, 700, 80, 14), PDFAnnotationSubtype::highlight);
    note->setContents(QStringLiteral("Before"));
    pdf->page(0)->addAnnotation(note);
    const auto snapshot = document.snapshot(SignatureCare::keep);
    note->setContents(QStringLiteral("After"));
    pdf->removePage(1);

    const QString path = m_folder.filePath(QStringLiteral("b.pdf"));
    std::thread([&snapshot, &path] { snapshot->write(path, std::nullopt); }).join();
    const auto saved = PDFDocument::fromFile(path);
    EXPECT_EQ(saved->pageCount(), 3);
    ASSERT_EQ(saved->page(0)->annotations().size(), 1U);
    EXPECT_EQ(saved->page(0)->annotations()[0]->contents(), QStringLiteral("Before"));
    EXPECT_EQ(PdfPrograms::complaints(load(QUrl::fromLocalFile(path))), "");
}

TEST_F(PDFEditorDocumentTest, aFileThatCannotBeWrittenIsToldWithWhatCanBeDone) {
    PdfFixture fixture;
    fill(fixture);
    PDFEditorDocument document;
    document.read(store(QStringLiteral("a.pdf"), fixture.bytes()));
    ASSERT_TRUE(QDir(m_folder.path()).mkpath(QStringLiteral("closed")));
    const QString inClosed = m_folder.filePath(QStringLiteral("closed/new.pdf"));
    ASSERT_TRUE(QFile::setPermissions(m_folder.filePath(QStringLiteral("closed")), QFile::ReadOwner | QFile::ExeOwner));
    QStringList told;
    RestrictedRuns::withoutPrivileges([&] {
        for (const QString& path : {inClosed, m_folder.filePath(QStringLiteral("gone/a.pdf")), m_folder.path()}) {
            try {
                document.snapshot(SignatureCare::keep)->write(path, std::nullopt);
            } catch (const DocumentError& error) {
                told << error.sentence() + (error.isHelpedBySaveAs() ? QStringLiteral(" [Save As]") : QString());
            }
        }
    });
    QFile::setPermissions(m_folder.filePath(QStringLiteral("closed")),
                          QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    EXPECT_EQ(told.join(u'\n').toStdString(),
              "You don't have permission to write to the folder “closed”. Choose Save As to store it in another place. "
              "[Save As]\nThe folder “gone” doesn't exist. Choose Save As to store it in another place. [Save As]\n"
              "There is a folder of this name. Choose Save As to give it another name. [Save As]");
    EXPECT_FALSE(QFile::exists(inClosed));
}

TEST_F(PDFEditorDocumentTest, aFileWithoutItsEndDoesNotLookWhole) {
    PdfFixture fixture;
    fill(fixture);
    const QByteArray bytes = fixture.bytes();
    const PDFEditorDocument document;
    EXPECT_TRUE(document.wholeCheck()(store(QStringLiteral("whole.pdf"), bytes + "\n")));
    EXPECT_FALSE(document.wholeCheck()(store(QStringLiteral("half.pdf"), bytes.left(bytes.size() / 2))));
    EXPECT_FALSE(document.wholeCheck()(store(QStringLiteral("empty.pdf"), {})));
    EXPECT_FALSE(document.wholeCheck()(QUrl::fromLocalFile(m_folder.filePath(QStringLiteral("missing.pdf")))));
}

TEST_F(PDFEditorDocumentTest, aRepairedFileOpensWithANotice) {
    PdfFixture fixture;
    fill(fixture);
    PDFEditorDocument document;
    document.read(store(QStringLiteral("damaged.pdf"), PdfFixture::damaged(fixture.bytes())));
    EXPECT_EQ(document.pdfDocument()->pageCount(), 3);
    EXPECT_TRUE(document.openNotice().contains(QStringLiteral("repaired")));
    EXPECT_EQ(PdfPrograms::complaints(document.dataRepresentation()), "");
}

TEST_F(PDFEditorDocumentTest, aProtectedFileThatIsReadAgainNeedsNoPassword) {
    for (const auto encryption : {PdfFixture::Encryption::rc4, PdfFixture::Encryption::aes256}) {
        PdfFixture fixture;
        fill(fixture);
        PDFEditorDocument document;
        const QUrl url = store(QStringLiteral("locked.pdf"), fixture.encrypted("grün", "owner", encryption));
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

        store(QStringLiteral("locked.pdf"), fixture.encrypted("other", "owner 2", encryption));
        document.read(url);
        EXPECT_TRUE(document.pdfDocument()->isLocked()) << "it has another password now";
    }
}

} // namespace
