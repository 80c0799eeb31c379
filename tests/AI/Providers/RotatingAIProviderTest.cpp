#include "RotatingAIProvider.h"
#include "AIProviderError.h"
#include "APIKeyStore.h"
#include "JSONParsingError.h"
#include "LoopbackServer.h"
#include "TaskOutcome.h"
#include "URLSession.h"
#include "UserDefaults.h"

#include <QJsonArray>
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
    RotatingAIProviderTest() { APIKeyStore::saveURL(m_defaults, m_server.url(QStringLiteral("/ollama")).toString()); }

    void addKeys(const QStringList& ollama, const QStringList& groq) {
        for (const QString& key : ollama)
            APIKeyStore::save(m_defaults, key, APIProviderKind::ollama);
        for (const QString& key : groq)
            APIKeyStore::save(m_defaults, key, APIProviderKind::groq);
    }

    TaskOutcome<AIAgentTurn> ask(AIModelPreference preference = AIModelPreference::highPerformance) {
        std::vector<AIMessage> history;
        history.push_back(AIMessage::userText(QStringLiteral("Hello")));
        std::vector<AssistantTool> tools;
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
    addKeys({QStringLiteral("sk-ollama")}, {});
    const QJsonObject schema{
        {QStringLiteral("type"), QStringLiteral("object")},
        {QStringLiteral("properties"),
         QJsonObject{{QStringLiteral("page"), QJsonObject{{QStringLiteral("type"), QStringLiteral("integer")}}}}},
        {QStringLiteral("required"), QJsonArray{QStringLiteral("page")}}};
    std::vector<AssistantTool> tools;
    tools.push_back({QStringLiteral("go_to_page"), QStringLiteral("Go to a \"page\"."), schema, {}});
    std::vector<AIMessage> history;
    history.push_back(AIMessage::userText(QStringLiteral("Page 3?")));
    history.push_back({AIRole::assistant, {}});
    history.back().parts.push_back(
        AIContentPart::toolUse(QStringLiteral("c1"), QStringLiteral("go_to_page"), {{QStringLiteral("page"), 3}}));
    history.push_back({AIRole::user, {}});
    history.back().parts.push_back(
        AIContentPart::toolResult(QStringLiteral("c1"), QStringLiteral("Navigated to page 3.")));
    m_server.enqueue(LoopbackServer::json(200, answer));
    const auto outcome = outcomeOf(
        m_provider.send(history, tools, QStringLiteral("Be kind – 日本."), AIModelPreference::highPerformance));
    ASSERT_TRUE(outcome.value) << outcome.sentence();
    EXPECT_EQ(outcome.value->text, QStringLiteral("Hi"));
    EXPECT_TRUE(outcome.value->isFinal);

    ASSERT_EQ(m_server.requests().size(), 1u);
    const auto& request = m_server.requests().front();
    EXPECT_EQ(text(request.requestLine()), "POST /ollama HTTP/1.1");
    EXPECT_EQ(text(request.header("Authorization")), "Bearer sk-ollama");
    EXPECT_EQ(text(request.header("Content-Type")), "application/json");
    EXPECT_EQ(text(request.header("User-Agent")), "Quillo");
    EXPECT_EQ(text(request.body),
              R"({"messages":[{"content":"Be kind – 日本.","role":"system"},{"content":"Page 3?","role":"user"},)"
              R"({"content":"","role":"assistant","tool_calls":[{"function":{"arguments":"{\"page\":3}",)"
              R"("name":"go_to_page"},"id":"c1","type":"function"}]},)"
              R"({"content":"Navigated to page 3.","role":"tool","tool_call_id":"c1"}],"model":"gpt-oss:120b-cloud",)"
              R"("tools":[{"function":{"description":"Go to a \"page\".","name":"go_to_page",)"
              R"("parameters":{"properties":{"page":{"type":"integer"}},"required":["page"],"type":"object"}},)"
              R"("type":"function"}]})");
}

