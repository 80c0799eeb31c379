#include "ChatHistoryStore.h"

#include "ChatSessionCoder.h"

#include <QCryptographicHash>
#include <QDir>
#include <QFile>
#include <QStandardPaths>

#include <gtest/gtest.h>

#include <sys/stat.h>

namespace {

using Role = AssistantTurn::Role;

const QString key = QStringLiteral("/home/someone/Ünï.pdf");

QString folder() {
    return QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation) + QStringLiteral("/Quillo/Chats");
}

QString path() {
    return folder() + u'/' +
           QString::fromLatin1(QCryptographicHash::hash(key.toUtf8(), QCryptographicHash::Sha256).toHex()) +
           QStringLiteral(".json");
}

mode_t modeOf(const QString& file) {
    struct stat status {};
    EXPECT_EQ(stat(QFile::encodeName(file).constData(), &status), 0);
    return status.st_mode & 07777;
}

std::vector<ChatSession> someSessions() {
    ChatSession first;
    first.title = QStringLiteral("One \"quoted\" … 👨‍👩‍👧");
    first.turns = {
        {QUuid::createUuid(), Role::user, QStringLiteral("a\nb")},
        {QUuid::createUuid(), Role::assistant, QString(QChar(u'\0')) + QChar(0xD83D) + QStringLiteral("\\frac")},
        {QUuid::createUuid(), Role::error, {}}};
    first.updatedAt = QDateTime(QDate(2024, 5, 1), QTime(23, 59, 59, 999), Qt::UTC);
    return {first, ChatSession()};
}

void write(const QByteArray& bytes) {
    QDir().mkpath(folder());
    QFile file(path());
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(bytes);
}

} // namespace

TEST(ChatHistoryStoreTest, GivesBackWhatWasSavedButForFractionsOfASecond) {
    const std::vector<ChatSession> sessions = someSessions();
    ChatHistoryStore::save(sessions, key);
    std::vector<ChatSession> loaded = ChatHistoryStore::load(key);
    ASSERT_EQ(loaded.size(), 2U);
    EXPECT_EQ(loaded[0].updatedAt, QDateTime(QDate(2024, 5, 1), QTime(23, 59, 59), Qt::UTC));
    for (std::size_t i = 0; i < loaded.size(); ++i)
        loaded[i].updatedAt = sessions[i].updatedAt;
    EXPECT_EQ(loaded, sessions);
    EXPECT_EQ(modeOf(path()), 0600U);
    EXPECT_EQ(modeOf(folder()), 0700U);
    EXPECT_TRUE(ChatHistoryStore::load(key + u'x').empty());
}

TEST(ChatHistoryStoreTest, ReadsAllOrNothing) {
    const QByteArray good = R"([{"updatedAt":"2024-05-01T10:00:00+02:00","id":"6BA7B810-9DAD-11D1-80B4-00C04FD430C8",)"
                            R"("title":"T","extra":1,"turns":[{"id":"00000000-0000-0000-0000-000000000000",)"
                            R"("role":"error","text":""}]}])";
    const auto decoded = ChatSessionCoder::decode(good);
    ASSERT_TRUE(decoded && decoded->size() == 1);
    EXPECT_EQ(decoded->front().updatedAt, QDateTime(QDate(2024, 5, 1), QTime(8, 0), Qt::UTC));
    EXPECT_EQ(decoded->front().turns.front().role, Role::error);
    EXPECT_TRUE(ChatSessionCoder::decode("[]"));

    const std::pair<const char*, const char*> damages[] = {
        {R"("error")", R"("Error")"},
        {R"("role":"error",)", ""},
        {"00000000-0000", "0000000-00000"},
        {R"("6BA7B810-9DAD-11D1-80B4-00C04FD430C8")", R"("{6BA7B810-9DAD-11D1-80B4-00C04FD430C8}")"},
        {"10:00:00+", "10:00:00.5+"},
        {R"([{"id":"00)", R"([7,{"id":"00)"},
    };
    for (const auto& [before, after] : damages) {
        QByteArray damaged = good;
        damaged.replace(before, after);
        ASSERT_NE(damaged, good);
        EXPECT_FALSE(ChatSessionCoder::decode(damaged)) << damaged.constData();
    }
    EXPECT_FALSE(ChatSessionCoder::decode(good.chopped(1)));
    EXPECT_FALSE(ChatSessionCoder::decode(good.mid(1).chopped(1))) << "no list";
}

TEST(ChatHistoryStoreTest, ReplacesADamagedFileAndOneThatMayNotBeWrittenAndLivesWithAnythingElse) {
    for (const mode_t mode : {0644, 0000}) {
        write("[{\"id\"");
        ASSERT_EQ(chmod(QFile::encodeName(path()).constData(), mode), 0);
        EXPECT_TRUE(ChatHistoryStore::load(key).empty());
        ChatHistoryStore::save(someSessions(), key);
        EXPECT_EQ(ChatHistoryStore::load(key).size(), 2U);
        EXPECT_EQ(modeOf(path()), 0600U);
    }
    ASSERT_TRUE(QFile::remove(path()));
    ASSERT_EQ(mkfifo(QFile::encodeName(path()).constData(), 0600), 0);
    EXPECT_TRUE(ChatHistoryStore::load(key).empty()) << "and doesn't wait for a writer";
    ASSERT_TRUE(QFile::remove(path()));
    ASSERT_TRUE(QDir().mkpath(path())); // where nothing can be saved
    ChatHistoryStore::save(someSessions(), key);
    EXPECT_TRUE(ChatHistoryStore::load(key).empty());
    ASSERT_TRUE(QDir().rmdir(path()));
}
