#include "URLSession.h"

#include "APIKeyStore.h"
#include "LoopbackServer.h"
#include "OpenSSLProgram.h"
#include "RotatingAIProvider.h"
#include "TaskOutcome.h"
#include "UserDefaults.h"

#include <QCoreApplication>
#include <QFile>
#include <QPointer>
#include <QScopeGuard>
#include <QSslCertificate>
#include <QSslConfiguration>
#include <QSslKey>
#include <QTcpSocket>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>

#include <gtest/gtest.h>

using namespace std::chrono_literals;

namespace {

const QByteArray answer = R"({"choices":[{"message":{"content":"Hi"}}]})";
const QString secret = QStringLiteral("sk-secret-of-the-user");

/// What openssl makes in `folder`, signed by nobody but itself.
QSslConfiguration selfSigned(const QTemporaryDir& folder) {
    EXPECT_TRUE(runOpenSSL(folder.path(), "req -x509 -newkey rsa:2048 -nodes -keyout key.pem -out certificate.pem "
                                          "-subj /CN=127.0.0.1 -addext subjectAltName=IP:127.0.0.1"));
    QFile key(folder.filePath(QStringLiteral("key.pem")));
    EXPECT_TRUE(key.open(QIODevice::ReadOnly));
    QSslConfiguration configuration = QSslConfiguration::defaultConfiguration();
    configuration.setLocalCertificateChain(
        QSslCertificate::fromPath(folder.filePath(QStringLiteral("certificate.pem"))));
    configuration.setPrivateKey(QSslKey(&key, QSsl::Rsa));
    return configuration;
}

} // namespace

/// A provider with one key, whose service is the server.
class URLSessionTest : public testing::Test {
protected:
    URLSessionTest() {
        APIKeyStore::save(m_defaults, secret, APIProviderKind::ollama);
        setService(m_server.url(QStringLiteral("/ask")));
    }

    void setService(const QUrl& url) { APIKeyStore::saveURL(m_defaults, url.toString()); }

    void useTimeout(std::chrono::milliseconds timeout) {
        m_session = URLSession::create(timeout);
        m_provider = std::make_unique<RotatingAIProvider>(m_defaults, QUrl(), m_session, [] { return 0; });
    }

    QCoro::Task<AIAgentTurn> send() {
        return m_provider->send(std::vector<AIMessage>(), std::vector<AssistantTool>(), {}, AIModelPreference::fast);
    }

    std::string failure() { return outcomeOf(send()).sentence; }

    void expectAnswer(const char* when) {
        setService(m_server.url(QStringLiteral("/ask")));
        m_server.enqueue(LoopbackServer::json(200, answer));
        const auto outcome = outcomeOf(send());
        EXPECT_TRUE(outcome.value && outcome.value->text == u"Hi") << when << ": " << outcome.sentence;
    }

    QTemporaryDir m_folder;
    UserDefaults m_defaults{m_folder.filePath(QStringLiteral("settings.ini"))};
    LoopbackServer m_server;
    std::shared_ptr<URLSession> m_session = URLSession::create();
    std::unique_ptr<RotatingAIProvider> m_provider =
        std::make_unique<RotatingAIProvider>(m_defaults, QUrl(), m_session, [] { return 0; });
};

