#include "RotatingAIProvider.h"
#include "APIKeyStore.h"
#include "LoopbackServer.h"
#include "TaskOutcome.h"
#include "URLSession.h"
#include "UserDefaults.h"

#include <QJsonDocument>
#include <QJsonObject>
#include <QNetworkProxy>
#include <QScopeGuard>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace {

const QByteArray answer = R"({"choices":[{"message":{"content":"Hi"},"finish_reason":"stop"}]})";

std::string text(const QByteArray& bytes) {
    return bytes.toStdString();
}

} // namespace

class RotatingAIProviderTest : public testing::Test {
protected:
    RotatingAIProviderTest() { useAddress(m_server.url(QStringLiteral("/ollama")).toString()); }

    void useAddress(const QString& address) { APIKeyStore::saveURL(m_defaults, address); }

    /// Keys of the services, which "|" parts, in place of those that there are.
    void useKeys(const char* ollama, const char* groq = "") {
        for (const auto& [kind, keys] : {std::pair(APIProviderKind::ollama, ollama), {APIProviderKind::groq, groq}}) {
            APIKeyStore::clear(m_defaults, kind);
            for (const QString& key : QString::fromLatin1(keys).split(u'|', Qt::SkipEmptyParts))
                APIKeyStore::save(m_defaults, key, kind);
        }
    }

    void replyWith(int status, const QByteArray& body = "{}", const QByteArray& headerLines = {}) {
        m_server.enqueue(LoopbackServer::json(status, body, headerLines));
    }

    TaskOutcome<AIAgentTurn> ask(AIModelPreference preference = AIModelPreference::highPerformance,
                                 std::vector<AssistantTool> tools = {}) {
        std::vector<AIMessage> history{AIMessage::userText(QStringLiteral("Page 3 – 日本?"))};
        return outcomeOf(m_provider.send(std::move(history), std::move(tools), QStringLiteral("Be kind."), preference));
    }

    /// Target, key and model of each request, in order.
    std::vector<std::string> attempts() const {
        std::vector<std::string> list;
        for (const auto& request : m_server.requests()) {
            const QString model = QJsonDocument::fromJson(request.body)[u"model"].toString();
            list.push_back(text(request.requestLine().split(' ')[1]) + " " + text(request.header("Authorization")) +
                           " " + model.toStdString());
        }
        return list;
    }

    QTemporaryDir m_folder;
    UserDefaults m_defaults{m_folder.filePath(QStringLiteral("settings.ini"))};
    LoopbackServer m_server;
    qint64 m_now = 0; // seconds since 1970
    RotatingAIProvider m_provider{m_defaults, m_server.url(QStringLiteral("/groq")), URLSession::create(),
                                  [this] { return m_now; }};
};

TEST_F(RotatingAIProviderTest, SendsTheseBytes) {
    useKeys("sk-ollama");
    const QByteArray schema = R"({"properties":{"page":{"type":"integer"}},"required":["page"],"type":"object"})";
    replyWith(200, answer);
    const auto outcome = ask(AIModelPreference::highPerformance, {{QStringLiteral("go_to_page"),
                                                                   QStringLiteral("Go to a \"page\"."),
                                                                   QJsonDocument::fromJson(schema).object(),
                                                                   {}}});
    ASSERT_TRUE(outcome.value) << outcome.sentence;
    EXPECT_EQ(outcome.value->text, QStringLiteral("Hi"));

    const auto& request = m_server.requests().front();
    EXPECT_EQ(text(request.requestLine()), "POST /ollama HTTP/1.1");
    EXPECT_EQ(text(request.header("Authorization")), "Bearer sk-ollama");
    EXPECT_EQ(text(request.header("Content-Type")), "application/json");
    EXPECT_EQ(text(request.header("User-Agent")), "Quillo");
    EXPECT_EQ(text(request.body),
              R"({"messages":[{"content":"Be kind.","role":"system"},{"content":"Page 3 – 日本?","role":"user"}],)"
              R"("model":"gpt-oss:120b-cloud","tools":[{"function":{"description":"Go to a \"page\".",)"
              R"("name":"go_to_page","parameters":)" +
                  text(schema) + R"(},"type":"function"}]})");
}

