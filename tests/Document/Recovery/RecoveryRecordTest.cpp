#include "RecoveryRecord.h"

#include "FileError.h"
#include "RecoveryStore.h"
#include "RestrictedRuns.h"

#include <QDir>
#include <QFileInfo>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTemporaryDir>

#include <gtest/gtest.h>
#include <sys/stat.h>

namespace {

RecoveryDescription description(const QString& name = QStringLiteral("Bericht ü.pdf")) {
    RecoveryDescription result;
    result.displayName = name;
    result.originalPath = QStringLiteral("/home/somebody/Bericht ü.pdf");
    result.originalStamp = FileStamp{0, 0, 1234, 1'790'000'000'123'456'789};
    result.writeTime = QDateTime::fromMSecsSinceEpoch(1'790'000'000'123);
    result.pageCount = 7;
    result.pageIndex = 3;
    return result;
}

class RecoveryRecordTest : public testing::Test {
protected:
    QString folder() const { return m_folder.filePath(QStringLiteral("state/quillo/recovery")); }

    /// The path of the only record in the folder.
    QString recordPath() const {
        const QStringList names = QDir(folder()).entryList(QDir::Dirs | QDir::NoDotAndDotDot);
        return names.size() == 1 ? folder() + u'/' + names.constFirst() : QString();
    }

    /// What is in the folder of the record but the lock and the manifest.
    QStringList parts() const {
        QStringList names = QDir(recordPath()).entryList(QDir::Files | QDir::Hidden);
        names.removeAll(QStringLiteral("lock"));
        names.removeAll(QStringLiteral("document.json"));
        return names;
    }

    static int mode(const QString& path) {
        struct stat status = {};
        return stat(QFile::encodeName(path).constData(), &status) == 0 ? int(status.st_mode & 07777) : -1;
    }

