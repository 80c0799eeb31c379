#include "InstanceChannel.h"

#include <QFileInfo>
#include <QLocalServer>
#include <QLocalSocket>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QThread>

#include <gtest/gtest.h>

using Role = InstanceChannel::Role;

class InstanceChannelTest : public testing::Test {
protected:
    void startFirst() { ASSERT_EQ(m_first.start({QStringLiteral("file:///x.pdf")}), Role::first); }

    /// Starts a second program on the channel, as another process would, while this thread's event loop answers.
    Role startAnother(const QStringList& files = {QStringLiteral("file:///a.pdf")}) {
        Role role = Role::first;
        const std::unique_ptr<QThread> thread(QThread::create([&] { role = InstanceChannel(m_path).start(files); }));
        QSignalSpy finished(thread.get(), &QThread::finished);
        thread->start();
        EXPECT_TRUE(finished.count() > 0 || finished.wait(10000));
        thread->wait();
        return role;
    }

    QTemporaryDir m_folder;
    const QString m_path = m_folder.filePath(QStringLiteral("quillo.socket"));
    InstanceChannel m_first{m_path};
    QSignalSpy m_files{&m_first, &InstanceChannel::filesReceived};
    QSignalSpy m_reopen{&m_first, &InstanceChannel::reopenRequested};
};

TEST_F(InstanceChannelTest, laterStartsReachTheFirstInOrder) {
    qputenv("XDG_ACTIVATION_TOKEN", "token-1");
    startFirst();
    const auto others = QFile::ReadGroup | QFile::WriteGroup | QFile::ReadOther | QFile::WriteOther;
    EXPECT_FALSE(QFileInfo(m_path).permissions() & others) << "nobody else may connect";
    const QStringList names = QStringLiteral("file:///b.pdf file:///a%20%C3%A4.pdf file:///b.pdf").split(u' ');
    EXPECT_EQ(startAnother(names), Role::handedOver);
    EXPECT_EQ(startAnother({}), Role::handedOver);
    qunsetenv("XDG_ACTIVATION_TOKEN");
    ASSERT_EQ(m_files.count(), 1);
    EXPECT_EQ(m_files[0][0].toStringList(), names);
    EXPECT_EQ(m_files[0][1].toString(), QStringLiteral("token-1"));
    EXPECT_EQ(m_reopen.count(), 1);
}

TEST_F(InstanceChannelTest, whoeverEndsLeavesItsPlaceToTheNextOne) {
    EXPECT_EQ(InstanceChannel(m_path).start({}), Role::first);
    startFirst();
    EXPECT_EQ(startAnother(), Role::handedOver);
    EXPECT_EQ(InstanceChannel(m_folder.filePath(QStringLiteral("missing/quillo.socket"))).start({}), Role::alone);
}

TEST_F(InstanceChannelTest, oneThatIsEndingIsReplacedAndOneThatRefusesEveryMessageKeepsItsPlace) {
    for (const bool isEnding : {false, true}) {
        QLocalServer other;
        ASSERT_TRUE(other.listen(m_path));
        QObject::connect(&other, &QLocalServer::newConnection, &other, [&other, isEnding] {
            other.nextPendingConnection()->abort(); // it takes the connection but doesn't answer
            if (isEnding)
                other.close();
        });
        EXPECT_EQ(startAnother(), isEnding ? Role::first : Role::alone);
        EXPECT_EQ(QFileInfo::exists(m_path), !isEnding);
    }
}

TEST_F(InstanceChannelTest, whatABusyProcessDidNotTakeInTimeItNeverOpens) {
    startFirst();
    // This thread is the busy one: its event loop doesn't turn before the other start has given up.
    Role role = Role::first;
    const std::unique_ptr<QThread> impatient(QThread::create([&] {
        role = InstanceChannel(m_path, std::chrono::milliseconds(50)).start({QStringLiteral("file:///a.pdf")});
    }));
    impatient->start();
    impatient->wait();
    EXPECT_EQ(role, Role::alone);
    const QStringList later{QStringLiteral("file:///b.pdf")};
    EXPECT_EQ(startAnother(later), Role::handedOver);
    ASSERT_EQ(m_files.count(), 1);
    EXPECT_EQ(m_files[0][0].toStringList(), later);
}

TEST_F(InstanceChannelTest, garbageIsRefusedAndTheChannelGoesOn) {
    startFirst();
    for (const QByteArray& garbage :
         {QByteArray(64, '\0'), QByteArray("GET / HTTP/1.1\r\n\r\n"), QByteArray(8, '\xff')}) {
        QLocalSocket stranger;
        stranger.connectToServer(m_path);
        ASSERT_TRUE(stranger.waitForConnected());
        stranger.write(garbage);
        stranger.disconnectFromServer();
    }
    EXPECT_EQ(startAnother(), Role::handedOver);
    EXPECT_EQ(m_files.count(), 1);
    EXPECT_EQ(m_reopen.count(), 0);
}
