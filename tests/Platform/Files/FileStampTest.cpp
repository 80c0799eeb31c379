#include "FileStamp.h"

#include "AtomicFile.h"
#include "FolderTest.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

class FileStampTest : public FolderTest {};

TEST_F(FileStampTest, TellsContentsApartAndNothingElse) {
    const QString path = this->path("räport.pdf");
    const QString moved = this->path("moved.pdf");
    writeFileAtomically(path, QByteArray("first"));
    const std::optional<FileStamp> first = FileStamp::of(path);
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
    makeFile("moved.pdf", "first!");
    EXPECT_NE(oldStamp(), old) << "it has grown";
    writeFileAtomically(moved, QByteArray("third"));
    EXPECT_NE(oldStamp(), old) << "it is another file of that name";
    for (const char* none : {"/tmp", "/missing", "/dev/null", ""})
        EXPECT_FALSE(FileStamp::of(QLatin1String(none))) << none;
}