    QTemporaryDir m_folder;
};

TEST_F(RecoveryRecordTest, comesBackAsItWasWritten) {
    const QByteArray base(100'000, 'b');
    auto record = RecoveryRecord::create(folder());
    EXPECT_FALSE(record->manifest());
    record->write(description(), base, "first");
    const QStringList first = parts();
    record->write(description(), base, "second");
    EXPECT_EQ(record->bytes(), base + "second");
    // The base was not written again, and the former update is gone.
    const QStringList second = parts();
    ASSERT_EQ(second.size(), 2);
    EXPECT_EQ(second.constFirst(), first.constFirst());
    EXPECT_NE(second.constLast(), first.constLast());

    EXPECT_EQ(RecoveryRecord::take(recordPath()), nullptr) << "of this very process";
    record.reset();
    record = RecoveryRecord::take(recordPath());
    ASSERT_TRUE(record && record->manifest());
    EXPECT_EQ(record->bytes(), base + "second");
    const RecoveryDescription read = record->manifest()->description;
    const RecoveryDescription written = description();
    EXPECT_EQ(read.displayName, written.displayName);
    EXPECT_EQ(read.originalPath, written.originalPath);
    EXPECT_EQ(read.originalStamp, written.originalStamp);
    EXPECT_EQ(read.writeTime, written.writeTime);
    EXPECT_EQ(read.pageCount, written.pageCount);
    EXPECT_EQ(read.pageIndex, written.pageIndex);

    // One that was taken goes on with names that aren't in use.
    record->write(description(), "anew", {});
    EXPECT_EQ(record->bytes(), "anew");
    EXPECT_EQ(parts().size(), 1);

    record->remove();
    record.reset();
    EXPECT_TRUE(QDir(folder()).isEmpty(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot));
}

TEST_F(RecoveryRecordTest, isForThisUserOnlyAndNoticesThatItWasRemoved) {
    const mode_t former = umask(0);
    const auto record = RecoveryRecord::create(folder());
    record->write(description(), "base", "update");
    EXPECT_TRUE(record->picture().isNull());
    QImage picture(30, 40, QImage::Format_RGB32);
    picture.fill(Qt::green);
    record->setPicture(picture);
    umask(former);
    EXPECT_EQ(record->picture().size(), picture.size());
    EXPECT_EQ(record->picture().pixelColor(5, 5), QColor(Qt::green));
    EXPECT_EQ(mode(folder()), 0700);
    EXPECT_EQ(mode(recordPath()), 0700);
    for (const QFileInfo& file : QDir(recordPath()).entryInfoList(QDir::Files | QDir::Hidden))
        EXPECT_EQ(mode(file.filePath()), 0600) << file.fileName().toStdString();
    record->setPicture(QImage(4000, 10, QImage::Format_RGB32)); // of no sensible size
    EXPECT_TRUE(record->picture().isNull());
    EXPECT_TRUE(record->isInPlace());
    QDir(folder()).removeRecursively();
    EXPECT_FALSE(record->isInPlace());
    EXPECT_THROW(record->write(description(), "base", {}), FileError);
}

TEST_F(RecoveryRecordTest, aFullDiskLeavesTheFormerWrite) {
    const auto report = RestrictedRuns::onSmallDisk(m_folder.path(), [this](const std::function<void()>&) {
        QStringList lines;
        const auto attempt = [&lines](const std::function<void()>& operation) {
            try {
                operation();
                lines.append(QStringLiteral("done"));
            } catch (const FileError& error) {
                lines.append(error.sentence());
            }
        };
        auto record = RecoveryRecord::create(folder());
        const QByteArray base(20'000, 'b');
        attempt([&] { record->write(description(), base, "first"); });
        attempt([&] { record->write(description(), base, QByteArray(60'000, 'u')); });
        attempt([&] { record->write(description(), QByteArray(60'000, 'n'), {}); });
        lines.append(record->bytes() == base + "first" ? QStringLiteral("intact") : QStringLiteral("broken"));
        lines.append(QString::number(parts().size()));
        record.reset();
        record = RecoveryRecord::take(recordPath());
        lines.append(record->bytes() == base + "first" ? QStringLiteral("intact") : QStringLiteral("broken"));
        attempt([&] { record->write(description(), base, "second"); });
        return lines;
    });
    if (!report)
        GTEST_SKIP() << "This system lets nobody mount a disk.";
    EXPECT_EQ(report->join(u'|').toStdString(),
              "done|There isn't enough space on the disk.|There isn't enough space on the disk.|intact|2|intact|done");
}

const QString manifest = QStringLiteral("/document.json");

/// Damage to a record of the parts "base" and "update" that must neither crash nor be taken for a document.
struct Damage {
    const char* name;
    std::function<void(const QString& path)> damage;
    bool isSeenAtOnce = true; ///< false: only when its bytes are asked for
};

void replace(const QString& path, const QByteArray& bytes) {
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
    file.write(bytes);
}

/// Sets a value of the manifest, or of the object `in` in it.
std::function<void(const QString& path)> withValue(const QString& key, const QJsonValue& value,
                                                   const QString& in = {}) {
    return [=](const QString& path) {
        QFile file(path + manifest);
        ASSERT_TRUE(file.open(QIODevice::ReadOnly));
        QJsonObject object = QJsonDocument::fromJson(file.readAll()).object();
        file.close();
        if (in.isEmpty()) {
            object.insert(key, value);
        } else {
            QJsonObject inner = object.value(in).toObject();
            inner.insert(key, value);
            object.insert(in, inner);
        }
        replace(file.fileName(), QJsonDocument(object).toJson());
    };
}

const std::vector<Damage> damages = {
    {"no manifest", [](const QString& path) { QFile::remove(path + manifest); }},
    {"empty manifest", [](const QString& path) { replace(path + manifest, {}); }},
    {"cut manifest", [](const QString& path) { QFile(path + manifest).resize(40); }},
    {"noise", [](const QString& path) { replace(path + manifest, QByteArray(3000, '\xFE')); }},
    {"an array", [](const QString& path) { replace(path + manifest, "[1, 2]"); }},
    {"deep nesting", [](const QString& path) { replace(path + manifest, QByteArray(60'000, '[')); }},
    {"huge manifest", [](const QString& path) { QFile(path + manifest).resize(qint64(1) << 40); }},
    {"manifest is a folder",
     [](const QString& path) {
         QFile::remove(path + manifest);
         QDir(path).mkdir(QStringLiteral("document.json"));
     }},
    {"manifest is a pipe",
     [](const QString& path) {
         QFile::remove(path + manifest);
         mkfifo(QFile::encodeName(path + manifest).constData(), 0600);
     }},
    {"manifest is a link",
     [](const QString& path) {
         QFile::rename(path + manifest, path + QStringLiteral("/../elsewhere.json"));
         QFile::link(path + QStringLiteral("/../elsewhere.json"), path + manifest);
     }},
    {"newer format", withValue(QStringLiteral("version"), 2)},
    {"time before all times", withValue(QStringLiteral("time"), -5)},
    {"time beyond all times", withValue(QStringLiteral("time"), 1e300)},
    {"path that is none", withValue(QStringLiteral("path"), QStringLiteral("../../etc/passwd"))},
    {"endless path", withValue(QStringLiteral("path"), QString(10'000, u'/'))},
    {"base elsewhere",
     withValue(QStringLiteral("file"), QStringLiteral("../../../../etc/passwd"), QStringLiteral("base"))},
    {"base is the lock", withValue(QStringLiteral("file"), QStringLiteral("lock"), QStringLiteral("base"))},
    {"base of negative size", withValue(QStringLiteral("size"), -1, QStringLiteral("base"))},
    {"base of absurd size", withValue(QStringLiteral("size"), 1e18, QStringLiteral("base"))},
    {"base of another size", withValue(QStringLiteral("size"), 5, QStringLiteral("base"))},
    {"base without sum", withValue(QStringLiteral("sha256"), QStringLiteral("abc"), QStringLiteral("base"))},
    {"update is no object", withValue(QStringLiteral("update"), 7)},
    {"update missing", [](const QString& path) { QFile::remove(path + QStringLiteral("/update-2")); }},
    {"base missing", [](const QString& path) { QFile::remove(path + QStringLiteral("/base-1")); }},
    {"base cut", [](const QString& path) { QFile(path + QStringLiteral("/base-1")).resize(2); }},
    {"base grown", [](const QString& path) { QFile(path + QStringLiteral("/base-1")).resize(qint64(1) << 40); }},
    {"base of other bytes", [](const QString& path) { replace(path + QStringLiteral("/base-1"), "BASE"); }, false},
    {"update of other bytes", [](const QString& path) { replace(path + QStringLiteral("/update-2"), "UPDATE"); },
     false},
};

TEST_F(RecoveryRecordTest, damagedOnesArePassedOverAndKeptUnlessNothingWasEverComplete) {
    for (const Damage& each : damages) {
        SCOPED_TRACE(each.name);
        {
            const auto record = RecoveryRecord::create(folder());
            record->write(description(), "base", "update");
        }
        const QString path = recordPath();
        each.damage(path);
        const QDateTime now = QDateTime::currentDateTime();
        {
            const auto lost = RecoveryStore::takeLost(folder(), now);
            ASSERT_EQ(lost.size(), each.isSeenAtOnce ? 0U : 1U);
            for (const auto& record : lost)
                EXPECT_THROW((void)record->bytes(), FileError);
        }
        (void)RecoveryStore::takeLost(folder(), now.addDays(1));
        EXPECT_TRUE(QFileInfo::exists(path)) << "deleted too early";
        (void)RecoveryStore::takeLost(folder(), now.addDays(400));
        EXPECT_EQ(QFileInfo::exists(path), &each != &damages.front());
        QDir(folder()).removeRecursively();
    }
}

TEST_F(RecoveryRecordTest, whatIsOnlyToldIsPutRight) {
    {
        const auto record = RecoveryRecord::create(folder());
        record->write(description(), "base", "update");
    }
    const QString path = recordPath();
    withValue(QStringLiteral("name"), QStringLiteral("a/b\n\u202Ec\u0007 📄") + QString(1000, u'x'))(path);
    withValue(QStringLiteral("pageCount"), -3)(path);
    withValue(QStringLiteral("pageIndex"), 1e30)(path);
    withValue(QStringLiteral("original"), QStringLiteral("?"))(path);
    const auto lost = RecoveryStore::takeLost(folder(), QDateTime::currentDateTime());
    ASSERT_EQ(lost.size(), 1U);
    const RecoveryDescription& told = lost.front()->manifest()->description;
    EXPECT_TRUE(told.displayName.startsWith(QStringLiteral("a b c 📄xxx"))) << told.displayName.toStdString();
    EXPECT_LE(told.displayName.size(), 255);
    EXPECT_EQ(told.pageCount, 0);
    EXPECT_EQ(told.pageIndex, 0);
    EXPECT_FALSE(told.originalStamp);
    EXPECT_EQ(lost.front()->bytes(), "baseupdate");
}

TEST_F(RecoveryRecordTest, leftoversGoAndStrangersStay) {
    ASSERT_TRUE(QDir().mkpath(folder()));
    const QDir records(folder());
    for (const char* name : {".removed-1", ".new-1", "photos", "0123"})
        ASSERT_TRUE(records.mkpath(QLatin1String(name) + QStringLiteral("/inner")));
    replace(records.filePath(QStringLiteral("notes.txt")), "mine");
    const QString target = m_folder.filePath(QStringLiteral("target"));
    ASSERT_TRUE(QDir().mkpath(target));
    ASSERT_TRUE(QFile::link(target, records.filePath(QString(32, u'a'))));

    const QDateTime now = QDateTime::currentDateTime();
    EXPECT_TRUE(RecoveryStore::takeLost(folder(), now).empty());
    EXPECT_FALSE(records.exists(QStringLiteral(".removed-1")));
    EXPECT_TRUE(records.exists(QStringLiteral(".new-1"))) << "somebody may be at it";
    EXPECT_TRUE(RecoveryStore::takeLost(folder(), now.addDays(40)).empty());
    EXPECT_FALSE(records.exists(QStringLiteral(".new-1")));
    for (const char* name : {"photos/inner", "0123/inner", "notes.txt"})
        EXPECT_TRUE(records.exists(QLatin1String(name))) << name;
    EXPECT_TRUE(QDir(target).isEmpty()) << "a link was followed";
}

TEST_F(RecoveryRecordTest, aNewLookFindsTheNewestFirst) {
    for (int minute = 0; minute < 3; ++minute) {
        RecoveryDescription each = description(QString::number(minute));
        each.writeTime = each.writeTime.addSecs(minute == 2 ? 30 : 60 * minute);
        RecoveryRecord::create(folder())->write(each, "base", {});
    }
    QStringList names;
    for (const auto& record : RecoveryStore::takeLost(folder(), QDateTime::currentDateTime()))
        names.append(record->manifest()->description.displayName);
    EXPECT_EQ(names.join(u','), QStringLiteral("1,2,0"));
}

TEST_F(RecoveryRecordTest, theFolderFollowsTheBaseDirectories) {
    const QByteArray former = qgetenv("XDG_STATE_HOME");
    qputenv("XDG_STATE_HOME", "/somewhere");
    EXPECT_EQ(RecoveryStore::standardFolder(), QStringLiteral("/somewhere/quillo/recovery"));
    for (const char* useless : {"", "relative"}) {
        qputenv("XDG_STATE_HOME", useless);
        EXPECT_EQ(RecoveryStore::standardFolder(), QDir::homePath() + QStringLiteral("/.local/state/quillo/recovery"));
    }
    qputenv("XDG_STATE_HOME", former);
}

} // namespace
