#include "AtomicFile.h"

#include "FileError.h"
#include "FolderTest.h"
#include "InPlaceFile.h"
#include "RestrictedRuns.h"

#include <QDateTime>
#include <QFileInfo>
#include <QScopeGuard>

#include <array>
#include <stdexcept>

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/xattr.h>
#include <unistd.h>

namespace {

class AtomicFileTest : public FolderTest {
protected:
    void setMode(const char* name, mode_t mode) const { ASSERT_EQ(chmod(qPrintable(path(name)), mode), 0); }

    template <typename Content>
    static std::string sentenceOfFailure(const QString& file, const Content& content) {
        try {
            writeFileAtomically(file, content);
            return "(no error)";
        } catch (const FileError& error) {
            return error.sentence().toStdString();
        }
    }
};

TEST_F(AtomicFileTest, MakesAndReplacesFiles) {
    const QByteArray contents[] = {"", QByteArray("\0\r\n\xff", 4), QByteArray(3'000'000, 'x'), "short"};
    for (const QByteArray& content : contents) {
        const FileStamp stamp = writeFileAtomically(path("räport"), content);
        EXPECT_EQ(stamp, FileStamp::of(path("räport")));
        EXPECT_EQ(contentOf("räport"), content);
    }
    EXPECT_EQ(names(), "räport") << "no temporary file stays behind";
    QFile openBefore(path("räport"));
    ASSERT_TRUE(openBefore.open(QIODevice::ReadOnly));
    writeFileAtomically(openBefore.fileName(), QByteArray("other"));
    EXPECT_EQ(openBefore.readAll(), "short") << "who has the old file open keeps it";
}

TEST_F(AtomicFileTest, AFileThatChangesWhileItIsBeingReplacedStays) {
    makeFile("a");
    const std::optional<FileStamp> expected = FileStamp::of(path("a"));
    const auto changing = [this](QFile& file) {
        file.write("new");
        makeFile("a", "theirs");
    };
    try {
        writeFileAtomically(path("a"), changing, expected);
        ADD_FAILURE() << "it was replaced";
    } catch (const FileChangedError& error) {
        EXPECT_EQ(error.found(), FileStamp::of(path("a")));
    }
    EXPECT_EQ(contentOf("a"), "theirs");
    EXPECT_EQ(names(), "a");
    QFile::remove(path("a"));
    writeFileAtomically(path("a"), QByteArray("new"), expected);
    EXPECT_EQ(contentOf("a"), "new") << "a file that has gone is no obstacle";
}

TEST_F(AtomicFileTest, PermissionsAndAttributesAreKept) {
    const mode_t oldMask = umask(027); // a mask that the kept bits below go beyond
    const auto restoreMask = qScopeGuard([oldMask] { umask(oldMask); });
    struct stat status = {};
    writeFileAtomically(path("fresh"), QByteArray());
    ASSERT_EQ(stat(qPrintable(path("fresh")), &status), 0);
    EXPECT_EQ(status.st_mode & 07777, 0640u) << "a new file follows the user's mask";

    const QByteArray file = QFile::encodeName(path("kept"));
    makeFile("kept");
    const bool hasAttributes = setxattr(file.constData(), "user.note", "", 0, 0) == 0 &&
                               setxattr(file.constData(), "user.tag", "red", 3, 0) == 0;
    const bool hasOwner = geteuid() == 0 && chown(file.constData(), 1234, 4321) == 0;
    for (const mode_t mode : {0600, 0644, 0755, 0606, 02750}) {
        setMode("kept", mode);
        writeFileAtomically(path("kept"), [&status](QFile& temporary) {
            ASSERT_EQ(fstat(temporary.handle(), &status), 0);
            EXPECT_EQ(status.st_mode & 077, 0u) << "nobody may read what may become private";
        });
        ASSERT_EQ(stat(file.constData(), &status), 0);
        EXPECT_EQ(status.st_mode & 07777, mode);
    }
    char value[8] = {};
    EXPECT_EQ(getxattr(file.constData(), "user.tag", value, sizeof value), hasAttributes ? 3 : -1);
    EXPECT_STREQ(value, hasAttributes ? "red" : "");
    EXPECT_TRUE(!hasOwner || (status.st_uid == 1234 && status.st_gid == 4321));
}

TEST_F(AtomicFileTest, SymbolicLinksAreFollowedAndKept) {
    makeFolder("a/b");
    makeFile("a/target");
    // The link's own folder is reached through a link, so ".." must not be taken for the folder as written.
    ASSERT_EQ(symlink("a/b", qPrintable(path("shortcut"))), 0);
    for (const auto& [link, text, target] : {std::array{"a/b/up", "../target", "a/target"},
                                             {"chain", "shortcut/up", "a/target"},
                                             {"dangling", "a/not-yet", "a/not-yet"}}) {
        ASSERT_EQ(symlink(text, qPrintable(path(link))), 0);
        writeFileAtomically(path(link), QByteArray(link));
        EXPECT_TRUE(QFileInfo(path(link)).isSymLink()) << link;
        EXPECT_FALSE(QFileInfo(path(target)).isSymLink()) << target;
        EXPECT_EQ(contentOf(target), link);
    }
}

TEST_F(AtomicFileTest, FailuresAreToldAndChangeNothing) {
    makeFile("file");
    makeFile("read-only");
    makeFolder("folder");
    makeFolder("closed");
    setMode("read-only", 0444);
    setMode("closed", 0555);
    ASSERT_EQ(symlink("circle", qPrintable(path("circle"))), 0);
    ASSERT_EQ(mkfifo(qPrintable(path("pipe")), 0600), 0);
    const std::string before = names();
    const std::pair<QString, const char*> rows[] = {
        {path("missing/file"), "The folder “missing” doesn't exist."},
        {path("file/inside"), "Its path leads through something that isn't a folder."},
        {path("folder"), "There is a folder of this name."},
        {path("circle"), "The link to the file leads in a circle."},
        {path("pipe"), "It isn't an ordinary file."},
        {path(QByteArray(300, 'n').constData()), "The file's name is too long."},
        {QStringLiteral("/dev/full"), "It isn't an ordinary file."},
        {path("read-only"), "You don't have permission to change this file."},
        {path("closed/new"), "You don't have permission to write to the folder “closed”."},
    };
    RestrictedRuns::withoutPrivileges([&rows] {
        for (const auto& [file, sentence] : rows)
            EXPECT_EQ(sentenceOfFailure(file, QByteArray("new")), sentence);
    });
    setMode("closed", 0755);
    {
        const RestrictedRuns::FileLimit small(1000);
        EXPECT_EQ(sentenceOfFailure(path("file"), QByteArray(5000, 'x')), "The file is too large for this disk.");
    }
    const auto failing = [](QFile& file) {
        file.write("half");
        throw std::runtime_error("no more");
    };
    EXPECT_THROW(writeFileAtomically(path("file"), failing), std::runtime_error);
    EXPECT_EQ(names(), before);
    EXPECT_EQ(contentOf("file") + contentOf("read-only"), "texttext");
}

TEST_F(AtomicFileTest, FailuresSayWhatCanBeDone) {
    for (const auto& [number, words] : {std::pair(EACCES, "Choose Save As to store it in another place."),
                                        {ENOSPC, "Free some space and save again, or choose Save As"},
                                        {ENAMETOOLONG, "to give it another name."},
                                        {EBUSY, "Save again in a moment, or choose Save As"}})
        EXPECT_TRUE(FileError::forSystemError(number).advice().contains(QLatin1String(words))) << number;
}

TEST_F(AtomicFileTest, AFileInAClosedFolderIsWrittenInItsPlace) {
    makeFolder("closed");
    makeFile("closed/file", "a long old content");
    setMode("closed/file", 0640);
    setMode("closed", 0555);
    const std::optional<FileStamp> before = FileStamp::of(path("closed/file"));
    const QDir copies(QString::fromStdString(InPlaceFile::folderForCopies().string()));
    RestrictedRuns::withoutPrivileges([&] {
        const FileStamp stamp = writeFileAtomically(path("closed/file"), QByteArray("new"), before);
        EXPECT_EQ(contentOf("closed/file"), "new");
        EXPECT_EQ(stamp.inode, before->inode);
        // What can't be written to the end is whole somewhere else.
        std::optional<RestrictedRuns::FileLimit> small;
        const auto writeMuch = [&small](QFile& file) {
            file.write(QByteArray(5000, 'x'));
            small.emplace(1000);
        };
        EXPECT_THROW(writeFileAtomically(path("closed/file"), writeMuch), FileError);
    });
    setMode("closed", 0755);
    EXPECT_EQ(QFile::permissions(path("closed/file")) & QFile::ReadOther, QFile::Permissions());
    const QStringList kept = copies.entryList({QStringLiteral("*-file")}, QDir::Files | QDir::Hidden);
    ASSERT_TRUE(kept.size() == 1 && copies.entryList(QDir::Files | QDir::Hidden) == kept)
        << "and of what went well no copy is left";
    QFile copy(copies.filePath(kept.value(0)));
    EXPECT_TRUE(copy.open(QFile::ReadOnly) && copy.readAll() == QByteArray(5000, 'x'));
    copy.remove();
}

TEST_F(AtomicFileTest, AFullOrReadOnlyDiskIsTold) {
    const auto report = RestrictedRuns::onSmallDisk(m_folder.path(), [this](const auto& makeReadOnly) {
        writeFileAtomically(path("file"), QByteArray("old"));
        const auto writeMuch = [](QFile& file) {
            for (int i = 0; i < 1000; ++i)
                file.write(QByteArray(1001, 'x'));
            file.close();
        };
        std::string lines = sentenceOfFailure(path("file"), QByteArray(1'000'000, 'x')) + '|' +
                            sentenceOfFailure(path("file"), writeMuch) + '|' + contentOf("file").toStdString();
        makeReadOnly();
        for (const char* name : {"file", "other"})
            lines += '|' + sentenceOfFailure(path(name), QByteArray("new"));
        return QStringList(QString::fromStdString(lines + '|' + names()));
    });
    if (!report)
        GTEST_SKIP() << "a small disk can't be mounted here";
    EXPECT_EQ(report->constFirst().toStdString(),
              "There isn't enough space on the disk.|There isn't enough space on the disk.|old|"
              "The disk can't be written to.|The disk can't be written to.|file");
}

TEST_F(AtomicFileTest, TheWriterMayReadWhatItWroteOrWriteByName) {
    writeFileAtomically(path("file"), [this](QFile& file) {
        file.write("one");
        file.seek(0);
        EXPECT_EQ(file.read(3), "one");
        file.close();
        EXPECT_EQ(QFileInfo(file.fileName()).path(), m_folder.path()) << "the same folder, so the same disk";
        makeFile(qPrintable(QFileInfo(file.fileName()).fileName()), "by name");
    });
    EXPECT_EQ(contentOf("file"), "by name");
}

TEST_F(AtomicFileTest, WhatAKilledProcessLeftIsRemovedAfterAnHour) {
    const auto setAge = [](QFile& file, int minutes) {
        ASSERT_TRUE(file.setFileTime(QDateTime::currentDateTime().addSecs(-60 * qint64(minutes)),
                                     QFileDevice::FileModificationTime));
    };
    constexpr int anHour = 60;
    const std::pair<const char*, int> leftovers[] = {
        {".saving-1", anHour + 1}, {".saving-2", anHour - 1}, {".saving-18446744073709551615", 10'000},
        {".saving-3x", 10'000},    {".saving-", 10'000},      {"saving-4", 10'000},
        {"report", 10'000}};
    for (const auto& [name, minutes] : leftovers) {
        makeFile(name);
        QFile file(path(name));
        ASSERT_TRUE(file.open(QIODevice::ReadWrite));
        setAge(file, minutes);
    }
    ASSERT_EQ(symlink("report", qPrintable(path(".saving-5"))), 0);
    makeFolder(".saving-6");
    ASSERT_EQ(mkfifo(qPrintable(path(".saving-7")), 0600), 0);
    // One that is old but still being written.
    writeFileAtomically(path("slow"), [&](QFile& file) {
        setAge(file, 10'000);
        writeFileAtomically(path("other"), QByteArray("other"));
        EXPECT_TRUE(QFileInfo::exists(file.fileName()));
    });
    EXPECT_EQ(names(), ".saving- .saving-2 .saving-3x .saving-5 .saving-6 .saving-7 other report saving-4 slow");
}

} // namespace
