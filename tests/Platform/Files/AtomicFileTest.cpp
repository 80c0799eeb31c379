#include "AtomicFile.h"

#include "FileError.h"
#include "InPlaceFile.h"
#include "RestrictedRuns.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QScopeGuard>
#include <QTemporaryDir>

#include <atomic>
#include <csignal>
#include <stdexcept>
#include <thread>

#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/xattr.h>
#include <unistd.h>

namespace {

class AtomicFileTest : public testing::Test {
protected:
    QString path(const char* name) const { return m_folder.filePath(QString::fromUtf8(name)); }

    void make(const QString& file, const QByteArray& bytes = "old") const {
        QFile out(file);
        ASSERT_TRUE(out.open(QIODevice::WriteOnly) && out.write(bytes) == bytes.size());
    }

    static QByteArray contentOf(const QString& file) {
        QFile in(file);
        return in.open(QIODevice::ReadOnly) ? in.readAll() : QByteArray("(unreadable)");
    }

    static QString sentenceOfFailure(const QString& file) {
        try {
            writeFileAtomically(file, QByteArray("new"));
        } catch (const FileError& error) {
            return error.sentence();
        }
        return QStringLiteral("(no error)");
    }

    QStringList names() const {
        return QDir(m_folder.path()).entryList(QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot);
    }

