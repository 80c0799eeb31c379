#include "UserDefaults.h"

#include <QCoreApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QTest>

#include <limits>
#include <memory>
#include <set>
#include <thread>

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
    const QStringList strings[] = {
        {},
        {QStringLiteral("one")},
        {QStringLiteral("")},
        {QStringLiteral("a,b"), QStringLiteral("\"c\"; d=e"), QStringLiteral("@ByteArray(x)"), QStringLiteral("\\")},
        {QStringLiteral("日本語 ü"), QStringLiteral("two\nlines"), QStringLiteral("true"), QStringLiteral("7")},
    };
    const QByteArray bytes[] = {QByteArray(""), QByteArray("\0\xff\n\"@", 5), QByteArray(3000, '\x80')};
    const QVariantMap map = {
        {QStringLiteral("/home/a b/Ünï [1].pdf"), 12},
        {QStringLiteral("deep"), QVariantMap{{QStringLiteral("list"), QVariantList{1.5, true, QStringLiteral("x")}}}},
    };
    {
        const auto defaults = open();
        for (int i = 0; i < int(std::size(strings)); ++i) {
            defaults->setStringList(QStringLiteral("list%1").arg(i), strings[i]);
            defaults->setString(QStringLiteral("string%1").arg(i), strings[i].value(0));
        }
        for (int i = 0; i < int(std::size(bytes)); ++i)
            defaults->setData(QStringLiteral("data%1").arg(i), bytes[i]);
        defaults->setBool(QStringLiteral("a.bool"), true);
        defaults->setBool(QStringLiteral("A.bool"), false);
        defaults->setInteger(QStringLiteral("least"), std::numeric_limits<int>::min());
        defaults->setInteger(QStringLiteral("greatest"), std::numeric_limits<int>::max());
        defaults->setDictionary(QStringLiteral("map"), map);
        defaults->setDictionary(QStringLiteral("emptyMap"), {});
        defaults->setBool(QStringLiteral("removed"), true);
        defaults->removeObject(QStringLiteral("removed"));
    }
    const auto defaults = open();
    for (int i = 0; i < int(std::size(strings)); ++i) {
        EXPECT_EQ(defaults->stringListForKey(QStringLiteral("list%1").arg(i)), strings[i]) << i;
        EXPECT_EQ(defaults->stringForKey(QStringLiteral("string%1").arg(i)), strings[i].value(0)) << i;
    }
    for (int i = 0; i < int(std::size(bytes)); ++i)
        EXPECT_EQ(defaults->dataForKey(QStringLiteral("data%1").arg(i)), bytes[i]) << i;
    EXPECT_EQ(defaults->boolForKey(QStringLiteral("a.bool")), true);
    EXPECT_EQ(defaults->boolForKey(QStringLiteral("A.bool")), false);
    EXPECT_EQ(defaults->integerForKey(QStringLiteral("least")), std::numeric_limits<int>::min());
    EXPECT_EQ(defaults->integerForKey(QStringLiteral("greatest")), std::numeric_limits<int>::max());
    const QVariantMap read = defaults->dictionaryForKey(QStringLiteral("map")).value();
    EXPECT_EQ(read.value(map.firstKey()), QVariant(qlonglong(12)));
    EXPECT_EQ(read.value(QStringLiteral("deep")), map.value(QStringLiteral("deep")));
    EXPECT_EQ(read.size(), 2);
    EXPECT_EQ(defaults->dictionaryForKey(QStringLiteral("emptyMap")), QVariantMap());
    EXPECT_FALSE(defaults->contains(QStringLiteral("removed")));
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
    const QStringList keys = {QStringLiteral("bool"), QStringLiteral("integer"), QStringLiteral("string"),
                              QStringLiteral("list"), QStringLiteral("data"),    QStringLiteral("map")};
    {
        const auto defaults = open();
        defaults->setBool(keys[0], true);
        defaults->setInteger(keys[1], 1);
        defaults->setString(keys[2], QStringLiteral("true"));
        defaults->setStringList(keys[3], {QStringLiteral("1")});
        defaults->setData(keys[4], QByteArrayLiteral("[1]"));
        defaults->setDictionary(keys[5], {{QStringLiteral("1"), 1}});
    }
    const auto expectOwnTypesOnly = [&keys](const UserDefaults& defaults) {
        for (const QString& key : keys) {
            EXPECT_TRUE(defaults.contains(key));
            EXPECT_EQ(defaults.boolForKey(key).has_value(), key == keys[0]) << key.toStdString();
            EXPECT_EQ(defaults.integerForKey(key).has_value(), key == keys[1]) << key.toStdString();
            EXPECT_EQ(defaults.stringForKey(key).has_value(), key == keys[2]) << key.toStdString();
            EXPECT_EQ(defaults.stringListForKey(key).has_value(), key == keys[3]) << key.toStdString();
            EXPECT_EQ(defaults.dataForKey(key).has_value(), key == keys[4]) << key.toStdString();
            EXPECT_EQ(defaults.dictionaryForKey(key).has_value(), key == keys[5]) << key.toStdString();
        }
    };
    expectOwnTypesOnly(*open());

    writeFile("[General]\nfraction=1.5\nhuge=5000000000\nmixed=\"[\\\"a\\\", 1]\"\nlist=1, 2\nbare=word\nempty=\n");
    const auto defaults = open();
    for (const char* key : {"fraction", "huge", "mixed", "list", "bare", "empty", "absent"}) {
        EXPECT_FALSE(defaults->integerForKey(QLatin1String(key))) << key;
        EXPECT_FALSE(defaults->stringListForKey(QLatin1String(key))) << key;
        EXPECT_FALSE(defaults->stringForKey(QLatin1String(key))) << key;
    }
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

