#include "SpeechSynthesizer.h"

#include <QCoreApplication>
#include <QLocalServer>
#include <QLocalSocket>
#include <QMutex>
#include <QTemporaryDir>
#include <QTest>
#include <QThread>

#include <gtest/gtest.h>

namespace {

/// A speech service of the test's own: it speaks the service's line protocol (SSIP) on a socket, on a thread of its own
/// because the client waits for the answers, and keeps what it was given to say.
class SpeechService {
public:
    SpeechService() {
        m_thread.start();
        m_server.moveToThread(&m_thread);
        QMetaObject::invokeMethod(
            &m_server,
            [this] {
                QObject::connect(&m_server, &QLocalServer::newConnection, &m_server, [this] {
                    QLocalSocket* socket = m_server.nextPendingConnection();
                    QObject::connect(socket, &QLocalSocket::readyRead, socket, [this, socket] {
                        while (socket->canReadLine())
                            take(*socket, socket->readLine().trimmed());
                    });
                });
                m_server.listen(path());
            },
            Qt::BlockingQueuedConnection);
        qputenv("SPEECHD_ADDRESS", "unix_socket:" + path().toLocal8Bit());
    }

    ~SpeechService() {
        qunsetenv("SPEECHD_ADDRESS");
        QMetaObject::invokeMethod(
            &m_server, [this] { m_server.close(); }, Qt::BlockingQueuedConnection);
        m_thread.quit();
        m_thread.wait();
    }

    QByteArray spoken() {
        const QMutexLocker lock(&m_mutex);
        return m_spoken;
    }

private:
    [[nodiscard]] QString path() const { return m_folder.filePath(QStringLiteral("speechd.sock")); }

    void take(QLocalSocket& socket, const QByteArray& line) {
        const auto answer = [&socket](const QByteArray& lines) { socket.write(lines + "\r\n"); };
        if (m_isReceiving) {
            if (line != ".") {
                const QMutexLocker lock(&m_mutex);
                m_spoken += line + '\n';
                return;
            }
            m_isReceiving = false;
            answer("225-7\r\n225 OK MESSAGE QUEUED");
            answer("701-7\r\n701-1\r\n701 BEGIN");
            answer("702-7\r\n702-1\r\n702 END");
        } else if (line == "speak") {
            m_isReceiving = true;
            answer("230 OK RECEIVING DATA");
        } else if (line.startsWith("LIST OUTPUT_MODULES")) {
            answer("250-voices\r\n250 OK MODULE LIST SENT");
        } else if (line.startsWith("LIST ")) {
            answer("249-one\ten\tnone\r\n249 OK VOICE LIST SENT");
        } else if (line.startsWith("GET ")) {
            answer("251-voices\r\n251 OK GET RETURNED");
        } else {
            answer("208 OK");
        }
    }

    QTemporaryDir m_folder;
    QThread m_thread;
    QLocalServer m_server;
    bool m_isReceiving = false;
    QMutex m_mutex;
    QByteArray m_spoken; ///< guarded by `m_mutex`
};

} // namespace

TEST(SpeechSynthesizer, givesAllOfTheTextToTheServiceAndIsToldTheEnd) {
    SpeechService service;
    SpeechSynthesizer synthesizer;
    int ends = 0;
    QObject::connect(&synthesizer, &SpeechSynthesizer::didFinishSpeaking, [&ends](bool finished) {
        EXPECT_TRUE(finished);
        ++ends;
    });
    ASSERT_TRUE(synthesizer.startSpeaking(QStringLiteral("# Größe\n\nand *more*")));
    EXPECT_TRUE(QTest::qWaitFor([&ends] { return ends == 1; }));
    ASSERT_TRUE(SpeechSynthesizer::speakToTheEnd(QStringLiteral("Once")));
    const auto count = [] { return QCoreApplication::instance()->findChildren<SpeechSynthesizer*>().size(); };
    EXPECT_EQ(count(), 1);
    EXPECT_TRUE(QTest::qWaitFor([&count] { return count() == 0; })) << "gone after a speech of its own";
    EXPECT_EQ(QString::fromUtf8(service.spoken()), QStringLiteral("# Größe\n\nand *more*\nOnce\n"));
}

TEST(SpeechSynthesizer, saysThatThereIsNoService) {
    qputenv("SPEECHD_ADDRESS", "unix_socket:/nowhere/speechd.sock");
    SpeechSynthesizer synthesizer;
    EXPECT_FALSE(synthesizer.startSpeaking(QStringLiteral("Hello")));
    EXPECT_FALSE(SpeechSynthesizer::speakToTheEnd(QStringLiteral("Hello")));
    qunsetenv("SPEECHD_ADDRESS");
}