TEST_F(RotatingAIProviderTest, TriesEachKeyOnceFromTheOneOfTheHour) {
    addKeys({QStringLiteral("O0"), QStringLiteral("O1"), QStringLiteral("O2")}, {QStringLiteral("G0")});
    const std::vector<std::string> inOrder = {"/ollama Bearer O0 gpt-oss:120b-cloud", "/groq Bearer G0 llama3-70b-8192",
                                              "/ollama Bearer O1 gpt-oss:120b-cloud",
                                              "/ollama Bearer O2 gpt-oss:120b-cloud"};
    std::vector<std::string> expected;
    const QByteArray challenge = "WWW-Authenticate: Basic realm=\"keys\"\r\n";
    for (const qint64 hour : {0, 5}) {
        m_now = hour * 3600 + 3599;
        m_server.enqueue(LoopbackServer::json(401, "{}"));
        m_server.enqueue(LoopbackServer::json(429, R"({"error":"slow down"})"));
        m_server.enqueue(LoopbackServer::json(401, "{}", challenge));
        m_server.enqueue(LoopbackServer::json(429, R"({"error":{"message":"secret"}})"));
        const auto outcome = ask();
        EXPECT_EQ(outcome.sentence(), "API error (429): Ollama Cloud key rejected or rate-limited") << hour;
        for (size_t i = 0; i < inOrder.size(); ++i)
            expected.push_back(inOrder[(static_cast<size_t>(hour) + i) % inOrder.size()]);
        EXPECT_EQ(attempts(), expected);
    }

    m_now = 0;
    m_server.enqueue(LoopbackServer::json(401, "{}"));
    m_server.enqueue(LoopbackServer::json(200, answer));
    EXPECT_TRUE(ask().value);
    EXPECT_EQ(attempts().size(), expected.size() + 2) << "the keys after the one that worked are left alone";
}

TEST_F(RotatingAIProviderTest, NamesTheModelsOfEachPreference) {
    addKeys({QStringLiteral("O")}, {QStringLiteral("G")});
    for (const AIModelPreferenceInfo& each : allAIModelPreferences()) {
        m_server.enqueue(LoopbackServer::json(401, "{}"));
        m_server.enqueue(LoopbackServer::json(429, "{}"));
        EXPECT_EQ(ask(each.preference).sentence(), "API error (429): Groq key rejected or rate-limited");
    }
    EXPECT_EQ(attempts(),
              (std::vector<std::string>{"/ollama Bearer O gpt-oss:120b-cloud", "/groq Bearer G llama3-70b-8192",
                                        "/ollama Bearer O gpt-oss:70b-cloud", "/groq Bearer G llama-3.1-8b-instant",
                                        "/ollama Bearer O gpt-oss:8b-cloud", "/groq Bearer G llama3-8b-8192"}));
}

TEST_F(RotatingAIProviderTest, StopsAtAnyOtherFailure) {
    addKeys({QStringLiteral("sk-first"), QStringLiteral("sk-second")}, {});
    const struct {
        LoopbackServer::Reply reply;
        const char* sentence;
    } cases[] = {
        {LoopbackServer::json(500, R"({"error":{"message":"Broken"}})"), "API error (500): Broken"},
        {LoopbackServer::json(503, "{}"), "API error (503): Unknown error"},
        {LoopbackServer::json(403, R"({"error":"Bad key sk-first!"})"), "API error (403): Bad key …!"},
        {LoopbackServer::json(200, "{}"), "Received an unexpected response from the AI provider."},
        {LoopbackServer::json(401, "<html>"), "The AI service sent an answer that Quillo can't read (illegal value)."},
    };
    size_t count = 0;
    for (const auto& each : cases) {
        m_server.enqueue(each.reply);
        EXPECT_EQ(ask().sentence(), each.sentence);
        EXPECT_EQ(m_server.requests().size(), ++count);
    }
}