TEST_F(UserDefaultsTest, ChangesAreWrittenTogether) {
    const QString key = QStringLiteral("key");
    const auto defaults = open();
    QElapsedTimer elapsed;
    elapsed.start();
    std::set<std::pair<ino_t, qint64>> writtenFiles;
    for (int i = 0; i < 100; ++i) {
        defaults->setInteger(key, i);
        QTest::qWait(5);
        const struct stat file = status();
        if (file.st_size > 0)
            writtenFiles.emplace(file.st_ino, file.st_mtim.tv_sec * 1'000'000'000LL + file.st_mtim.tv_nsec);
    }
    EXPECT_LE(qint64(writtenFiles.size()), elapsed.elapsed() / 250 + 1);
    ASSERT_TRUE(QTest::qWaitFor([&] { return open()->integerForKey(key) == 99; })) << "nobody asked for this write";

    defaults->setInteger(key, 100);
    EXPECT_EQ(open()->integerForKey(key), 99);
    EXPECT_TRUE(defaults->synchronize());
    EXPECT_EQ(open()->integerForKey(key), 100);
}

TEST_F(UserDefaultsTest, KeysOfOtherProgramsAreKept) {
    const auto first = open();
    const auto second = open();
    first->setInteger(QStringLiteral("first"), 1);
    first->setInteger(QStringLiteral("both"), 1);
    ASSERT_TRUE(first->synchronize());
    second->setInteger(QStringLiteral("both"), 2);
    second->setInteger(QStringLiteral("second"), 2);
    ASSERT_TRUE(second->synchronize());
    first->removeObject(QStringLiteral("first"));
    ASSERT_TRUE(first->synchronize());
    const auto all = open();
    EXPECT_FALSE(all->contains(QStringLiteral("first")));
    EXPECT_EQ(all->integerForKey(QStringLiteral("both")), 2);
    EXPECT_EQ(all->integerForKey(QStringLiteral("second")), 2);
}

TEST_F(UserDefaultsTest, AFileThatCannotBeWrittenLosesNothing) {
    QFile obstacle(m_folder.filePath(QStringLiteral("config")));
    ASSERT_TRUE(obstacle.open(QIODevice::WriteOnly));
    const auto defaults = open();
    defaults->setInteger(QStringLiteral("key"), 5);
    EXPECT_FALSE(defaults->synchronize());
    EXPECT_EQ(defaults->integerForKey(QStringLiteral("key")), 5);
    ASSERT_TRUE(obstacle.remove());
    EXPECT_TRUE(defaults->synchronize());
    EXPECT_EQ(open()->integerForKey(QStringLiteral("key")), 5);
}

TEST_F(UserDefaultsTest, ChangesAreSignalled) {
    const auto defaults = open();
    QStringList keys;
    QObject::connect(defaults.get(), &UserDefaults::changed, [&](const QString& key) { keys.append(key); });
    defaults->setString(QStringLiteral("a"), QStringLiteral("x"));
    defaults->setString(QStringLiteral("a"), QStringLiteral("x"));
    defaults->setBool(QStringLiteral("b"), false);
    defaults->removeObject(QStringLiteral("a"));
    defaults->removeObject(QStringLiteral("a"));
    EXPECT_EQ(keys, QStringList({QStringLiteral("a"), QStringLiteral("b"), QStringLiteral("a")}));
}

TEST_F(UserDefaultsTest, OtherThreadsMayReadAndSet) {
    const auto defaults = open();
    const auto work = [&defaults](int number) {
        const QString key = QString::number(number);
        for (int i = 0; i <= 500; ++i) {
            defaults->setInteger(key, i);
            EXPECT_EQ(defaults->integerForKey(key), i);
        }
    };
    std::thread first(work, 1);
    std::thread second(work, 2);
    work(3);
    first.join();
    second.join();
    ASSERT_TRUE(QTest::qWaitFor([&] { return open()->integerForKey(QStringLiteral("1")) == 500; }));
    EXPECT_EQ(open()->integerForKey(QStringLiteral("2")), 500);
}

TEST(UserDefaultsPathTest, IsInTheConfigurationFolder) {
    const QString path = UserDefaults::standardFilePath(QStringLiteral("Group"), QStringLiteral("App"));
    EXPECT_TRUE(path.endsWith(QStringLiteral("/Group/App.ini"))) << path.toStdString();
    EXPECT_TRUE(path.startsWith(QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation)));
}

} // namespace
