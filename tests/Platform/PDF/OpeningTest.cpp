#include "PDFDocument.h"
#include "PDFError.h"
#include "PDFPage.h"
#include "PdfFixtures.h"

#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace {

using Kind = PDFError::Kind;

/// The kind of failure, or none when the bytes, or the file at the path, open.
std::optional<Kind> failureOf(const QByteArray& bytes, const QString& path = {}) {
    try {
        (void)(path.isEmpty() ? PDFDocument::fromData(bytes) : PDFDocument::fromFile(path));
        return std::nullopt;
    } catch (const PDFError& error) {
        EXPECT_FALSE(error.sentence().isEmpty());
        EXPECT_TRUE(error.sentence().endsWith(QLatin1Char('.'))) << error.what();
        return error.kind();
    }
}

QByteArray twoPages() {
    PdfFixture pdf;
    pdf.addPage({QStringLiteral("First page")});
    pdf.addPage({QStringLiteral("Second page")});
    return pdf.bytes();
}

} // namespace

TEST(Opening, NamesWhatIsWrongWithBytesThatAreNoPDF) {
    EXPECT_EQ(failureOf({}), Kind::empty);
    EXPECT_EQ(failureOf("Dear Sir or Madam,\n"), Kind::notPDF);
    EXPECT_EQ(failureOf(QByteArray(100000, '\0')), Kind::notPDF);
    EXPECT_EQ(failureOf("%PDF-1.7\n"), Kind::notPDF);
    EXPECT_EQ(failureOf(twoPages().left(60)), Kind::notPDF);
}

TEST(Opening, NamesWhatIsWrongWithPaths) {
    const QTemporaryDir folder;
    EXPECT_EQ(failureOf({}, folder.filePath(QStringLiteral("missing.pdf"))), Kind::unreadable);
    EXPECT_EQ(failureOf({}, folder.path()), Kind::unreadable);
    EXPECT_EQ(failureOf({}, QStringLiteral("/dev/zero")), Kind::unreadable);
    QFile file(folder.filePath(QStringLiteral("good.pdf")));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(twoPages());
    file.close();
    EXPECT_EQ(failureOf({}, file.fileName()), std::nullopt);
}

TEST(Opening, UnknownProtectionIsRefusedWithItsOwnKind) {
    PdfFixture pdf;
    pdf.addPage({QStringLiteral("Secret")});
    pdf.setTrailerKey("/Encrypt", "<< /Filter /Acme.Vault /V 9 /R 9 /O (x) /U (y) /P -1 >>");
    EXPECT_EQ(failureOf(pdf.bytes()), Kind::unsupportedEncryption);
}

TEST(Opening, DamagedFilesAreRepairedAndSaySo) {
    const QByteArray whole = twoPages();
    EXPECT_FALSE(PDFDocument::fromData(whole)->wasRepaired());
    const QByteArray junkBehind = whole + QByteArray(5000, 'x');
    QByteArray wrongOffset = whole;
    wrongOffset.replace(wrongOffset.lastIndexOf("startxref"), 20, "startxref\n999999999\n");
    for (const QByteArray& damaged :
         {PdfFixture::damaged(whole), whole.left(whole.lastIndexOf("xref\n0")), wrongOffset}) {
        const auto document = PDFDocument::fromData(damaged);
        EXPECT_TRUE(document->wasRepaired());
        ASSERT_EQ(document->pageCount(), 2);
        EXPECT_EQ(document->page(1)->string(), QStringLiteral("Second page"));
    }
    EXPECT_EQ(PDFDocument::fromData(junkBehind)->pageCount(), 2);
}

TEST(Opening, ProtectedFilesOpenWithEitherPasswordAndNoOther) {
    for (const auto encryption :
         {PdfFixture::Encryption::rc4, PdfFixture::Encryption::aes128, PdfFixture::Encryption::aes256}) {
        PdfFixture pdf;
        pdf.addPage({QStringLiteral("Behind the lock")});
        // Before AES-256 passwords were written with one byte for a character.
        const QByteArray user = encryption == PdfFixture::Encryption::aes256 ? "us\xC3\xA9r" : "us\xE9r";
        const QByteArray file = pdf.encrypted(user, "owner", encryption);
        for (const QString& password : {QString::fromUtf8("usér"), QStringLiteral("owner")}) {
            const auto document = PDFDocument::fromData(file);
            ASSERT_TRUE(document->isLocked());
            EXPECT_TRUE(document->isEncrypted());
            EXPECT_EQ(document->pageCount(), 0);
            EXPECT_EQ(document->page(0), nullptr);
            EXPECT_EQ(document->outlineRoot(), nullptr);
            EXPECT_FALSE(document->unlock(QStringLiteral("wrong")));
            EXPECT_FALSE(document->unlock({}));
            EXPECT_TRUE(document->isLocked());
            ASSERT_TRUE(document->unlock(password)) << int(encryption) << password.toStdString();
            EXPECT_FALSE(document->isLocked());
            ASSERT_EQ(document->pageCount(), 1);
            EXPECT_EQ(document->page(0)->string(), QStringLiteral("Behind the lock"));
        }
        const auto open = PDFDocument::fromData(pdf.encrypted({}, "owner", encryption));
        EXPECT_FALSE(open->isLocked());
        EXPECT_TRUE(open->isEncrypted());
        EXPECT_EQ(open->page(0)->string(), QStringLiteral("Behind the lock"));
    }
}

TEST(Opening, CountsThePagesThatAreThere) {
    // What the tree claims about three pages.
    for (const char* claimed : {"2000000000", "-7", "0", "(three)", "3"}) {
        PdfFixture pdf;
        pdf.addPages(3, QStringLiteral("Page %1"));
        QByteArray file = pdf.bytes();
        ASSERT_EQ(file.count("/Count 3"), 1);
        file.replace("/Count 3", QByteArray("/Count ") + claimed);
        EXPECT_EQ(PDFDocument::fromData(PdfFixture::damaged(file))->pageCount(), 3) << claimed;
    }
}

TEST(Pages, KeepTheirIdentityWhileTheyMove) {
    PdfFixture pdf;
    pdf.addPages(5, QStringLiteral("Page %1"));
    const auto document = PDFDocument::fromData(pdf.bytes());
    const auto third = document->page(2);
    EXPECT_EQ(document->index(third.get()), 2);
    EXPECT_EQ(document->removePage(2), third);
    EXPECT_EQ(document->index(third.get()), -1);
    EXPECT_EQ(third->document(), nullptr);
    EXPECT_EQ(document->page(2)->string(), QStringLiteral("Page 3"));
    document->insert(third, 99);
    EXPECT_EQ(document->index(third.get()), 4);
    document->insert(third, 0); // it is in a document already
    EXPECT_EQ(document->pageCount(), 5);
    const auto copy = third->copy();
    document->insert(copy, -3);
    EXPECT_EQ(document->index(copy.get()), 0);
    EXPECT_EQ(copy->string(), QStringLiteral("Page 2"));
    EXPECT_EQ(document->removePage(17), nullptr);
    EXPECT_EQ(document->page(-1), nullptr);
}
