#include "RecoveryRecord.h"

#include "FileError.h"
#include "FolderTest.h"
#include "RecoveryStore.h"
#include "RestrictedRuns.h"

#include <QJsonDocument>
#include <QJsonObject>

#include <filesystem>
#include <sys/stat.h>
#include <tuple>

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

class RecoveryRecordTest : public FolderTest {
protected:
    static constexpr const char* records = "quillo/recovery";
    QString folder() const { return path(records); }

    /// The path of the only record in the folder.
    QString recordPath() const { return folder() + u'/' + QString::fromStdString(names(records)); }

    /// The path of the record of the parts "base" and "update" that somebody has left.
    QString leaveRecord() const {
        RecoveryRecord::create(folder())->write(description(), "base", "update");
        return recordPath();
    }

    std::string parts() const {
        return names(qPrintable(QLatin1String(records) + u'/' + QString::fromStdString(names(records))));
    }

    [[nodiscard]] auto takeLost(int daysLater = 0) const {
        return RecoveryStore::takeLost(folder(), QDateTime::currentDateTime().addDays(daysLater));
    }

    static auto permissions(const QString& path) { return std::filesystem::status(path.toStdString()).permissions(); }
};

TEST_F(RecoveryRecordTest, comesBackAsItWasWritten) {
    const QByteArray base(100'000, 'b');
    auto record = RecoveryRecord::create(folder());
    EXPECT_FALSE(record->manifest());
    record->write(description(), base, "first");
    EXPECT_EQ(parts(), "base-1 document.json lock update-2");
    record->write(description(), base, "second");
    EXPECT_EQ(record->bytes(), base + "second");
    EXPECT_EQ(parts(), "base-1 document.json lock update-3") << "the base was not written again";

    EXPECT_EQ(RecoveryRecord::take(recordPath()), nullptr) << "of this very process";
    record.reset();
    record = RecoveryRecord::take(recordPath());
    ASSERT_TRUE(record && record->manifest());
    EXPECT_EQ(record->bytes(), base + "second");
    const RecoveryDescription read = record->manifest()->description;
    EXPECT_EQ(read.originalPath + read.displayName, description().originalPath + description().displayName);
    EXPECT_EQ(read.originalStamp, description().originalStamp);
    EXPECT_EQ(read.writeTime, description().writeTime);
    EXPECT_TRUE(read.pageCount == 7 && read.pageIndex == 3);

    // One that was taken goes on with names that aren't in use.
    record->write(description(), "anew", {});
    EXPECT_EQ(record->bytes(), "anew");
    EXPECT_EQ(parts(), "base-4 document.json lock");

    record->remove();
    record.reset();
    EXPECT_EQ(names(records), "");
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
    using std::filesystem::perms;
    EXPECT_EQ(permissions(folder()), perms::owner_all);
    EXPECT_EQ(permissions(recordPath()), perms::owner_all);
    for (const QFileInfo& file : QDir(recordPath()).entryInfoList(QDir::Files | QDir::Hidden))
        EXPECT_EQ(permissions(file.filePath()), perms::owner_read | perms::owner_write) << qPrintable(file.fileName());
    record->setPicture(QImage(4000, 10, QImage::Format_RGB32)); // of no sensible size
    EXPECT_TRUE(record->picture().isNull());
    EXPECT_TRUE(record->isInPlace());
    QDir(folder()).removeRecursively();
    EXPECT_FALSE(record->isInPlace());
    EXPECT_THROW(record->write(description(), "base", {}), FileError);
}

TEST_F(RecoveryRecordTest, aFullDiskLeavesTheFormerWrite) {
    const auto report = RestrictedRuns::onSmallDisk(m_folder.path(), [this](const std::function<void()>&) {
        const auto attempt = [](const std::function<void()>& operation) {
            try {
                operation();
                return QStringLiteral("done");
            } catch (const FileError& error) {
                return error.sentence();
            }
        };
        const QByteArray base(20'000, 'b');
        auto record = RecoveryRecord::create(folder());
        const auto state = [&] { return record->bytes() == base + "first" ? parts() : "broken"; };
        QStringList lines{attempt([&] { record->write(description(), base, "first"); }),
                          attempt([&] { record->write(description(), base, QByteArray(60'000, 'u')); }),
                          attempt([&] { record->write(description(), QByteArray(60'000, 'n'), {}); }),
                          QString::fromStdString(state())};
        record.reset();
        record = RecoveryRecord::take(recordPath());
        lines << QString::fromStdString(state()) << attempt([&] { record->write(description(), base, "second"); });
        return lines;
    });
    if (!report)
        GTEST_SKIP() << "This system lets nobody mount a disk.";
    EXPECT_EQ(report->join(u'|').toStdString(),
              "done|There isn't enough space on the disk.|There isn't enough space on the disk.|"
              "base-1 document.json lock update-2|base-1 document.json lock update-2|done");
}

/// Does something to the record at the path.
using Damage = std::function<void(const QString& path)>;

Damage removed(const char* part) {
    return [=](const QString& path) { QFile::remove(path + QLatin1String(part)); };
}

Damage resized(const char* part, qint64 size) {
    return [=](const QString& path) { QFile::resize(path + QLatin1String(part), size); };
}

Damage replaced(const char* part, const QByteArray& bytes) {
    return [=](const QString& path) {
        QFile file(path + QLatin1String(part));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly | QIODevice::Truncate) && file.write(bytes) == bytes.size());
    };
}

constexpr const char* manifest = "/document.json";

/// Sets a value of the manifest, or of the object `in` in it.
Damage withValue(const char* key, const QJsonValue& value, const char* in = nullptr) {
    return [=](const QString& path) {
        QFile file(path + QLatin1String(manifest));
        ASSERT_TRUE(file.open(QIODevice::ReadOnly));
        QJsonObject object = QJsonDocument::fromJson(file.readAll()).object();
        QJsonObject inner = in ? object.value(QLatin1String(in)).toObject() : object;
        inner.insert(QLatin1String(key), value);
        if (in)
            object.insert(QLatin1String(in), inner);
        replaced(manifest, QJsonDocument(in ? object : inner).toJson())(path);
    };
}

/// What must neither crash nor be taken for a document.
const struct {
    const char* name;
    Damage damage;
    bool isSeenAtOnce = true; ///< false: only when its bytes are asked for
} damages[] = {
    {"no manifest", removed(manifest)},
    {"empty manifest", replaced(manifest, {})},
    {"noise", replaced(manifest, QByteArray(3000, '\xFE'))},
    {"deep nesting", replaced(manifest, QByteArray(60'000, '['))},
    {"huge manifest", resized(manifest, qint64(1) << 40)},
    {"manifest is a folder",
     [](const QString& path) {
         removed(manifest)(path);
         QDir(path).mkdir(QStringLiteral("document.json"));
     }},
    {"manifest is a pipe",
     [](const QString& path) {
         removed(manifest)(path);
         mkfifo(qPrintable(path + QLatin1String(manifest)), 0600);
     }},
    {"manifest is a link",
     [](const QString& path) {
         const QString elsewhere = path + QStringLiteral("/../elsewhere.json");
         QFile::rename(path + QLatin1String(manifest), elsewhere);
         QFile::link(elsewhere, path + QLatin1String(manifest));
     }},
    {"newer format", withValue("version", 2)},
    {"time before all times", withValue("time", -5)},
    {"time beyond all times", withValue("time", 1e300)},
    {"path that is none", withValue("path", QStringLiteral("../../etc/passwd"))},
    {"base elsewhere", withValue("file", QStringLiteral("../../../../etc/passwd"), "base")},
    {"base is the lock", withValue("file", QStringLiteral("lock"), "base")},
    {"base of absurd size", withValue("size", 1e18, "base")},
    {"base of another size", withValue("size", 5, "base")},
    {"base without sum", withValue("sha256", QStringLiteral("abc"), "base")},
    {"update is no object", withValue("update", 7)},
    {"update missing", removed("/update-2")},
    {"base missing", removed("/base-1")},
    {"base cut", resized("/base-1", 2)},
    {"base grown", resized("/base-1", qint64(1) << 40)},
    {"base of other bytes", replaced("/base-1", "BASE"), false},
    {"update of other bytes", replaced("/update-2", "UPDATE"), false},
};

TEST_F(RecoveryRecordTest, damagedOnesArePassedOverAndKeptUnlessNothingWasEverComplete) {
    for (const auto& each : damages) {
        SCOPED_TRACE(each.name);
        const QString path = leaveRecord();
        each.damage(path);
        {
            const auto lost = takeLost();
            ASSERT_EQ(lost.size(), each.isSeenAtOnce ? 0U : 1U);
            for (const auto& record : lost)
                EXPECT_THROW((void)record->bytes(), FileError);
        }
        (void)takeLost(1);
        EXPECT_TRUE(QFileInfo::exists(path)) << "deleted too early";
        (void)takeLost(400);
        EXPECT_EQ(QFileInfo::exists(path), &each != &damages[0]);
        QDir(folder()).removeRecursively();
    }
}

TEST_F(RecoveryRecordTest, whatIsOnlyToldIsPutRight) {
    const QString path = leaveRecord();
    withValue("name", QStringLiteral("a/b\n\u202Ec\u0007 📄") + QString(1000, u'x'))(path);
    withValue("pageCount", -3)(path);
    withValue("pageIndex", 1e30)(path);
    withValue("original", QStringLiteral("?"))(path);
    const auto lost = takeLost();
    ASSERT_EQ(lost.size(), 1U);
    const RecoveryDescription& told = lost.front()->manifest()->description;
    EXPECT_TRUE(told.displayName.startsWith(QStringLiteral("a b c 📄xxx"))) << told.displayName.toStdString();
    EXPECT_LE(told.displayName.size(), 255);
    EXPECT_EQ(told.pageCount, 0);
    EXPECT_EQ(told.pageIndex, 0);
    EXPECT_FALSE(told.originalStamp);
    EXPECT_EQ(lost.front()->bytes(), "baseupdate");
}

TEST_F(RecoveryRecordTest, aLookRemovesLeftoversLeavesStrangersAndFindsTheNewestFirst) {
    for (const char* name : {".removed-1", ".new-1", "photos", "0123"})
        makeFolder(qPrintable(QStringLiteral("quillo/recovery/%1/inner").arg(QLatin1String(name))));
    makeFile("quillo/recovery/notes.txt");
    makeFolder("target");
    ASSERT_TRUE(QFile::link(path("target"), folder() + u'/' + QString(32, u'a')));
    EXPECT_TRUE(takeLost().empty());
    const std::string strangers = "0123 " + std::string(32, 'a') + " notes.txt photos";
    EXPECT_EQ(names(records), ".new-1 " + strangers) << "somebody may be at a new one";
    EXPECT_TRUE(takeLost(40).empty());
    EXPECT_EQ(names(records), strangers);
    EXPECT_EQ(names("quillo/recovery/photos") + names("quillo/recovery/0123"), "innerinner");
    EXPECT_EQ(names("target"), "") << "a link was followed";

    for (const int seconds : {0, 60, 30}) {
        RecoveryDescription each = description(QString::number(seconds));
        each.writeTime = each.writeTime.addSecs(seconds);
        RecoveryRecord::create(folder())->write(each, "base", {});
    }
    QStringList found;
    for (const auto& record : takeLost())
        found.append(record->manifest()->description.displayName);
    EXPECT_EQ(found.join(u','), QStringLiteral("60,30,0"));
}

TEST_F(RecoveryRecordTest, theFolderFollowsTheBaseDirectories) {
    const QByteArray former = qgetenv("XDG_STATE_HOME");
    qputenv("XDG_STATE_HOME", "/somewhere");
    EXPECT_EQ(RecoveryStore::standardFolder(), QStringLiteral("/somewhere/quillo/recovery"));
    qputenv("XDG_STATE_HOME", "relative");
    EXPECT_EQ(RecoveryStore::standardFolder(), QDir::homePath() + QStringLiteral("/.local/state/quillo/recovery"));
    qputenv("XDG_STATE_HOME", former);
}

} // namespace