TEST_F(URLSessionTest, TellsWhyThereIsNoAnswerAndGoesOn) {
    const QByteArray head = "HTTP/1.1 200 OK\r\n";
    const char* const cutShort = "ended the connection before its answer was complete";
    QByteArray packed = qCompress(QByteArray(100 << 20, ' ')).mid(4); // without Qt's own length in front
    const std::tuple<const char*, LoopbackServer::Reply, const char*> cases[] = {
        {"cut short", LoopbackServer::bytes(head + "Content-Length: 500\r\n\r\n{\"choices\""), cutShort},
        {"a piece cut short", LoopbackServer::bytes(head + "Transfer-Encoding: chunked\r\n\r\nff\r\n{\"choices\""),
         "The AI service "}, // which of the two Qt notices first is a matter of time
        {"no word", LoopbackServer::bytes({}), cutShort},
        {"no HTTP", LoopbackServer::bytes("SSH-2.0-Server\r\n\r\n"), cutShort},
        {"100 MB packed", LoopbackServer::json(200, packed, "Content-Encoding: deflate\r\n"),
         "couldn't be asked because the connection failed"},
        {"refused", LoopbackServer::json(400, R"({"error":{"message":"No such model"}})"),
         "API error (400): No such model"},
    };
    for (const auto& [what, reply, expected] : cases) {
        for (int attempt = 0; attempt < 10; ++attempt) // a connection that just closes is tried again
            m_server.enqueue(reply);
        const std::string sentence = failure();
        m_server.clearReplies();
        EXPECT_NE(sentence.find(expected), std::string::npos) << what << ": " << sentence;
        EXPECT_EQ(sentence.find(secret.toStdString()), std::string::npos);
        expectAnswer(what);
    }
}

TEST_F(URLSessionTest, StopsReadingWhatIsTooLongAndWaitingForWhatDoesNotCome) {
    constexpr int length = 64 << 20;
    const QByteArray piece(1 << 16, ' '); // as fast as they are taken
    int written = 0;
    m_server.enqueue([&](QTcpSocket& socket) {
        QObject::connect(&socket, &QIODevice::bytesWritten, &m_server, [&] {
            if (socket.bytesToWrite() == 0 && written < length)
                written += int(socket.write(piece));
        });
        socket.write("HTTP/1.1 200 OK\r\nContent-Length: " + QByteArray::number(length) + "\r\n\r\n");
    });
    EXPECT_EQ(failure(), "The AI service at “127.0.0.1” sent an answer that is too long.");
    EXPECT_GT(written, length / 4);
    EXPECT_LT(written, length / 2) << "the limit, and what the sockets hold";
    expectAnswer("after a long one");

    useTimeout(200ms);
    for (const char* begun : {"", "HTTP/1.1 200 OK\r\nContent-Length: 90\r\n\r\n{"}) {
        m_server.enqueue([begun](QTcpSocket& socket) { socket.write(begun); });
        EXPECT_EQ(failure(), "The AI service at “127.0.0.1” didn't answer in time. Ask again.");
    }
    useTimeout(60s);
    expectAnswer("after silence");
}

TEST_F(URLSessionTest, TellsWhyThereIsNoConnection) {
    QUrl nobody;
    {
        const LoopbackServer gone;
        nobody = gone.url(QStringLiteral("/?key=%1").arg(secret));
    }
    const QTemporaryDir folder;
    LoopbackServer server(selfSigned(folder));
    const std::pair<QUrl, const char*> cases[] = {
        {nobody, "The AI service at “127.0.0.1” refused the connection. Check that it is running."},
        {server.url(QStringLiteral("/ask")),
         "The AI service at “127.0.0.1” couldn't prove who it is, so nothing was sent to it."},
        {QUrl(QStringLiteral("http://nobody.invalid/ask")),
         "The AI service at “nobody.invalid” couldn't be found. Check your internet connection and the API URL in "
         "Edit > Settings…"},
        {QUrl(QStringLiteral("localhost:11434/v1")),
         "The API URL isn't one of a web service. It must begin with https:// or "
         "http://. Change it in Edit > Settings…"},
    };
    for (const auto& [url, sentence] : cases) {
        setService(url);
        EXPECT_EQ(failure(), sentence);
        expectAnswer("after a failed connection");
    }
    EXPECT_TRUE(server.requests().empty());
}

