#include "UserDefaults.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QTest>

#include <limits>
#include <memory>

#include <gtest/gtest.h>
#include <sys/stat.h>

namespace {

class UserDefaultsTest : public testing::Test {
protected:
    std::unique_ptr<UserDefaults> open() const { return std::make_unique<UserDefaults>(m_path); }

    void writeFile(const QByteArray& bytes) const {
        ASSERT_TRUE(QDir().mkpath(QFileInfo(m_path).path()));
        QFile file(m_path);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size());
    }

    QByteArray fileContent() const {
        QFile file(m_path);
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }

    struct stat status() const {
        struct stat status = {};
        stat(QFile::encodeName(m_path).constData(), &status);
        return status;
    }

    const QTemporaryDir m_folder;
    const QString m_path = m_folder.filePath(QStringLiteral("config/Group/App.ini"));
};

TEST_F(UserDefaultsTest, ValuesComeBackFromTheFile) {
    const QStringList strings{QString(),
                              QStringLiteral("a,b"),
                              QStringLiteral("\"c\"; d=e"),
                              QStringLiteral("@ByteArray(x)"),
                              QStringLiteral("\\"),
                              QStringLiteral("日本語 ü\ntwo lines"),
                              QStringLiteral("true")};
    const QByteArray bytes[] = {QByteArray(""), QByteArray("\0\xff\n\"@", 5), QByteArray(3000, '\x80')};
    const QVariantMap map = {
        {QStringLiteral("/home/a b/Ünï [1].pdf"), 12},
        {QStringLiteral("deep"), QVariantMap{{QStringLiteral("list"), QVariantList{1.5, true, QStringLiteral("x")}}}},
    };
    const auto key = [](const char* kind, qsizetype number) { return QLatin1String(kind) + QString::number(number); };
    for (const bool writes : {true, false}) {
        const auto defaults = open();
        if (writes) {
            for (qsizetype i = 0; i < strings.size(); ++i) {
                defaults->setStringList(key("list", i), strings.mid(0, i));
                defaults->setString(key("string", i), strings[i]);
                defaults->setData(key("data", i % 3), bytes[i % 3]);
            }
            defaults->setBool(QStringLiteral("a.bool"), true);
            defaults->setBool(QStringLiteral("A.bool"), false);
            defaults->setInteger(QStringLiteral("least"), std::numeric_limits<int>::min());
            defaults->setDictionary(QStringLiteral("map"), map);
            defaults->setDictionary(QStringLiteral("emptyMap"), {});
            defaults->setBool(QStringLiteral("removed"), true);
            defaults->removeObject(QStringLiteral("removed"));
        }
        for (qsizetype i = 0; i < strings.size(); ++i) {
            EXPECT_EQ(defaults->stringListForKey(key("list", i)), strings.mid(0, i)) << i;
            EXPECT_EQ(defaults->stringForKey(key("string", i)), strings[i]) << i;
            EXPECT_EQ(defaults->dataForKey(key("data", i % 3)), bytes[i % 3]) << i;
        }
        EXPECT_EQ(defaults->boolForKey(QStringLiteral("a.bool")), true);
        EXPECT_EQ(defaults->boolForKey(QStringLiteral("A.bool")), false);
        EXPECT_EQ(defaults->integerForKey(QStringLiteral("least")), std::numeric_limits<int>::min());
        const QVariantMap read = defaults->dictionaryForKey(QStringLiteral("map")).value();
        EXPECT_EQ(read.value(map.firstKey()).toInt(), 12);
        EXPECT_EQ(read.value(QStringLiteral("deep")), map.value(QStringLiteral("deep")));
        EXPECT_EQ(defaults->dictionaryForKey(QStringLiteral("emptyMap")), QVariantMap());
        EXPECT_FALSE(defaults->contains(QStringLiteral("removed")));
    }
}

