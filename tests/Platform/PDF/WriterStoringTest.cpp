#include "PDFDocument.h"
#include "PDFError.h"
#include "PDFPage.h"
#include "PdfFixtures.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace {

QByteArray contentOf(const QString& path) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("nothing there");
}

QByteArray fileWith(const QString& text) {
    PdfFixture pdf;
    pdf.addPage({text});
    return pdf.bytes();
}

void store(const QByteArray& bytes, const QString& path) {
    PDFDocument::fromData(bytes)->write(path);
}

QString failure(const QByteArray& bytes, const QString& path) {
    try {
        store(bytes, path);
    } catch (const PDFError& error) {
        EXPECT_EQ(error.kind(), PDFError::Kind::writeFailed);
        return error.sentence();
    }
    return {};
}

class StoringTest : public testing::Test {
protected:
    QTemporaryDir m_folder;
    [[nodiscard]] QString path(const char* name) const { return m_folder.filePath(QString::fromLatin1(name)); }
};

} // namespace

TEST_F(StoringTest, AFileIsReplacedAtOnceOrNotAtAll) {
    const QByteArray old = fileWith(QStringLiteral("old"));
    const QByteArray fresh = fileWith(QStringLiteral("new"));
    store(old, path("a.pdf"));
    QFile reader(path("a.pdf"));
    ASSERT_TRUE(reader.open(QIODevice::ReadOnly));
    store(fresh, path("a.pdf"));
    EXPECT_EQ(reader.readAll(), old) << "whoever reads the old file goes on with it";
    EXPECT_EQ(contentOf(path("a.pdf")), fresh);

    EXPECT_EQ(failure(fresh, path("gone/a.pdf")), QStringLiteral("The folder “gone” doesn't exist."));
    EXPECT_EQ(failure(fresh, m_folder.path()), QStringLiteral("There is a folder of this name."));
    EXPECT_EQ(QDir(m_folder.path()).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot),
              QStringList{QStringLiteral("a.pdf")});
}

TEST_F(StoringTest, ADocumentCanBeWrittenOverItsOwnFile) {
    PdfFixture pdf;
    pdf.addPage({QStringLiteral("one")});
    pdf.addPage({QStringLiteral("two")});
    store(pdf.bytes(), path("a.pdf"));
    const auto document = PDFDocument::fromFile(path("a.pdf"));
    document->removePage(0);
    document->write(path("a.pdf"));
    EXPECT_EQ(PDFDocument::fromFile(path("a.pdf"))->page(0)->string(), QStringLiteral("two"));
    EXPECT_EQ(document->page(0)->string(), QStringLiteral("two"));
    document->write(path("a.pdf"));
    EXPECT_EQ(PDFDocument::fromFile(path("a.pdf"))->pageCount(), 1);
}
