#include "InstanceChannel.h"

#include <QDir>
#include <QEventLoop>
#include <QFileInfo>
#include <QLocalServer>
#include <QLocalSocket>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QThread>
#include <QTimer>

#include <gtest/gtest.h>

#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

namespace {

/// Starts a second program on the channel, as another process would, while this thread's event loop answers.
InstanceChannel::Role startAnother(const QString& path, const QStringList& files) {
    InstanceChannel::Role role = InstanceChannel::Role::first;
    const std::unique_ptr<QThread> thread(QThread::create([&] { role = InstanceChannel(path).start(files); }));
    QSignalSpy finished(thread.get(), &QThread::finished);
    thread->start();
    EXPECT_TRUE(finished.count() > 0 || finished.wait(10000));
    thread->wait();
    return role;
}

/// What a process that crashed leaves behind: a socket on which nobody listens.
void leaveSocketBehind(const QString& path) {
    const int socketNumber = socket(AF_UNIX, SOCK_STREAM, 0);
    sockaddr_un address = {};
    address.sun_family = AF_UNIX;
    qstrncpy(address.sun_path, QFile::encodeName(path).constData(), sizeof(address.sun_path));
    ASSERT_EQ(bind(socketNumber, reinterpret_cast<const sockaddr*>(&address), sizeof(address)), 0);
    close(socketNumber);
}

} // namespace

class InstanceChannelTest : public testing::Test {
protected:
    QTemporaryDir m_folder;
    const QString m_path = m_folder.filePath(QStringLiteral("quillo.socket"));
};

TEST_F(InstanceChannelTest, laterStartsReachTheFirstInOrder) {
    qputenv("XDG_ACTIVATION_TOKEN", "token-1");
    InstanceChannel first(m_path);
    ASSERT_EQ(first.start({QStringLiteral("file:///x.pdf")}), InstanceChannel::Role::first);
    QSignalSpy files(&first, &InstanceChannel::filesReceived);
    QSignalSpy reopen(&first, &InstanceChannel::reopenRequested);

    const QStringList names = {QStringLiteral("file:///b.pdf"), QStringLiteral("file:///a%20%C3%A4.pdf"),
                               QStringLiteral("file:///b.pdf")};
    EXPECT_EQ(startAnother(m_path, names), InstanceChannel::Role::handedOver);
    EXPECT_EQ(startAnother(m_path, {}), InstanceChannel::Role::handedOver);
    qunsetenv("XDG_ACTIVATION_TOKEN");

    ASSERT_EQ(files.count(), 1);
    EXPECT_EQ(files.first().at(0).toStringList(), names);
    EXPECT_EQ(files.first().at(1).toString(), QStringLiteral("token-1"));
    EXPECT_EQ(reopen.count(), 1);
}

TEST_F(InstanceChannelTest, nobodyElseMayConnect) {
    InstanceChannel first(m_path);
    ASSERT_EQ(first.start({}), InstanceChannel::Role::first);
    const auto others = QFile::ReadGroup | QFile::WriteGroup | QFile::ReadOther | QFile::WriteOther;
    EXPECT_FALSE(QFileInfo(m_path).permissions() & others);
}

TEST_F(InstanceChannelTest, whatACrashLeftBehindIsClearedAway) {
    leaveSocketBehind(m_path);
    ASSERT_TRUE(QFileInfo::exists(m_path));
    InstanceChannel first(m_path);
    EXPECT_EQ(first.start({}), InstanceChannel::Role::first);
    EXPECT_EQ(startAnother(m_path, {QStringLiteral("file:///a.pdf")}), InstanceChannel::Role::handedOver);
}

TEST_F(InstanceChannelTest, theSocketGoesWithTheFirst) {
    {
        InstanceChannel first(m_path);
        ASSERT_EQ(first.start({}), InstanceChannel::Role::first);
    }
    EXPECT_EQ(InstanceChannel(m_path).start({}), InstanceChannel::Role::first);
}

