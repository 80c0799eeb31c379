#include "APIKeyStore.h"
#include "UserDefaults.h"

#include <QTemporaryDir>

#include <gtest/gtest.h>

class APIKeyStoreTest : public testing::Test {
protected:
    static constexpr auto ollama = APIProviderKind::ollama;
    static constexpr auto groq = APIProviderKind::groq;

    QTemporaryDir m_folder;
    UserDefaults m_defaults{m_folder.filePath(QStringLiteral("settings.ini"))};
};

TEST_F(APIKeyStoreTest, KeepsAPoolForEachServiceInOrder) {
    EXPECT_FALSE(APIKeyStore::load(m_defaults, ollama));
    for (const QString& key : {QStringLiteral("b"), QStringLiteral("a"), QStringLiteral("b")})
        APIKeyStore::save(m_defaults, key, ollama);
    APIKeyStore::save(m_defaults, QStringLiteral("g"), groq);

    EXPECT_EQ(m_defaults.stringListForKey(QStringLiteral("quillo.ollamaAPIKeyPool")),
              QStringList({QStringLiteral("b"), QStringLiteral("a")}));
    EXPECT_EQ(m_defaults.stringListForKey(QStringLiteral("quillo.groqAPIKeyPool")), QStringList({QStringLiteral("g")}));
    EXPECT_EQ(APIKeyStore::load(m_defaults, ollama), QStringLiteral("b"));

    APIKeyStore::clear(m_defaults, groq);
    EXPECT_FALSE(m_defaults.contains(QStringLiteral("quillo.groqAPIKeyPool")));
    EXPECT_EQ(APIKeyStore::allKeys(m_defaults, ollama).size(), 2);
}

TEST_F(APIKeyStoreTest, TakesOverTheKeyOfAnOlderVersion) {
    const QString olderKey = QStringLiteral("vellumark.ollamaAPIKey");
    m_defaults.setString(olderKey, QString());
    EXPECT_TRUE(APIKeyStore::allKeys(m_defaults, ollama).isEmpty());
    m_defaults.setString(olderKey, QStringLiteral("old"));

    EXPECT_TRUE(APIKeyStore::allKeys(m_defaults, groq).isEmpty());
    EXPECT_EQ(APIKeyStore::allKeys(m_defaults, ollama), QStringList({QStringLiteral("old")}));
    EXPECT_EQ(m_defaults.stringListForKey(QStringLiteral("quillo.ollamaAPIKeyPool")),
              QStringList({QStringLiteral("old")}));

    m_defaults.setStringList(QStringLiteral("quillo.ollamaAPIKeyPool"), {QStringLiteral("new")});
    EXPECT_EQ(APIKeyStore::allKeys(m_defaults, ollama), QStringList({QStringLiteral("new")}));
    APIKeyStore::clear(m_defaults, ollama);
    EXPECT_TRUE(APIKeyStore::allKeys(m_defaults, ollama).isEmpty()) << "the older key is gone too";
}