    const QTemporaryDir m_folder;
};

TEST_F(AtomicFileTest, MakesAndReplacesFiles) {
    const QByteArray contents[] = {"", QByteArray("\0\r\n\xff", 4), QByteArray(3'000'000, 'x'), "short"};
    for (const QByteArray& content : contents) {
        const FileStamp stamp = writeFileAtomically(path("räport 1.pdf"), content);
        EXPECT_EQ(stamp, FileStamp::of(path("räport 1.pdf")));
        EXPECT_EQ(contentOf(path("räport 1.pdf")), content);
    }
    EXPECT_EQ(names().size(), 1) << "no temporary file stays behind";

    const QString oldFolder = QDir::currentPath();
    ASSERT_TRUE(QDir::setCurrent(m_folder.path()));
    writeFileAtomically(QStringLiteral("relative"), QByteArray("here"));
    QDir::setCurrent(oldFolder);
    EXPECT_EQ(contentOf(path("relative")), "here");
}

TEST_F(AtomicFileTest, AFileThatChangesWhileItIsBeingReplacedStays) {
    make(path("a"));
    const std::optional<FileStamp> expected = FileStamp::of(path("a"));
    const auto changing = [this](QFile& file) {
        file.write("new");
        make(path("a"), "theirs");
    };
    try {
        writeFileAtomically(path("a"), changing, expected);
        ADD_FAILURE() << "it was replaced";
    } catch (const FileChangedError& error) {
        EXPECT_EQ(error.found(), FileStamp::of(path("a")));
    }
    EXPECT_EQ(contentOf(path("a")), "theirs");
    EXPECT_EQ(names().size(), 1);
    QFile::remove(path("a"));
    writeFileAtomically(path("a"), QByteArray("new"), expected);
    EXPECT_EQ(contentOf(path("a")), "new") << "a file that has gone is no obstacle";
}

TEST_F(AtomicFileTest, PermissionsAndAttributesAreKept) {
    const mode_t oldMask = umask(027); // a mask that the kept bits below go beyond
    const auto restoreMask = qScopeGuard([oldMask] { umask(oldMask); });
    writeFileAtomically(path("fresh"), QByteArray());
    struct stat status = {};
    ASSERT_EQ(stat(qPrintable(path("fresh")), &status), 0);
    EXPECT_EQ(status.st_mode & 07777, 0640u) << "a new file follows the user's mask";

    const QByteArray file = QFile::encodeName(path("kept"));
    make(path("kept"));
    const bool hasAttributes = setxattr(file.constData(), "user.tag", "red", 3, 0) == 0;
    for (const mode_t mode : {0600, 0644, 0664, 0755, 0606, 02750}) {
        ASSERT_EQ(chmod(file.constData(), mode), 0);
        writeFileAtomically(path("kept"), [&status](QFile& temporary) {
            ASSERT_EQ(fstat(temporary.handle(), &status), 0);
            EXPECT_EQ(status.st_mode & 077, 0u) << "nobody may read what may become private";
        });
        ASSERT_EQ(stat(file.constData(), &status), 0);
        EXPECT_EQ(status.st_mode & 07777, mode);
    }
    char value[8] = {};
    if (hasAttributes) {
        EXPECT_EQ(getxattr(file.constData(), "user.tag", value, sizeof value), 3);
        EXPECT_STREQ(value, "red");
    }

    if (geteuid() == 0) {
        ASSERT_EQ(chown(file.constData(), 1234, 4321), 0);
        writeFileAtomically(path("kept"), QByteArray("new"));
        ASSERT_EQ(stat(file.constData(), &status), 0);
        EXPECT_EQ(status.st_uid, 1234u);
        EXPECT_EQ(status.st_gid, 4321u);
    }
}

TEST_F(AtomicFileTest, SymbolicLinksAreFollowedAndKept) {
    ASSERT_TRUE(QDir(m_folder.path()).mkpath(QStringLiteral("a/b")));
    make(path("a/target"));
    // The link's own folder is reached through a link, so ".." must not be taken for the folder as written.
    const struct {
        const char* link;
        const char* text;
        const char* target;
    } rows[] = {
        {"shortcut", "a/b", nullptr},
        {"a/b/up", "../target", "a/target"},
        {"chain", "shortcut/up", "a/target"},
        {"dangling", "a/not-yet", "a/not-yet"},
    };
    for (const auto& row : rows) {
        ASSERT_EQ(symlink(row.text, qPrintable(path(row.link))), 0);
        if (!row.target)
            continue;
        writeFileAtomically(path(row.link), QByteArray(row.link));
        EXPECT_TRUE(QFileInfo(path(row.link)).isSymLink()) << row.link;
        EXPECT_FALSE(QFileInfo(path(row.target)).isSymLink()) << row.target;
        EXPECT_EQ(contentOf(path(row.target)), row.link);
    }
}

TEST_F(AtomicFileTest, FailuresAreToldAndChangeNothing) {
    make(path("file"));
    ASSERT_TRUE(QDir(m_folder.path()).mkpath(QStringLiteral("folder")));
    ASSERT_EQ(symlink("circle", qPrintable(path("circle"))), 0);
    ASSERT_EQ(mkfifo(qPrintable(path("pipe")), 0600), 0);
    const QStringList before = names();
    const struct {
        QString file;
        const char* sentence;
    } rows[] = {
        {path("missing/file"), "The folder “missing” doesn't exist."},
        {path("file/inside"), "Its path leads through something that isn't a folder."},
        {path("folder"), "There is a folder of this name."},
        {path("circle"), "The link to the file leads in a circle."},
        {path("pipe"), "It isn't an ordinary file."},
        {path(QByteArray(300, 'n').constData()), "The file's name is too long."},
        {QStringLiteral("/dev/full"), "It isn't an ordinary file."},
        {QStringLiteral("/proc/new-file"), "The folder “proc” doesn't exist."},
    };
    for (const auto& row : rows)
        EXPECT_EQ(sentenceOfFailure(row.file).toStdString(), row.sentence);
    EXPECT_EQ(names(), before);
    EXPECT_EQ(contentOf(path("file")), "old");
}

TEST_F(AtomicFileTest, FailuresSayWhatCanBeDone) {
    const struct {
        int errorNumber;
        const char* advice;
    } rows[] = {
        {EACCES, "Choose Save As to store it in another place."},
        {EROFS, "Choose Save As to store it in another place."},
        {ENOSPC, "Free some space and save again, or choose Save As to store it on another disk."},
        {EDQUOT, "Free some space and save again, or choose Save As to store it on another disk."},
        {ENAMETOOLONG, "Choose Save As to give it another name."},
        {EISDIR, "Choose Save As to give it another name."},
        {EBUSY, "Save again in a moment, or choose Save As to store it in another place."},
    };
    for (const auto& row : rows)
        EXPECT_EQ(FileError::forSystemError(row.errorNumber).advice().toStdString(), row.advice) << row.errorNumber;
    EXPECT_EQ(FileError(QStringLiteral("It is so.")).advice(), QString());
}

TEST_F(AtomicFileTest, MissingPermissionIsTold) {
    make(path("read-only"));
    ASSERT_TRUE(QDir(m_folder.path()).mkpath(QStringLiteral("closed")));
    make(path("closed/file"));
    ASSERT_EQ(chmod(qPrintable(path("read-only")), 0444), 0);
    ASSERT_EQ(chmod(qPrintable(path("closed")), 0555), 0);
    QString file, newInClosedFolder;
    RestrictedRuns::withoutPrivileges([&] {
        file = sentenceOfFailure(path("read-only"));
        newInClosedFolder = sentenceOfFailure(path("closed/new"));
    });
    ASSERT_EQ(chmod(qPrintable(path("closed")), 0755), 0);
    EXPECT_EQ(file.toStdString(), "You don't have permission to change this file.");
    EXPECT_EQ(newInClosedFolder.toStdString(), "You don't have permission to write to the folder “closed”.");
    EXPECT_EQ(contentOf(path("read-only")), "old");
}

TEST_F(AtomicFileTest, AFileInAClosedFolderIsWrittenInItsPlace) {
    ASSERT_TRUE(QDir(m_folder.path()).mkpath(QStringLiteral("closed")));
    make(path("closed/file"), "a long old content");
    ASSERT_EQ(chmod(qPrintable(path("closed/file")), 0640), 0);
    ASSERT_EQ(chmod(qPrintable(path("closed")), 0555), 0);
    const std::optional<FileStamp> before = FileStamp::of(path("closed/file"));
    const QDir copies(QString::fromStdString(InPlaceFile::folderForCopies().string()));
    std::optional<FileStamp> stamp;
    QStringList kept;
    RestrictedRuns::withoutPrivileges([&] {
        stamp = writeFileAtomically(path("closed/file"), QByteArray("new"), before);
        EXPECT_EQ(contentOf(path("closed/file")), "new");

        // What can't be written to the end is whole somewhere else.
        struct rlimit limit = {};
        getrlimit(RLIMIT_FSIZE, &limit);
        const auto oldHandler = std::signal(SIGXFSZ, SIG_IGN);
        const struct rlimit small = {1000, limit.rlim_max};
        const auto writeMuch = [&small](QFile& file) {
            file.write(QByteArray(5000, 'x'));
            setrlimit(RLIMIT_FSIZE, &small);
        };
        EXPECT_THROW(writeFileAtomically(path("closed/file"), writeMuch), FileError);
        setrlimit(RLIMIT_FSIZE, &limit);
        std::signal(SIGXFSZ, oldHandler);
        kept = copies.entryList(QDir::Files | QDir::Hidden);
    });
    ASSERT_EQ(chmod(qPrintable(path("closed")), 0755), 0);
    EXPECT_EQ(stamp->inode, before->inode);
    EXPECT_EQ(QFile::permissions(path("closed/file")) & QFile::ReadOther, QFile::Permissions());
    ASSERT_EQ(kept.size(), 1) << "and of what went well no copy is left";
    EXPECT_TRUE(kept.front().endsWith(QStringLiteral("-file")));
    EXPECT_EQ(contentOf(copies.filePath(kept.front())), QByteArray(5000, 'x'));
    QFile::remove(copies.filePath(kept.front()));
}

TEST_F(AtomicFileTest, AFullOrReadOnlyDiskIsTold) {
    const auto report = RestrictedRuns::onSmallDisk(m_folder.path(), [this](const auto& makeReadOnly) {
        writeFileAtomically(path("file"), QByteArray("old"));
        QStringList lines;
        const auto note = [&](const std::function<void()>& write) {
            try {
                write();
                lines.append(QStringLiteral("(no error)"));
            } catch (const FileError& error) {
                lines.append(error.sentence());
            }
        };
        note([&] { writeFileAtomically(path("file"), QByteArray(1'000'000, 'x')); });
        note([&] {
            writeFileAtomically(path("file"), [](QFile& file) {
                for (int i = 0; i < 1000; ++i)
                    file.write(QByteArray(1001, 'x'));
                file.close();
            });
        });
        lines.append(QString::fromUtf8(contentOf(path("file"))));
        makeReadOnly();
        note([&] { writeFileAtomically(path("file"), QByteArray("x")); });
        note([&] { writeFileAtomically(path("other"), QByteArray("x")); });
        return lines + names();
    });
    if (!report)
        GTEST_SKIP() << "a small disk can't be mounted here";
    const QString full = QStringLiteral("There isn't enough space on the disk.");
    const QString readOnly = QStringLiteral("The disk can't be written to.");
    EXPECT_EQ(report->join(u'\n').toStdString(),
              QStringList({full, full, QStringLiteral("old"), readOnly, readOnly, QStringLiteral("file")})
                  .join(u'\n')
                  .toStdString());
}

TEST_F(AtomicFileTest, AFileThatGrowsTooLargeIsTold) {
    make(path("file"));
    struct rlimit before = {};
    ASSERT_EQ(getrlimit(RLIMIT_FSIZE, &before), 0);
    const struct rlimit small = {1000, before.rlim_max};
    const auto oldHandler = std::signal(SIGXFSZ, SIG_IGN);
    ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &small), 0);
    QString sentence;
    try {
        writeFileAtomically(path("file"), QByteArray(5000, 'x')); // the first part of it still fits
    } catch (const FileError& error) {
        sentence = error.sentence();
    }
    setrlimit(RLIMIT_FSIZE, &before);
    std::signal(SIGXFSZ, oldHandler);
    EXPECT_EQ(sentence.toStdString(), "The file is too large for this disk.");
    EXPECT_EQ(contentOf(path("file")), "old");
    EXPECT_EQ(names(), QStringList(QStringLiteral("file")));
}

