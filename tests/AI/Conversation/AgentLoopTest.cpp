// Questions that go over a real connection.

#include "AssistantTest.h"
#include "BackendAIProvider.h"
#include "ChatHistoryStore.h"
#include "LoopbackServer.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QPointer>
#include <QTcpSocket>

namespace {

QByteArray completion(const QJsonObject& message, const QString& finishReason) {
    const QJsonObject choice{{QStringLiteral("message"), message}, {QStringLiteral("finish_reason"), finishReason}};
    return QJsonDocument(QJsonObject{{QStringLiteral("choices"), QJsonArray{choice}}}).toJson();
}

QByteArray answer(const QString& text) {
    return completion({{QStringLiteral("content"), text}}, QStringLiteral("stop"));
}

QByteArray toolCall(const QString& name, const QString& arguments) {
    const QJsonObject function{{QStringLiteral("name"), name}, {QStringLiteral("arguments"), arguments}};
    return completion(
        {{QStringLiteral("tool_calls"), QJsonArray{QJsonObject{{QStringLiteral("id"), QStringLiteral("c")},
                                                               {QStringLiteral("function"), function}}}}},
        QStringLiteral("tool_calls"));
}

/// Asks in a conversation that has its title, so that every request is one of the question's.
class AgentLoopTest : public AssistantTest {
protected:
    AgentLoopTest() {
        ChatSession session;
        session.title = QStringLiteral("Titled");
        ChatHistoryStore::save({session}, m_path);
        m_viewModel = AssistantViewModel::create(
            context(), std::make_shared<BackendAIProvider>(m_server.url(QStringLiteral("/api/v1/chat/completions"))));
    }

    void ask() {
        m_viewModel->setDraft(QStringLiteral("where is the dog?"));
        m_viewModel->submit();
    }
    [[nodiscard]] QJsonArray sentMessages(std::size_t request) const {
        return QJsonDocument::fromJson(m_server.requests().at(request).body)[u"messages"].toArray();
    }
    [[nodiscard]] QStringList storedTexts() const {
        QStringList list;
        const std::vector<ChatSession> sessions = ChatHistoryStore::load(m_path);
        for (const AssistantTurn& turn : sessions.at(0).turns)
            list.append(turn.text);
        return list;
    }

    LoopbackServer m_server;
    std::shared_ptr<AssistantViewModel> m_viewModel;
};

} // namespace

TEST_F(AgentLoopTest, AnswersAQuestionByReadingTheDocument) {
    m_server.enqueue(
        LoopbackServer::json(200, toolCall(QStringLiteral("search_document"), QStringLiteral("{\"query\": \"dog\"}"))));
    m_server.enqueue(
        LoopbackServer::json(200, toolCall(QStringLiteral("go_to_page"), QStringLiteral("{\"page\": \"three\"}"))));
    m_server.enqueue(
        LoopbackServer::json(200, toolCall(QStringLiteral("go_to_page"), QStringLiteral("{\"page\": 3}"))));
    m_server.enqueue(LoopbackServer::json(200, answer(QStringLiteral("On page 3."))));
    ask();
    ASSERT_TRUE(finish(*m_viewModel));
    EXPECT_EQ(storedTexts(), QStringList({QStringLiteral("where is the dog?"), QStringLiteral("On page 3.")}));
    EXPECT_EQ(m_coordinator->currentPageIndex(), 2);
    ASSERT_EQ(m_server.requests().size(), 4U);
    const QJsonArray messages = sentMessages(3);
    ASSERT_EQ(messages.size(), 8);
    EXPECT_EQ(messages[3][u"content"].toString(), QStringLiteral("Page 3: …about the lazy dog…"));
    EXPECT_EQ(messages[5][u"content"].toString(), QStringLiteral("Missing or invalid 'page' argument."));
    EXPECT_EQ(messages[7][u"content"].toString(), QStringLiteral("Navigated to page 3."));
    EXPECT_EQ(messages[7][u"tool_call_id"].toString(), QStringLiteral("c"));
}

TEST_F(AgentLoopTest, ShowsWhatTheServiceSaysWhenItRefuses) {
    m_server.enqueue(LoopbackServer::json(200, toolCall(QStringLiteral("get_document_text"), QStringLiteral("{}"))));
    m_server.enqueue(LoopbackServer::json(503, R"({"error":{"message":"come back later"}})"));
    ask();
    ASSERT_TRUE(finish(*m_viewModel));
    EXPECT_EQ(storedTexts().last(), QStringLiteral("API error (503): come back later"));
    m_server.enqueue(LoopbackServer::json(200, answer(QStringLiteral("Page 3."))));
    ask();
    ASSERT_TRUE(finish(*m_viewModel));
    EXPECT_EQ(storedTexts().last(), QStringLiteral("Page 3."));
    EXPECT_EQ(sentMessages(2).size(), 5) << "system, question, call, result, question";
}

TEST_F(AgentLoopTest, FinishesAndSavesAfterTheWindowWasClosed) {
    QPointer<QTcpSocket> connection;
    m_server.enqueue([&connection](QTcpSocket& socket) { connection = &socket; });
    m_server.enqueue(LoopbackServer::json(
        200, toolCall(QStringLiteral("add_note"), QStringLiteral("{\"page\": 1, \"text\": \"x\"}"))));
    m_server.enqueue(LoopbackServer::json(200, answer(QStringLiteral("late"))));
    ask();
    ASSERT_TRUE(QTest::qWaitFor([&connection] { return connection; }, 10'000));
    const std::weak_ptr<AssistantViewModel> viewModel = m_viewModel;
    m_viewModel.reset();
    closeWindow();
    LoopbackServer::json(200, toolCall(QStringLiteral("get_page_text"), QStringLiteral("{}")))(*connection);
    ASSERT_TRUE(QTest::qWaitFor([&viewModel] { return viewModel.expired(); }, 10'000));
    EXPECT_EQ(storedTexts(), QStringList({QStringLiteral("where is the dog?"), QStringLiteral("late")}));
    const QJsonArray messages = sentMessages(2);
    EXPECT_EQ(messages[3][u"content"].toString(), QStringLiteral("No page is currently open to use as \"this page\"."));
    EXPECT_EQ(messages[5][u"content"].toString(), QStringLiteral("Viewer is not available."));
}
