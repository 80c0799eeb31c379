#include "PDFDocument.h"
#include "PDFError.h"
#include "PDFPage.h"
#include "PdfFixtures.h"
#include "Writer/DocumentComposer.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <csignal>

#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

QByteArray contentOf(const QString& path) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("nothing there");
}

mode_t permissions(const QString& path) {
    struct stat status {};
    stat(QFile::encodeName(path).constData(), &status);
    return status.st_mode & 0777;
}

QString failure(const QByteArray& bytes, const QString& path) {
    try {
        DocumentComposer::store(bytes, path);
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
    [[nodiscard]] QStringList files() const {
        return QDir(m_folder.path()).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot);
    }
};

} // namespace

TEST_F(StoringTest, ReplacesTheContentAndNothingElse) {
    DocumentComposer::store("first", path("a.pdf"));
    EXPECT_EQ(contentOf(path("a.pdf")), "first");
    const mode_t mask = umask(0);
    umask(mask);
    EXPECT_EQ(permissions(path("a.pdf")), 0666 & ~mask);

    chmod(QFile::encodeName(path("a.pdf")).constData(), 0640);
    ASSERT_TRUE(QFile::link(path("a.pdf"), path("link.pdf")));
    ASSERT_EQ(symlink("b.pdf", QFile::encodeName(path("dangling.pdf")).constData()), 0);
    QFile reader(path("a.pdf"));
    ASSERT_TRUE(reader.open(QIODevice::ReadOnly));
    DocumentComposer::store("second", path("link.pdf"));
    DocumentComposer::store("third", path("dangling.pdf"));
    EXPECT_EQ(reader.readAll(), "first") << "whoever reads the old file goes on with it";
    EXPECT_EQ(contentOf(path("a.pdf")), "second");
    EXPECT_EQ(permissions(path("a.pdf")), 0640U);
    EXPECT_TRUE(QFileInfo(path("link.pdf")).isSymLink());
    EXPECT_EQ(contentOf(path("b.pdf")), "third");
    EXPECT_EQ(files(), (QStringList{QStringLiteral("a.pdf"), QStringLiteral("b.pdf"), QStringLiteral("dangling.pdf"),
                                    QStringLiteral("link.pdf")}));
}

TEST_F(StoringTest, FailuresAreToldAndLeaveTheOldFile) {
    DocumentComposer::store("old", path("a.pdf"));
    EXPECT_EQ(failure("new", m_folder.filePath(QStringLiteral("gone/a.pdf"))),
              QStringLiteral("The folder doesn't exist any more."));
    EXPECT_EQ(failure("new", m_folder.path()), QStringLiteral("There is a folder of that name."));
    ASSERT_EQ(symlink("loop.pdf", QFile::encodeName(path("loop.pdf")).constData()), 0);
    EXPECT_FALSE(failure("new", path("loop.pdf")).isEmpty());
    QFile::remove(path("loop.pdf"));
    if (geteuid() != 0) {
        chmod(QFile::encodeName(path("a.pdf")).constData(), 0444);
        EXPECT_EQ(failure("new", path("a.pdf")), QStringLiteral("You don't have permission to write there."));
        chmod(QFile::encodeName(m_folder.path()).constData(), 0555);
        EXPECT_EQ(failure("new", path("b.pdf")), QStringLiteral("You don't have permission to write there."));
        chmod(QFile::encodeName(m_folder.path()).constData(), 0755);
    }

    // A limit on the size of files stands in for a disk that fills up.
    struct rlimit before {};
    getrlimit(RLIMIT_FSIZE, &before);
    const struct rlimit small { 1000, before.rlim_max };
    const auto handler = std::signal(SIGXFSZ, SIG_IGN);
    setrlimit(RLIMIT_FSIZE, &small);
    const QString full = failure(QByteArray(5000, 'x'), path("a.pdf"));
    setrlimit(RLIMIT_FSIZE, &before);
    std::signal(SIGXFSZ, handler);
    EXPECT_FALSE(full.isEmpty());
    EXPECT_EQ(contentOf(path("a.pdf")), "old");
    EXPECT_EQ(files(), QStringList{QStringLiteral("a.pdf")});
}

TEST_F(StoringTest, ADocumentCanBeWrittenOverItsOwnFile) {
    PdfFixture pdf;
    pdf.addPage({QStringLiteral("one")});
    pdf.addPage({QStringLiteral("two")});
    DocumentComposer::store(pdf.bytes(), path("a.pdf"));
    const auto document = PDFDocument::fromFile(path("a.pdf"));
    document->removePage(0);
    document->write(path("a.pdf"));
    EXPECT_EQ(PDFDocument::fromFile(path("a.pdf"))->page(0)->string(), QStringLiteral("two"));
    EXPECT_EQ(document->page(0)->string(), QStringLiteral("two"));
    document->write(path("a.pdf"));
    EXPECT_EQ(PDFDocument::fromFile(path("a.pdf"))->pageCount(), 1);
}