TEST_F(UserDefaultsTest, WhatCanWaitIsWrittenWithTheNextChangeWhenNoneComesOrAtTheEnd) {
    const auto remember = [](UserDefaults& defaults, int page) {
        defaults.setDictionary(QStringLiteral("pages"), {{QStringLiteral("/a.pdf"), page}},
                               UserDefaults::Urgency::canWait);
    };
    const auto written = [this](int page) { return fileContent().contains(':' + QByteArray::number(page) + '}'); };
    {
        const auto defaults = open();
        remember(*defaults, 11);
        EXPECT_TRUE(QTest::qWaitFor([&] { return written(11); }, 30'000));
        remember(*defaults, 12);
        defaults->setBool(QStringLiteral("another"), true);
        EXPECT_TRUE(QTest::qWaitFor([&] { return written(12); }, 30'000));
        remember(*defaults, 13);
        EXPECT_FALSE(written(13));
    }
    EXPECT_TRUE(written(13));
}

TEST_F(UserDefaultsTest, AValueOfAnotherTypeIsMissing) {
    {
        const auto defaults = open();
        defaults->setBool(QStringLiteral("bool"), true);
        defaults->setInteger(QStringLiteral("integer"), 1);
        defaults->setString(QStringLiteral("string"), QStringLiteral("true"));
        defaults->setStringList(QStringLiteral("list"), {QStringLiteral("1")});
        defaults->setData(QStringLiteral("data"), QByteArrayLiteral("[1]"));
        defaults->setDictionary(QStringLiteral("map"), {{QStringLiteral("1"), 1}});
    }
    const auto types = [](const UserDefaults& defaults, const QString& key) {
        return QStringList{defaults.boolForKey(key) ? QStringLiteral("bool") : QString(),
                           defaults.integerForKey(key) ? QStringLiteral("integer") : QString(),
                           defaults.stringForKey(key) ? QStringLiteral("string") : QString(),
                           defaults.stringListForKey(key) ? QStringLiteral("list") : QString(),
                           defaults.dataForKey(key) ? QStringLiteral("data") : QString(),
                           defaults.dictionaryForKey(key) ? QStringLiteral("map") : QString()}
            .join(QString());
    };
    for (const char* key : {"bool", "integer", "string", "list", "data", "map"})
        EXPECT_EQ(types(*open(), QLatin1String(key)).toStdString(), key);
    writeFile("[General]\nfraction=1.5\nhuge=5000000000\nmixed=\"[\\\"a\\\", 1]\"\nlist=1, 2\nbare=word\nempty=\n");
    for (const char* key : {"fraction", "huge", "mixed", "list", "bare", "empty", "absent"}) {
        const QString found = types(*open(), QLatin1String(key));
        EXPECT_FALSE(found.contains(QStringLiteral("integer")) || found.contains(QStringLiteral("list")) ||
                     found.contains(QStringLiteral("string")))
            << key << ' ' << found.toStdString();
    }
}

TEST_F(UserDefaultsTest, WhatOtherProgramsWriteIsKeptAndAFileThatCannotBeWrittenLosesNothing) {
    const auto first = open();
    const auto second = open();
    QFile obstacle(m_folder.filePath(QStringLiteral("config")));
    ASSERT_TRUE(obstacle.open(QIODevice::WriteOnly));
    first->setInteger(QStringLiteral("first"), 1);
    first->setInteger(QStringLiteral("both"), 1);
    EXPECT_FALSE(first->synchronize());
    EXPECT_EQ(first->integerForKey(QStringLiteral("first")), 1);
    ASSERT_TRUE(obstacle.remove());
    ASSERT_TRUE(first->synchronize());
    second->setInteger(QStringLiteral("both"), 2);
    ASSERT_TRUE(second->synchronize());
    EXPECT_EQ(open()->integerForKey(QStringLiteral("first")), 1);
    first->removeObject(QStringLiteral("first"));
    ASSERT_TRUE(first->synchronize());
    EXPECT_FALSE(open()->contains(QStringLiteral("first")));
    EXPECT_EQ(open()->integerForKey(QStringLiteral("both")), 2);
    EXPECT_EQ(UserDefaults::standardFilePath(QStringLiteral("Group"), QStringLiteral("App")),
              QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation) +
                  QStringLiteral("/Group/App.ini"));
}

TEST_F(UserDefaultsTest, OnlyTheUserCanReadTheFile) {
    const mode_t oldMask = umask(0);
    open()->setString(QStringLiteral("key"), QStringLiteral("secret"));
    umask(oldMask);
    EXPECT_EQ(status().st_mode & 0777, 0600u);

    ASSERT_TRUE(QFile::setPermissions(m_path, QFile::ReadOwner | QFile::WriteOwner | QFile::ReadGroup));
    open()->setString(QStringLiteral("key"), QStringLiteral("other"));
    EXPECT_EQ(status().st_mode & 0777, 0600u);
}

TEST_F(UserDefaultsTest, ADamagedFileCountsAsEmptyAndIsReplaced) {
    const QByteArray damaged[] = {
        QByteArray("\x00\x01\x02 no settings \xff\xfe", 18),
        QByteArray("[General]\nkey=\"7\"\nand then a line of something else\n"),
        QByteArray(100000, '['),
    };
    for (const QByteArray& bytes : damaged) {
        writeFile(bytes);
        {
            const auto defaults = open();
            EXPECT_FALSE(defaults->contains(QStringLiteral("key")));
            EXPECT_EQ(fileContent(), bytes) << "reading changes nothing";
            defaults->setInteger(QStringLiteral("key"), 8);
        }
        EXPECT_EQ(open()->integerForKey(QStringLiteral("key")), 8);
        EXPECT_FALSE(fileContent().contains("line of something")) << "all else is new";
        ASSERT_TRUE(QFile::remove(m_path));
        ASSERT_TRUE(QFile::rename(m_path + QStringLiteral(".damaged"), m_path)) << "what was there is not thrown away";
        EXPECT_EQ(fileContent(), bytes);
    }
}

TEST_F(UserDefaultsTest, ChangesAreWrittenTogetherAndSignalled) {
    const QString key = QStringLiteral("key");
    const auto defaults = open();
    QStringList changed;
    QObject::connect(defaults.get(), &UserDefaults::changed, [&](const QString& each) { changed.append(each); });
    for (int i = 0; i < 100; ++i)
        defaults->setInteger(key, i / 50);
    EXPECT_EQ(changed, QStringList({key, key})) << "only what is a change";
    EXPECT_EQ(fileContent(), "") << "not at once";
    ASSERT_TRUE(QTest::qWaitFor([&] { return open()->integerForKey(key) == 1; })) << "nobody asked for this write";
    defaults->setInteger(key, 100);
    EXPECT_EQ(open()->integerForKey(key), 1);
    EXPECT_TRUE(defaults->synchronize());
    EXPECT_EQ(open()->integerForKey(key), 100);
    defaults->removeObject(key);
    defaults->removeObject(key);
    EXPECT_EQ(changed.size(), 4);
}

} // namespace