TEST_F(AtomicFileTest, TheWriterMayWriteInPiecesByNameOrFail) {
    writeFileAtomically(path("file"), [](QFile& file) {
        file.write("one ");
        file.write("two");
        file.seek(0);
        EXPECT_EQ(file.read(3), "one");
    });
    EXPECT_EQ(contentOf(path("file")), "one two");

    writeFileAtomically(path("file"), [this](QFile& file) {
        file.close();
        make(file.fileName(), "by name");
        EXPECT_EQ(QFileInfo(file.fileName()).path(), m_folder.path()) << "the same folder, so the same disk";
    });
    EXPECT_EQ(contentOf(path("file")), "by name");

    EXPECT_THROW(writeFileAtomically(path("file"),
                                     [](QFile& file) {
                                         file.write("half");
                                         throw std::runtime_error("no more");
                                     }),
                 std::runtime_error);
    EXPECT_EQ(contentOf(path("file")), "by name");
    EXPECT_EQ(names(), QStringList(QStringLiteral("file")));
}

TEST_F(AtomicFileTest, WhatAKilledProcessLeftIsRemovedAfterAnHour) {
    const auto makeOld = [this](const char* name, int minutes) {
        make(path(name));
        QFile file(path(name));
        ASSERT_TRUE(file.open(QIODevice::ReadWrite));
        ASSERT_TRUE(file.setFileTime(QDateTime::currentDateTime().addSecs(-60 * qint64(minutes)),
                                     QFileDevice::FileModificationTime));
    };
    constexpr int anHour = 60;
    makeOld(".saving-1", anHour + 1);
    makeOld(".saving-2", anHour - 1);
    makeOld(".saving-18446744073709551615", 10'000);
    makeOld(".saving-3x", 10'000);
    makeOld(".saving-", 10'000);
    makeOld("saving-4", 10'000);
    makeOld("report", 10'000);
    ASSERT_EQ(symlink("report", qPrintable(path(".saving-5"))), 0);
    ASSERT_TRUE(QDir(m_folder.path()).mkdir(QStringLiteral(".saving-6")));
    ASSERT_EQ(mkfifo(qPrintable(path(".saving-7")), 0600), 0);

    // One that is old but still being written.
    writeFileAtomically(path("slow"), [&](QFile& file) {
        ASSERT_TRUE(file.setFileTime(QDateTime::currentDateTime().addDays(-1), QFileDevice::FileModificationTime));
        writeFileAtomically(path("other"), QByteArray("other"));
        EXPECT_TRUE(QFileInfo::exists(file.fileName()));
    });
    EXPECT_EQ(names().join(QLatin1Char(' ')).toStdString(),
              ".saving- .saving-2 .saving-3x .saving-5 .saving-6 .saving-7 other report saving-4 slow");
    EXPECT_EQ(contentOf(path("report")), "old");
}

TEST_F(AtomicFileTest, AReaderNeverFindsAMixture) {
    constexpr int size = 300'000;
    writeFileAtomically(path("file"), QByteArray(size, 'a'));
    QFile openBefore(path("file"));
    ASSERT_TRUE(openBefore.open(QIODevice::ReadOnly));

    std::atomic<bool> stop = false;
    std::atomic<int> mixtures = 0;
    std::thread reader([&] {
        while (!stop) {
            const QByteArray content = contentOf(path("file"));
            if (content.size() != size || content.count(content.front()) != size)
                ++mixtures;
        }
    });
    for (int i = 1; i <= 40; ++i)
        writeFileAtomically(path("file"), QByteArray(size, char('a' + i % 26)));
    stop = true;
    reader.join();
    EXPECT_EQ(mixtures, 0);
    EXPECT_EQ(openBefore.readAll(), QByteArray(size, 'a')) << "who had the old file open keeps it";
}

} // namespace
