#include "APIKeyStore.h"
#include "UserDefaults.h"

#include <QTemporaryDir>
#include <QUrl>

#include <gtest/gtest.h>

class APIKeyStoreTest : public testing::Test {
protected:
    static constexpr auto ollama = APIProviderKind::ollama;
    static constexpr auto groq = APIProviderKind::groq;

    QTemporaryDir m_folder;
    UserDefaults m_defaults{m_folder.filePath(u"settings.ini"_qs)};
};

TEST_F(APIKeyStoreTest, KeepsAPoolForEachServiceInOrder) {
    EXPECT_FALSE(APIKeyStore::load(m_defaults, ollama));
    for (const QString& key : {u"b"_qs, u"a"_qs, u"b"_qs, u" b"_qs})
        APIKeyStore::save(m_defaults, key, ollama);
    APIKeyStore::save(m_defaults, u"g"_qs, groq);

    EXPECT_EQ(m_defaults.stringListForKey(u"quillo.ollamaAPIKeyPool"_qs), QStringList({u"b"_qs, u"a"_qs, u" b"_qs}));
    EXPECT_EQ(m_defaults.stringListForKey(u"quillo.groqAPIKeyPool"_qs), QStringList({u"g"_qs}));
    EXPECT_EQ(APIKeyStore::load(m_defaults, ollama), u"b"_qs);

    APIKeyStore::clear(m_defaults, groq);
    EXPECT_FALSE(m_defaults.contains(u"quillo.groqAPIKeyPool"_qs));
    EXPECT_EQ(APIKeyStore::allKeys(m_defaults, ollama).size(), 3);
}

TEST_F(APIKeyStoreTest, TakesOverTheKeyOfAnOlderVersion) {
    const QString olderKey = u"vellumark.ollamaAPIKey"_qs;
    m_defaults.setString(olderKey, QString());
    EXPECT_TRUE(APIKeyStore::allKeys(m_defaults, ollama).isEmpty());
    m_defaults.setString(olderKey, u"old"_qs);

    EXPECT_TRUE(APIKeyStore::allKeys(m_defaults, groq).isEmpty());
    EXPECT_FALSE(m_defaults.contains(u"quillo.ollamaAPIKeyPool"_qs)) << "nobody has asked for it";
    EXPECT_EQ(APIKeyStore::allKeys(m_defaults, ollama), QStringList({u"old"_qs}));
    EXPECT_EQ(m_defaults.stringListForKey(u"quillo.ollamaAPIKeyPool"_qs), QStringList({u"old"_qs}));
    EXPECT_EQ(m_defaults.stringForKey(olderKey), u"old"_qs);

    m_defaults.setStringList(u"quillo.ollamaAPIKeyPool"_qs, {u"new"_qs});
    EXPECT_EQ(APIKeyStore::allKeys(m_defaults, ollama), QStringList({u"new"_qs}));
    APIKeyStore::clear(m_defaults, ollama);
    EXPECT_TRUE(APIKeyStore::allKeys(m_defaults, ollama).isEmpty()) << "the older key is gone too";
}

TEST_F(APIKeyStoreTest, KeepsTheAddressAsTyped) {
    EXPECT_EQ(QUrl(APIKeyStore::loadURL(m_defaults)).path(), u"/v1/chat/completions"_qs);
    APIKeyStore::saveURL(m_defaults, u" no address "_qs);
    EXPECT_EQ(m_defaults.stringForKey(u"quillo.customAPIURL"_qs), u" no address "_qs);
    EXPECT_EQ(APIKeyStore::loadURL(m_defaults), u" no address "_qs);
}
