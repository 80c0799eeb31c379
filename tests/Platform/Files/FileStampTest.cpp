#include "FileStamp.h"

#include "AtomicFile.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

TEST(FileStampTest, TellsContentsApartAndNothingElse) {
    const QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("räport.pdf"));
    writeFileAtomically(path, QByteArray("first"));
    const std::optional<FileStamp> first = FileStamp::of(path);
    ASSERT_TRUE(first);
    EXPECT_EQ(FileStamp::of(path), first);
    ASSERT_EQ(chmod(qPrintable(path), 0600), 0);
    const QString moved = folder.filePath(QStringLiteral("moved.pdf"));
    ASSERT_TRUE(QFile::rename(path, moved));
    EXPECT_EQ(FileStamp::of(moved), first) << "it is the same content under another name";
    ASSERT_EQ(symlink(qPrintable(moved), qPrintable(path)), 0);
    EXPECT_EQ(FileStamp::of(path), first);

    const timespec times[] = {{1, 1}, {1, 1}};
    const auto makeOld = [&times](const QString& file) { utimensat(AT_FDCWD, qPrintable(file), times, 0); };
    makeOld(moved);
    const std::optional<FileStamp> old = FileStamp::of(moved);
    EXPECT_NE(old, first);
    QFile file(moved);
    ASSERT_TRUE(file.open(QIODevice::Append) && file.write("!") == 1);
    file.close();
    makeOld(moved);
    EXPECT_NE(FileStamp::of(moved), old) << "it has grown";
    writeFileAtomically(moved, QByteArray("third"));
    makeOld(moved);
    EXPECT_NE(FileStamp::of(moved), old) << "it is another file of that name";
}

TEST(FileStampTest, ThereIsNoneWithoutAnOrdinaryFile) {
    const QTemporaryDir folder;
    EXPECT_FALSE(FileStamp::of(folder.path()));
    EXPECT_FALSE(FileStamp::of(folder.filePath(QStringLiteral("missing"))));
    EXPECT_FALSE(FileStamp::of(QStringLiteral("/dev/null")));
    EXPECT_FALSE(FileStamp::of(QString()));
}

} // namespace
