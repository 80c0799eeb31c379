#include "SpeechSynthesizer.h"

#include <QCoreApplication>
#include <QLocalServer>
#include <QLocalSocket>
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
        onItsThread([this] {
            QObject::connect(&m_server, &QLocalServer::newConnection, &m_server, [this] {
                QLocalSocket* socket = m_server.nextPendingConnection();
                QObject::connect(socket, &QLocalSocket::readyRead, socket, [this, socket] {
                    while (socket->canReadLine())
                        socket->write(answerTo(socket->readLine().trimmed()));
                });
            });
            m_server.listen(m_folder.filePath(QStringLiteral("speechd.sock")));
        });
        qputenv("SPEECHD_ADDRESS", "unix_socket:" + m_server.fullServerName().toLocal8Bit());
    }

    ~SpeechService() {
        onItsThread([this] { m_server.close(); });
        m_thread.quit();
        m_thread.wait();
    }

    QString spoken() {
        QByteArray all;
        onItsThread([&] { all = m_spoken; });
        return QString::fromUtf8(all);
    }

private:
    template <typename Work>
    void onItsThread(const Work& work) {
        QMetaObject::invokeMethod(&m_server, work, Qt::BlockingQueuedConnection);
    }

    QByteArray answerTo(const QByteArray& line) {
        if (m_isReceiving && line != ".") {
            m_spoken += line + '\n';
            return {};
        }
        if (std::exchange(m_isReceiving, line == "speak"))
            return "225-7\r\n225 OK MESSAGE QUEUED\r\n701-7\r\n701-1\r\n701 BEGIN\r\n702-7\r\n702-1\r\n702 END\r\n";
        for (const auto& [request, answer] : {std::pair("speak", "230 OK RECEIVING DATA\r\n"),
                                              {"LIST OUTPUT_MODULES", "250-voices\r\n250 OK MODULE LIST SENT\r\n"},
                                              {"LIST ", "249-one\ten\tnone\r\n249 OK VOICE LIST SENT\r\n"},
                                              {"GET ", "251-voices\r\n251 OK GET RETURNED\r\n"}})
            if (line.startsWith(request))
                return answer;
        return "208 OK\r\n";
    }

    QTemporaryDir m_folder;
    QThread m_thread;
    QLocalServer m_server;
    bool m_isReceiving = false;
    QByteArray m_spoken;
};

} // namespace

TEST(SpeechSynthesizer, givesAllOfTheTextToTheServiceWhenThereIsOneAndIsToldTheEnd) {
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
    EXPECT_EQ(service.spoken(), QStringLiteral("# Größe\n\nand *more*\nOnce\n"));
    qputenv("SPEECHD_ADDRESS", "unix_socket:/nowhere/speechd.sock");
    EXPECT_FALSE(SpeechSynthesizer().startSpeaking(QStringLiteral("Hello")));
    EXPECT_FALSE(SpeechSynthesizer::speakToTheEnd(QStringLiteral("Hello")));
    qunsetenv("SPEECHD_ADDRESS");
}