TEST_F(URLSessionTest, AsksWhomTheCertificatesProve) {
    const QTemporaryDir folder;
    LoopbackServer server(selfSigned(folder));
    const QSslConfiguration usual = QSslConfiguration::defaultConfiguration();
    const auto reset = qScopeGuard([&] { QSslConfiguration::setDefaultConfiguration(usual); });
    QSslConfiguration trusting = usual;
    ASSERT_TRUE(trusting.addCaCertificates(folder.filePath(QStringLiteral("certificate.pem"))));
    QSslConfiguration::setDefaultConfiguration(trusting);

    setService(server.url(QStringLiteral("/ask")));
    server.enqueue(LoopbackServer::json(200, answer));
    EXPECT_EQ(failure(), "");
    ASSERT_EQ(server.requests().size(), 1u);
    EXPECT_EQ(server.requests()[0].header("Authorization"), "Bearer " + secret.toUtf8());
}

TEST_F(URLSessionTest, FollowsRedirectsOnlyAtHome) {
    const LoopbackServer elsewhere;
    QUrl otherScheme = m_server.url(QStringLiteral("/ask"));
    otherScheme.setScheme(QStringLiteral("https"));
    const QUrl away = elsewhere.url(QStringLiteral("/ask"));
    const std::pair<int, QUrl> followedNever[] = {{301, away},
                                                  {307, away},
                                                  {308, otherScheme},
                                                  {303, m_server.url(QStringLiteral("/result"))},
                                                  {307, QUrl(QStringLiteral("file:///etc/hostname"))}};
    for (const auto& [status, target] : followedNever) {
        m_server.enqueue(LoopbackServer::redirect(target.toString(), status));
        EXPECT_NE(failure().find("pointed to another address"), std::string::npos) << status;
        expectAnswer("after a redirect");
    }
    EXPECT_TRUE(elsewhere.requests().empty());

    for (const int status : {301, 302, 307, 308}) {
        const auto count = m_server.requests().size();
        m_server.enqueue(LoopbackServer::redirect(QStringLiteral("moved"), status));
        expectAnswer("behind a redirect");
        ASSERT_EQ(m_server.requests().size(), count + 2);
        const auto& first = m_server.requests()[count];
        const auto& second = m_server.requests()[count + 1];
        EXPECT_EQ(second.requestLine().toStdString(), "POST /moved HTTP/1.1");
        EXPECT_EQ(second.body, first.body);
        EXPECT_EQ(second.header("Authorization"), first.header("Authorization"));
    }

    for (int i = 0; i < 20; ++i)
        m_server.enqueue(LoopbackServer::redirect(QStringLiteral("/ask")));
    EXPECT_EQ(failure(), "The AI service at “127.0.0.1” sends requests in a circle.");
}

TEST_F(URLSessionTest, RemembersNothingOfEarlierReplies) {
    m_server.enqueue(LoopbackServer::json(200, answer, "Set-Cookie: id=1; Path=/\r\nCache-Control: max-age=99\r\n"));
    EXPECT_EQ(failure(), "");
    expectAnswer("the second time");
    EXPECT_EQ(m_server.requests().size(), 2u);
    EXPECT_TRUE(m_server.requests().back().header("Cookie").isNull());
}

TEST_F(URLSessionTest, OutlivesWhoeverAsked) {
    const QPointer<URLSession> session(m_session.get());
    QPointer<QTcpSocket> waiting;
    m_server.enqueue([&waiting](QTcpSocket& socket) { waiting = &socket; });
    {
        const auto task = send();
        ASSERT_TRUE(QTest::qWaitFor([&] { return !waiting.isNull(); }));
        m_provider.reset();
        m_session.reset();
    }
    QCoreApplication::processEvents();
    ASSERT_TRUE(session && waiting);
    LoopbackServer::json(200, answer)(*waiting);
    EXPECT_TRUE(QTest::qWaitFor([&] { return session.isNull(); })) << "the request was the last to need it";
}

TEST_F(URLSessionTest, EndsWithTheProgram) {
    m_server.enqueue([](QTcpSocket&) { QCoreApplication::quit(); });
    auto task = send();
    QCoreApplication::exec();
    EXPECT_EQ(outcomeOf(std::move(task)).sentence, "The question was given up because Quillo was closed.");
}
