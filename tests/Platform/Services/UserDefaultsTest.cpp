#include "UserDefaults.h"

#include "FolderTest.h"

#include <QStandardPaths>
#include <QTest>

#include <filesystem>
#include <limits>
#include <memory>

#include <sys/stat.h>

namespace {

class UserDefaultsTest : public FolderTest {
protected:
    static constexpr const char* file = "config/Group/App.ini";

    std::unique_ptr<UserDefaults> open() const { return std::make_unique<UserDefaults>(path(file)); }

    void writeFile(const QByteArray& bytes) const {
        makeFolder("config/Group");
        makeFile(file, bytes);
    }
};

TEST_F(UserDefaultsTest, ValuesComeBackFromTheFile) {
    const QStringList strings{QString(), QStringLiteral("a,b"), QStringLiteral("@ByteArray(\"c\"); d=e\\"),
                              QStringLiteral("日本語 ü\ntwo lines"), QStringLiteral("true")};
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
            defaults->setInteger(QStringLiteral("least"), std::numeric_limits<int>::min());
            defaults->setDictionary(QStringLiteral("map"), map);
        }
        for (qsizetype i = 0; i < strings.size(); ++i) {
            EXPECT_EQ(defaults->stringListForKey(key("list", i)), strings.mid(0, i)) << i;
            EXPECT_EQ(defaults->stringForKey(key("string", i)), strings[i]) << i;
            EXPECT_EQ(defaults->dataForKey(key("data", i % 3)), bytes[i % 3]) << i;
        }
        EXPECT_EQ(defaults->boolForKey(QStringLiteral("a.bool")), true);
        EXPECT_EQ(defaults->integerForKey(QStringLiteral("least")), std::numeric_limits<int>::min());
        const QVariantMap read = defaults->dictionaryForKey(QStringLiteral("map")).value();
        EXPECT_EQ(read.value(map.firstKey()).toInt(), 12);
        EXPECT_EQ(read.value(QStringLiteral("deep")), map.value(QStringLiteral("deep")));
    }
}

TEST_F(UserDefaultsTest, WhatCanWaitIsWrittenWithTheNextChangeWhenNoneComesOrAtTheEnd) {
    const auto remember = [](UserDefaults& defaults, int page) {
        defaults.setDictionary(QStringLiteral("pages"), {{QStringLiteral("/a.pdf"), page}},
                               UserDefaults::Urgency::canWait);
    };
    const auto written = [this](int page) { return contentOf(file).contains(':' + QByteArray::number(page) + '}'); };
    const auto usualTime = std::exchange(UserDefaults::idleTime, std::chrono::milliseconds(1));
    auto defaults = open();
    remember(*defaults, 11);
    EXPECT_TRUE(QTest::qWaitFor([&] { return written(11); }, 30'000));
    UserDefaults::idleTime = std::chrono::hours(1);
    defaults = open();
    UserDefaults::idleTime = usualTime;
    remember(*defaults, 12);
    defaults->setBool(QStringLiteral("another"), true);
    EXPECT_TRUE(QTest::qWaitFor([&] { return written(12); }, 30'000));
    remember(*defaults, 13);
    EXPECT_FALSE(written(13));
    defaults.reset();
    EXPECT_TRUE(written(13));
}

TEST_F(UserDefaultsTest, AValueOfAnotherTypeIsMissing) {
    const auto defaults = open();
    defaults->setBool(QStringLiteral("bool"), true);
    defaults->setInteger(QStringLiteral("integer"), 1);
    defaults->setString(QStringLiteral("string"), QStringLiteral("true"));
    defaults->setStringList(QStringLiteral("list"), {QStringLiteral("1")});
    defaults->setData(QStringLiteral("data"), QByteArrayLiteral("[1]"));
    defaults->setDictionary(QStringLiteral("map"), {{QStringLiteral("1"), 1}});
    ASSERT_TRUE(defaults->synchronize());
    const auto types = [this](const char* name) {
        const auto read = open();
        const QLatin1String key(name);
        return std::string(read->boolForKey(key) ? "bool" : "") + (read->integerForKey(key) ? "integer" : "") +
               (read->stringForKey(key) ? "string" : "") + (read->stringListForKey(key) ? "list" : "") +
               (read->dataForKey(key) ? "data" : "") + (read->dictionaryForKey(key) ? "map" : "");
    };
    for (const char* key : {"bool", "integer", "string", "list", "data", "map"})
        EXPECT_EQ(types(key), key);
    writeFile("[General]\nfraction=1.5\nhuge=5000000000\nmixed=\"[\\\"a\\\", 1]\"\nlist=1, 2\nbare=word\nempty=\n");
    for (const char* key : {"fraction", "huge", "mixed", "list", "bare", "empty", "absent"})
        for (const char* type : {"integer", "list", "string"})
            EXPECT_EQ(types(key).find(type), std::string::npos) << key;
}

TEST_F(UserDefaultsTest, WhatOtherProgramsWriteIsKeptAndAFileThatCannotBeWrittenLosesNothing) {
    const auto first = open();
    const auto second = open();
    makeFile("config");
    first->setInteger(QStringLiteral("first"), 1);
    first->setInteger(QStringLiteral("both"), 1);
    EXPECT_FALSE(first->synchronize());
    ASSERT_TRUE(QFile::remove(path("config")));
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
    const auto permissions = [this] { return std::filesystem::status(path(file).toStdString()).permissions(); };
    const mode_t oldMask = umask(0);
    for (const char* value : {"secret", "other"}) {
        open()->setString(QStringLiteral("key"), QLatin1String(value));
        EXPECT_EQ(permissions(), std::filesystem::perms(0600)) << value;
        ASSERT_TRUE(QFile::setPermissions(path(file), QFile::ReadOwner | QFile::WriteOwner | QFile::ReadGroup));
    }
    umask(oldMask);
}

TEST_F(UserDefaultsTest, ADamagedFileCountsAsEmptyAndIsReplaced) {
    for (const QByteArray& bytes :
         {QByteArray("\x00\x01\x02 no settings \xff\xfe", 18),
          QByteArray("[General]\nkey=\"7\"\nand then a line of something else\n"), QByteArray(100000, '[')}) {
        writeFile(bytes);
        auto defaults = open();
        EXPECT_FALSE(defaults->contains(QStringLiteral("key")));
        EXPECT_EQ(contentOf(file), bytes) << "reading changes nothing";
        defaults->setInteger(QStringLiteral("key"), 8);
        defaults.reset();
        EXPECT_EQ(open()->integerForKey(QStringLiteral("key")), 8);
        EXPECT_FALSE(contentOf(file).contains("line of something")) << "all else is new";
        EXPECT_EQ(contentOf("config/Group/App.ini.damaged"), bytes) << "what was there is not thrown away";
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
    EXPECT_EQ(contentOf(file), "(missing)") << "not at once";
    ASSERT_TRUE(QTest::qWaitFor([&] { return open()->integerForKey(key) == 1; })) << "nobody asked for this write";
    for (int i = 0; i < 2; ++i)
        defaults->removeObject(key);
    EXPECT_EQ(open()->integerForKey(key), 1);
    EXPECT_TRUE(defaults->synchronize());
    EXPECT_FALSE(open()->contains(key));
    EXPECT_EQ(changed.size(), 3);
}

} // namespace