TEST_F(InstanceChannelTest, withoutAFolderItIsAlone) {
    InstanceChannel channel(m_folder.filePath(QStringLiteral("missing/quillo.socket")));
    EXPECT_EQ(channel.start({}), InstanceChannel::Role::alone);
}

TEST_F(InstanceChannelTest, aStartWhileTheFirstIsEndingTakesItsPlace) {
    // A process that is about to end: it takes the connection but answers no more.
    QLocalServer ending;
    ASSERT_TRUE(ending.listen(m_path));
    QObject::connect(&ending, &QLocalServer::newConnection, &ending, [&ending] {
        ending.nextPendingConnection()->abort();
        ending.close();
    });
    EXPECT_EQ(startAnother(m_path, {QStringLiteral("file:///a.pdf")}), InstanceChannel::Role::first);
}

TEST_F(InstanceChannelTest, oneThatRefusesEveryMessageKeepsItsPlace) {
    QLocalServer refusing;
    ASSERT_TRUE(refusing.listen(m_path));
    QObject::connect(&refusing, &QLocalServer::newConnection, &refusing,
                     [&refusing] { refusing.nextPendingConnection()->abort(); });
    EXPECT_EQ(startAnother(m_path, {QStringLiteral("file:///a.pdf")}), InstanceChannel::Role::alone);
    EXPECT_TRUE(QFileInfo::exists(m_path));
}

TEST_F(InstanceChannelTest, aStartIsTakenInTheMidstOfAQuestion) {
    InstanceChannel first(m_path);
    ASSERT_EQ(first.start({}), InstanceChannel::Role::first);
    QSignalSpy files(&first, &InstanceChannel::filesReceived);
    QEventLoop question; // as a modal dialog runs one
    QTimer::singleShot(0, &question, [&] {
        EXPECT_EQ(startAnother(m_path, {QStringLiteral("file:///a.pdf")}), InstanceChannel::Role::handedOver);
        question.quit();
    });
    question.exec();
    EXPECT_EQ(files.count(), 1);
}

TEST_F(InstanceChannelTest, whatABusyProcessDidNotTakeInTimeItNeverOpens) {
    InstanceChannel first(m_path);
    ASSERT_EQ(first.start({}), InstanceChannel::Role::first);
    QSignalSpy files(&first, &InstanceChannel::filesReceived);
    // This thread is the busy one: its event loop doesn't turn before the other start has given up.
    InstanceChannel::Role role = InstanceChannel::Role::first;
    const std::unique_ptr<QThread> impatient(QThread::create([&] {
        role = InstanceChannel(m_path, std::chrono::milliseconds(50)).start({QStringLiteral("file:///a.pdf")});
    }));
    impatient->start();
    impatient->wait();
    EXPECT_EQ(role, InstanceChannel::Role::alone);
    EXPECT_EQ(startAnother(m_path, {QStringLiteral("file:///b.pdf")}), InstanceChannel::Role::handedOver);
    ASSERT_EQ(files.count(), 1);
    EXPECT_EQ(files.first().at(0).toStringList(), QStringList{QStringLiteral("file:///b.pdf")});
}

TEST_F(InstanceChannelTest, garbageIsRefusedAndTheChannelGoesOn) {
    InstanceChannel first(m_path);
    ASSERT_EQ(first.start({}), InstanceChannel::Role::first);
    QSignalSpy files(&first, &InstanceChannel::filesReceived);
    QSignalSpy reopen(&first, &InstanceChannel::reopenRequested);

    for (const QByteArray& garbage :
         {QByteArray(64, '\0'), QByteArray("GET / HTTP/1.1\r\n\r\n"), QByteArray(8, '\xff')}) {
        QLocalSocket stranger;
        stranger.connectToServer(m_path);
        ASSERT_TRUE(stranger.waitForConnected());
        stranger.write(garbage);
        stranger.disconnectFromServer();
    }
    EXPECT_EQ(startAnother(m_path, {QStringLiteral("file:///a.pdf")}), InstanceChannel::Role::handedOver);
    EXPECT_EQ(files.count(), 1);
    EXPECT_EQ(reopen.count(), 0);
}