TEST_F(RotatingAIProviderTest, TriesEachKeyOnceFromTheOneOfTheHour) {
    EXPECT_EQ(ask().sentence, "Add your Ollama Cloud or Groq API key in Quillo > Settings… to use Ask.");
    useKeys("O0|O1|O2", "G0");
    const std::vector<std::string> inOrder = {"/ollama Bearer O0 gpt-oss:120b-cloud", "/groq Bearer G0 llama3-70b-8192",
                                              "/ollama Bearer O1 gpt-oss:120b-cloud",
                                              "/ollama Bearer O2 gpt-oss:120b-cloud"};
    std::vector<std::string> expected;
    for (const qint64 hour : {0, 5}) {
        m_now = hour * 3600 + 3599;
        replyWith(401);
        replyWith(429, R"({"error":"slow down"})");
        replyWith(401, "{}", "WWW-Authenticate: Basic realm=\"keys\"\r\n");
        replyWith(429, R"({"error":{"message":"secret"}})");
        EXPECT_EQ(ask().sentence, "API error (429): Ollama Cloud key rejected or rate-limited") << hour;
        for (size_t i = 0; i < inOrder.size(); ++i)
            expected.push_back(inOrder[(static_cast<size_t>(hour) + i) % inOrder.size()]);
        EXPECT_EQ(attempts(), expected);
    }

    m_now = 0;
    replyWith(401);
    replyWith(200, answer);
    EXPECT_TRUE(ask().value);
    EXPECT_EQ(attempts().size(), expected.size() + 2) << "the keys after the one that worked are left alone";
}

TEST_F(RotatingAIProviderTest, NamesTheModelsOfEachPreference) {
    useKeys("O", "G");
    for (const AIModelPreferenceInfo& each : allAIModelPreferences()) {
        replyWith(401);
        replyWith(429);
        EXPECT_EQ(ask(each.preference).sentence, "API error (429): Groq key rejected or rate-limited");
    }
    EXPECT_EQ(attempts(),
              (std::vector<std::string>{"/ollama Bearer O gpt-oss:120b-cloud", "/groq Bearer G llama3-70b-8192",
                                        "/ollama Bearer O gpt-oss:70b-cloud", "/groq Bearer G llama-3.1-8b-instant",
                                        "/ollama Bearer O gpt-oss:8b-cloud", "/groq Bearer G llama3-8b-8192"}));
}

TEST_F(RotatingAIProviderTest, StopsAtAnyOtherFailureAndHidesKeysInWhatTheServiceSays) {
    const std::tuple<const char*, int, QByteArray, const char*> rows[] = {
        {"sk-first|sk-second", 403, R"({"error":"Bad key sk-first!"})", "API error (403): Bad key …!"},
        {"sk-first|sk-second", 200, "{}", "Received an unexpected response from the AI provider."},
        {"sk-first|sk-second", 401, "<html>", "The AI service sent an answer that Quillo can't read (illegal value)."},
        {"a", 502, R"({"error":"Bad gateway a"})", "API error (502): Bad gateway a"},
        {"gateway", 502, R"({"error":"Bad gateway"})", "API error (502): Bad gateway"},
        {" sk-01234567 ", 502, R"({"error":"No 'sk-01234567', no xsk-01234567x"})", "API error (502): No '…', no x…x"},
        {"sk-0123\r\n4567", 502, R"({"error":"No sk-01234567"})", "API error (502): No …"},
    };
    size_t count = 0;
    for (const auto& [keys, status, body, sentence] : rows) {
        useKeys(keys);
        replyWith(status, body);
        EXPECT_EQ(ask().sentence, sentence);
        EXPECT_EQ(m_server.requests().size(), ++count) << sentence;
    }
    EXPECT_EQ(text(m_server.requests().back().header("Authorization")), "Bearer sk-01234567")
        << "a line break copied with the key ends no header";
}

TEST_F(RotatingAIProviderTest, AsksTheServicesThemselvesByDefault) {
    // A proxy hears the name of the host, and lets nobody through.
    const QUrl proxy = m_server.url({});
    QNetworkProxy::setApplicationProxy({QNetworkProxy::HttpProxy, proxy.host(), static_cast<quint16>(proxy.port())});
    const auto reset = qScopeGuard([] { QNetworkProxy::setApplicationProxy(QNetworkProxy::NoProxy); });
    const auto connection = [this](RotatingAIProvider& provider) {
        m_server.enqueue(LoopbackServer::bytes("HTTP/1.1 403 Forbidden\r\nContent-Length: 0\r\n\r\n"));
        EXPECT_FALSE(outcomeOf(provider.send({}, {}, {}, AIModelPreference::fast)).value);
        EXPECT_TRUE(m_server.requests().back().header("Authorization").isNull()) << "a proxy gets no key";
        return text(m_server.requests().back().requestLine());
    };
    useKeys("O");
    for (const char* invalid : {"", "not an address", "https://[broken/v1"}) {
        useAddress(QLatin1String(invalid));
        EXPECT_EQ(connection(m_provider), "CONNECT ollama.com:443 HTTP/1.1") << invalid;
    }
    useKeys("", "G");
    RotatingAIProvider provider(m_defaults);
    EXPECT_EQ(connection(provider), "CONNECT api.groq.com:443 HTTP/1.1");
    EXPECT_EQ(QUrl(APIKeyStore::defaultURL()).path(), QStringLiteral("/v1/chat/completions"));
    EXPECT_EQ(RotatingAIProvider::defaultGroqEndpoint().path(), QStringLiteral("/openai/v1/chat/completions"));
}