TEST_F(RotatingAIProviderTest, HidesKeysInWhatTheServiceSaysAndNoOtherWords) {
    const struct {
        QString key;
        const char* message;
        const char* sentence;
    } cases[] = {
        {QStringLiteral("a"), "Bad gateway a", "API error (502): Bad gateway a"},
        {QStringLiteral("gateway"), "Bad gateway", "API error (502): Bad gateway"},
        {QStringLiteral(" \t "), "Bad \t gate", "API error (502): Bad \t gate"},
        {QStringLiteral(" sk-01234567 "), "No 'sk-01234567', no xsk-01234567x", "API error (502): No '…', no x…x"},
        {QStringLiteral("sk-0123\r\n4567"), "No sk-01234567", "API error (502): No …"},
    };
    for (const auto& each : cases) {
        APIKeyStore::clear(m_defaults, APIProviderKind::ollama);
        addKeys({each.key}, {});
        const QJsonObject body{{QStringLiteral("error"), QString::fromUtf8(each.message)}};
        m_server.enqueue(LoopbackServer::json(502, QJsonDocument(body).toJson()));
        EXPECT_EQ(ask().sentence(), each.sentence);
    }
}

TEST_F(RotatingAIProviderTest, ReadsKeysAndAddressAtEachQuestion) {
    const auto outcome = ask();
    EXPECT_TRUE(outcome.threw<AIProviderError>());
    EXPECT_EQ(outcome.sentence(), "Add your Ollama Cloud or Groq API key in Quillo > Settings… to use Ask.");

    addKeys({QStringLiteral(" late\r\n")}, {});
    APIKeyStore::saveURL(m_defaults, m_server.url(QStringLiteral("/other")).toString());
    m_server.enqueue(LoopbackServer::json(200, answer));
    EXPECT_TRUE(ask().value);
    EXPECT_EQ(attempts(), std::vector<std::string>{"/other Bearer  late gpt-oss:120b-cloud"})
        << "a line break copied with the key ends no header";
}

TEST_F(RotatingAIProviderTest, AsksTheServicesThemselvesByDefault) {
    // A proxy hears the name of the host, and lets nobody through.
    const QUrl proxy = m_server.url({});
    QNetworkProxy::setApplicationProxy({QNetworkProxy::HttpProxy, proxy.host(), static_cast<quint16>(proxy.port())});
    const auto reset = qScopeGuard([] { QNetworkProxy::setApplicationProxy(QNetworkProxy::NoProxy); });
    const QByteArray refusal = "HTTP/1.1 403 Forbidden\r\nContent-Length: 0\r\n\r\n";
    addKeys({QStringLiteral("O")}, {});
    for (const QString& invalid : {QString(), QStringLiteral("not an address"), QStringLiteral("https://[broken/v1")}) {
        APIKeyStore::saveURL(m_defaults, invalid);
        m_server.enqueue(LoopbackServer::bytes(refusal));
        EXPECT_FALSE(ask().value);
        EXPECT_EQ(text(m_server.requests().back().requestLine()), "CONNECT ollama.com:443 HTTP/1.1")
            << invalid.toStdString();
    }
    EXPECT_EQ(QUrl(APIKeyStore::defaultURL()).path(), QStringLiteral("/v1/chat/completions"));

    APIKeyStore::clear(m_defaults, APIProviderKind::ollama);
    addKeys({}, {QStringLiteral("G")});
    RotatingAIProvider provider(m_defaults);
    m_server.enqueue(LoopbackServer::bytes(refusal));
    EXPECT_FALSE(outcomeOf(provider.send({}, {}, {}, AIModelPreference::fast)).value);
    EXPECT_EQ(text(m_server.requests().back().requestLine()), "CONNECT api.groq.com:443 HTTP/1.1");
    EXPECT_EQ(RotatingAIProvider::defaultGroqEndpoint().path(), QStringLiteral("/openai/v1/chat/completions"));
    for (const auto& request : m_server.requests())
        EXPECT_TRUE(request.header("Authorization").isNull()) << "a proxy gets no key";
}
