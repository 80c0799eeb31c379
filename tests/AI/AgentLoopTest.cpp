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
    const QJsonObject choice{{u"message"_qs, message}, {u"finish_reason"_qs, finishReason}};
    return QJsonDocument(QJsonObject{{u"choices"_qs, QJsonArray{choice}}}).toJson();
}

QByteArray answer(const QString& text) {
    return completion({{u"content"_qs, text}}, u"stop"_qs);
}

QByteArray toolCall(const QString& name, const QString& arguments) {
    const QJsonObject function{{u"name"_qs, name}, {u"arguments"_qs, arguments}};
    return completion({{u"tool_calls"_qs, QJsonArray{QJsonObject{{u"id"_qs, u"c"_qs}, {u"function"_qs, function}}}}},
                      u"tool_calls"_qs);
}

/// Asks in a conversation that has its title, so that every request is one of the question's.
class AgentLoopTest : public AssistantTest {
protected:
    AgentLoopTest() {
        ChatSession session;
        session.title = u"Titled"_qs;
        ChatHistoryStore::save({session}, m_path);
        m_viewModel = AssistantViewModel::create(
            context(), std::make_shared<BackendAIProvider>(m_server.url(u"/api/v1/chat/completions"_qs)));
    }

    void ask() {
        m_viewModel->setDraft(u"where is the dog?"_qs);
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
    m_server.enqueue(LoopbackServer::json(200, toolCall(u"search_document"_qs, u"{\"query\": \"dog\"}"_qs)));
    m_server.enqueue(LoopbackServer::json(200, toolCall(u"go_to_page"_qs, u"{\"page\": \"three\"}"_qs)));
    m_server.enqueue(LoopbackServer::json(200, toolCall(u"go_to_page"_qs, u"{\"page\": 3}"_qs)));
    m_server.enqueue(LoopbackServer::json(200, answer(u"On page 3."_qs)));
    ask();
    ASSERT_TRUE(finish(*m_viewModel));
    EXPECT_EQ(storedTexts(), QStringList({u"where is the dog?"_qs, u"On page 3."_qs}));
    EXPECT_EQ(m_coordinator->currentPageIndex(), 2);
    ASSERT_EQ(m_server.requests().size(), 4U);
    const QJsonArray messages = sentMessages(3);
    ASSERT_EQ(messages.size(), 8);
    EXPECT_EQ(messages[3][u"content"].toString(), u"Page 3: …about the lazy dog…"_qs);
    EXPECT_EQ(messages[5][u"content"].toString(), u"Missing or invalid 'page' argument."_qs);
    EXPECT_EQ(messages[7][u"content"].toString(), u"Navigated to page 3."_qs);
    EXPECT_EQ(messages[7][u"tool_call_id"].toString(), u"c"_qs);
}

TEST_F(AgentLoopTest, ShowsWhatTheServiceSaysWhenItRefuses) {
    m_server.enqueue(LoopbackServer::json(200, toolCall(u"get_document_text"_qs, u"{}"_qs)));
    m_server.enqueue(LoopbackServer::json(503, R"({"error":{"message":"come back later"}})"));
    ask();
    ASSERT_TRUE(finish(*m_viewModel));
    EXPECT_EQ(storedTexts().last(), u"API error (503): come back later"_qs);
    m_server.enqueue(LoopbackServer::json(200, answer(u"Page 3."_qs)));
    ask();
    ASSERT_TRUE(finish(*m_viewModel));
    EXPECT_EQ(storedTexts().last(), u"Page 3."_qs);
    EXPECT_EQ(sentMessages(2).size(), 5) << "system, question, call, result, question";
}

TEST_F(AgentLoopTest, FinishesAndSavesAfterTheWindowWasClosed) {
    QPointer<QTcpSocket> connection;
    m_server.enqueue([&connection](QTcpSocket& socket) { connection = &socket; });
    m_server.enqueue(LoopbackServer::json(200, toolCall(u"add_note"_qs, u"{\"page\": 1, \"text\": \"x\"}"_qs)));
    m_server.enqueue(LoopbackServer::json(200, answer(u"late"_qs)));
    ask();
    ASSERT_TRUE(QTest::qWaitFor([&connection] { return connection; }, 10'000));
    const std::weak_ptr<AssistantViewModel> viewModel = m_viewModel;
    m_viewModel.reset();
    closeWindow();
    LoopbackServer::json(200, toolCall(u"get_page_text"_qs, u"{}"_qs))(*connection);
    ASSERT_TRUE(QTest::qWaitFor([&viewModel] { return viewModel.expired(); }, 10'000));
    EXPECT_EQ(storedTexts(), QStringList({u"where is the dog?"_qs, u"late"_qs}));
    const QJsonArray messages = sentMessages(2);
    EXPECT_EQ(messages[3][u"content"].toString(), u"No page is currently open to use as \"this page\"."_qs);
    EXPECT_EQ(messages[5][u"content"].toString(), u"Viewer is not available."_qs);
}
