#include "FileStamp.h"

#include "AtomicFile.h"

#include <QFile>
#include <QTemporaryDir>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

TEST(FileStampTest, TellsContentsApartAndNothingElse) {
    const QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("räport.pdf"));
    const QString moved = folder.filePath(QStringLiteral("moved.pdf"));
    writeFileAtomically(path, QByteArray("first"));
    const std::optional<FileStamp> first = FileStamp::of(path);
    ASSERT_TRUE(first);
    ASSERT_EQ(chmod(qPrintable(path), 0600), 0);
    ASSERT_TRUE(QFile::rename(path, moved));
    ASSERT_EQ(symlink(qPrintable(moved), qPrintable(path)), 0);
    EXPECT_EQ(FileStamp::of(path), first) << "it is the same content under other names";

    const auto oldStamp = [&moved] {
        const timespec times[] = {{1, 1}, {1, 1}};
        utimensat(AT_FDCWD, qPrintable(moved), times, 0);
        return FileStamp::of(moved);
    };
    const std::optional<FileStamp> old = oldStamp();
    EXPECT_NE(old, first);
    QFile file(moved);
    ASSERT_TRUE(file.open(QIODevice::Append) && file.write("!") == 1);
    file.close();
    EXPECT_NE(oldStamp(), old) << "it has grown";
    writeFileAtomically(moved, QByteArray("third"));
    EXPECT_NE(oldStamp(), old) << "it is another file of that name";
    for (const char* none : {"/tmp", "/missing", "/dev/null", ""})
        EXPECT_FALSE(FileStamp::of(QLatin1String(none))) << none;
}
