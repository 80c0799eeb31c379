#include "AssistantViewModel.h"

#include "AssistantTest.h"
#include "ChatHistoryStore.h"
#include "PDFPage.h"
#include "SystemPrompts.h"

#include <QSignalSpy>

namespace {

using Role = AssistantTurn::Role;

class AssistantViewModelTest : public AssistantTest {
protected:
    std::shared_ptr<AssistantViewModel> open() { return AssistantViewModel::create(context(), m_provider); }
    std::shared_ptr<AssistantViewModel> openUnsaved() {
        return AssistantViewModel::create(AssistantContext{m_document, m_coordinator.get(), {}}, m_provider);
    }
    /// Asks and waits for the end of the run.
    static void ask(AssistantViewModel& viewModel, const QString& question) {
        viewModel.setDraft(question);
        viewModel.submit();
        EXPECT_TRUE(finish(viewModel));
    }
    [[nodiscard]] std::vector<ChatSession> stored() const { return ChatHistoryStore::load(m_path); }
    [[nodiscard]] QUrl file(const QString& name, const QByteArray& content) const {
        QFile written(m_folder.filePath(name));
        EXPECT_TRUE(written.open(QIODevice::WriteOnly));
        written.write(content);
        return QUrl::fromLocalFile(written.fileName());
    }

    std::shared_ptr<ScriptedProvider> m_provider = std::make_shared<ScriptedProvider>();
};

QStringList texts(const std::vector<AssistantTurn>& turns) {
    QStringList list;
    for (const AssistantTurn& turn : turns)
        list.append(AssistantTurn::rawValue(turn.role) + u": "_qs + turn.text);
    return list;
}

QStringList titles(const std::vector<ChatSession>& sessions) {
    QStringList list;
    for (const ChatSession& session : sessions)
        list.append(session.title);
    return list;
}

AIMessage assistantText(const QString& text) {
    return {AIRole::assistant, {AIContentPart::text(text)}};
}

ChatSession storedSession(const QString& title, int minute, const std::vector<AssistantTurn>& turns = {}) {
    return {QUuid::createUuid(), title, turns, QDateTime(QDate(2024, 1, 1), QTime(12, minute), Qt::UTC)};
}

} // namespace

TEST_F(AssistantViewModelTest, SendsOnlyWhatThereIsAndOneQuestionAtATime) {
    const auto viewModel = open();
    EXPECT_EQ(viewModel->documentName(), u"Some.Book"_qs);
    EXPECT_EQ(titles(viewModel->sessions()), QStringList(u"New Chat"_qs));
    viewModel->setDraft(u" \n "_qs);
    viewModel->submit();
    EXPECT_EQ(viewModel->draft(), u" \n "_qs);
    EXPECT_TRUE(viewModel->turns().empty());

    m_provider->reply(ScriptedProvider::answer({}));
    viewModel->setDraft(u"  why? \n"_qs);
    viewModel->submit();
    EXPECT_TRUE(viewModel->isRunning());
    EXPECT_EQ(texts(viewModel->turns()), QStringList(u"user: why?"_qs));
    EXPECT_EQ(stored().front().turns, viewModel->turns()) << "the question is safe before there is an answer";
    viewModel->setDraft(u"next"_qs);
    const QUuid current = viewModel->currentSessionID();
    viewModel->submit();
    viewModel->startNewConversation();
    viewModel->switchToSession(QUuid::createUuid());
    EXPECT_EQ(viewModel->draft(), u"next"_qs);
    EXPECT_EQ(viewModel->currentSessionID(), current);
    ASSERT_TRUE(finish(*viewModel));
    EXPECT_EQ(texts(viewModel->turns()), QStringList({u"user: why?"_qs, u"assistant: Done."_qs}));
    ASSERT_EQ(m_provider->calls.size(), 1U);
    EXPECT_EQ(m_provider->calls[0].history, std::vector{AIMessage::userText(u"why?"_qs)});
    EXPECT_EQ(m_provider->calls[0].system, SystemPrompts::pdf());
    EXPECT_EQ(m_provider->calls[0].tools.size(), 7U);
    EXPECT_EQ(viewModel->draft(), u"next"_qs);
    EXPECT_EQ(stored().front().turns, viewModel->turns());
}

TEST_F(AssistantViewModelTest, RunsToolsAndTellsTheModelTheirResults) {
    const auto viewModel = open();
    const AIAgentTurn calls = ScriptedProvider::toolUse({{u"1"_qs, u"search_document"_qs, {{u"query"_qs, u"dog"_qs}}},
                                                         {u"2"_qs, u"fly_%1"_qs, {}},
                                                         {u"3"_qs, u"go_to_page"_qs, {{u"page"_qs, 3}}}});
    m_provider->reply(calls);
    m_provider->reply(ScriptedProvider::toolUse({}));
    m_provider->replies.push_back([&viewModel] {
        viewModel->setModelPreference(AIModelPreference::balanced);
        return ScriptedProvider::toolUse({});
    });
    m_provider->reply(ScriptedProvider::answer(u"there"_qs));
    ask(*viewModel, u"where is the dog?"_qs);
    EXPECT_EQ(texts(viewModel->turns()), QStringList({u"user: where is the dog?"_qs, u"assistant: there"_qs}));
    EXPECT_EQ(m_coordinator->currentPageIndex(), 2);

    const AIMessage nothing{AIRole::assistant, {}};
    const AIMessage noResults{AIRole::user, {}};
    const std::vector<AIMessage> expected{
        AIMessage::userText(u"where is the dog?"_qs),
        calls.message,
        {AIRole::user,
         {AIContentPart::toolResult(u"1"_qs, u"Page 3: …about the lazy dog…"_qs),
          AIContentPart::toolResult(u"2"_qs, u"Unknown tool 'fly_%1'."_qs),
          AIContentPart::toolResult(u"3"_qs, u"Navigated to page 3."_qs)}},
        nothing,
        noResults,
        nothing,
        noResults,
    };
    ASSERT_EQ(m_provider->calls.size(), 4U);
    EXPECT_EQ(m_provider->calls[3].history, expected);
    EXPECT_EQ(m_provider->calls[2].preference, AIModelPreference::highPerformance);
    EXPECT_EQ(m_provider->calls[3].preference, AIModelPreference::balanced);
}

TEST_F(AssistantViewModelTest, GivesUpAfterTenStepsAndAfterAFailure) {
    const auto viewModel = open();
    for (int i = 1; i <= 11; ++i) {
        m_provider->reply(ScriptedProvider::toolUse(
            {{u"id"_qs, u"add_note"_qs, {{u"page"_qs, 2}, {u"text"_qs, QString::number(i)}}}}));
    }
    ask(*viewModel, u"loop"_qs);
    const QString tooMany = u"error: That took too many steps to resolve — try rephrasing your request."_qs;
    EXPECT_EQ(texts(viewModel->turns()), QStringList({u"user: loop"_qs, tooMany}));
    EXPECT_EQ(m_provider->calls.size(), 10U);
    EXPECT_EQ(m_document->page(1)->annotations().size(), 10U) << "the tools of the tenth step ran";
    EXPECT_EQ(texts(stored().front().turns).last(), tooMany);

    m_provider->replies.clear();
    m_provider->replies.push_back([]() -> AIAgentTurn { throw std::runtime_error("Zu spät."); });
    ask(*viewModel, u"again"_qs);
    EXPECT_EQ(texts(viewModel->turns()).last(), u"error: Zu spät."_qs);
    m_provider->reply(ScriptedProvider::answer(u"ok"_qs));
    ask(*viewModel, u"and again"_qs);
    const std::vector<AIMessage>& history = m_provider->calls.back().history;
    ASSERT_EQ(history.size(), 23U);
    EXPECT_EQ(history[21], AIMessage::userText(u"again"_qs));
    EXPECT_EQ(history[22], AIMessage::userText(u"and again"_qs));
}

TEST_F(AssistantViewModelTest, SendsTheTextOfAnAttachment) {
    PdfFixture fixture;
    for (int i = 1; i <= 11; ++i)
        fixture.addPage(i == 2 ? QStringList() : QStringList(u"page %1"_qs.arg(i)));
    const QUrl pdf = file(u"Notes.PDF"_qs, fixture.bytes());
    const auto viewModel = open();
    for (const QUrl& useless : {file(u"blank.txt"_qs, " \n "), file(u"latin.txt"_qs, "caf\xe9"),
                                file(u"broken.pdf"_qs, "text"), QUrl::fromLocalFile(m_folder.path()), QUrl()}) {
        viewModel->attach(useless);
        EXPECT_FALSE(viewModel->attachmentName()) << qPrintable(useless.toString());
    }
    viewModel->onChooseFile = [&pdf](const QStringList&, const std::function<void(const QUrl&)>& chosen) {
        chosen(pdf);
    };
    viewModel->attachFile();
    EXPECT_EQ(viewModel->attachmentName(), u"Notes.PDF"_qs);
    const QString pages = u"page 1\npage 3\npage 4\npage 5\npage 6\npage 7\npage 8\npage 9\npage 10\n"_qs;
    EXPECT_EQ(viewModel->attachmentContent(), pages);
    m_provider->reply(ScriptedProvider::answer(u"ok"_qs));
    viewModel->submit();
    EXPECT_FALSE(viewModel->attachmentName() || viewModel->attachmentContent());
    ASSERT_TRUE(finish(*viewModel));
    viewModel->attach(file(u"a.txt"_qs, "%1 ünder\n"));
    m_provider->reply(ScriptedProvider::answer(u"ok"_qs));
    ask(*viewModel, u"compare %2"_qs);

    EXPECT_EQ(texts(viewModel->turns()), QStringList({u"user: Attached file: Notes.PDF"_qs, u"assistant: ok"_qs,
                                                      u"user: compare %2"_qs, u"assistant: ok"_qs}));
    const std::vector<AIMessage>& history = m_provider->calls.at(1).history;
    EXPECT_EQ(history[0], AIMessage::userText(u"Context from attached file 'Notes.PDF':\n---\n"_qs + pages +
                                              u"\n---\n\nSummarize or explain this attached file."_qs));
    EXPECT_EQ(history[2],
              AIMessage::userText(u"Context from attached file 'a.txt':\n---\n%1 ünder\n\n---\n\ncompare %2"_qs));
}

TEST_F(AssistantViewModelTest, TitlesAConversationOnce) {
    const auto viewModel = open();
    m_provider->title = u" \n"_qs;
    m_provider->reply(ScriptedProvider::answer(u"ok"_qs));
    ask(*viewModel, u"first\nquestion"_qs);
    EXPECT_EQ(titles(viewModel->sessions()), QStringList(u"first question"_qs));
    viewModel->startNewConversation();
    m_provider->title = u" A Fine Title\n"_qs;
    for (const QString& question : {u"second"_qs, u"third"_qs}) {
        m_provider->reply(ScriptedProvider::answer(u"ok"_qs));
        ask(*viewModel, question);
    }
    EXPECT_EQ(titles(viewModel->sessions()), QStringList({u"A Fine Title"_qs, u"first question"_qs}));
    EXPECT_EQ(titles(stored()), titles(viewModel->sessions()));
    ASSERT_EQ(m_provider->titleCalls.size(), 2U);
    EXPECT_EQ(m_provider->titleCalls[1].preference, AIModelPreference::fast);
    EXPECT_EQ(m_provider->titleCalls[1].history,
              std::vector{AIMessage::userText(u"Write a short chat title (3 to 6 words, no quotes, no trailing "
                                              u"punctuation) summarizing this message:\n\nsecond"_qs)});
    EXPECT_EQ(m_provider->titleCalls[1].system,
              u"You write short, punchy chat titles and respond with the title only."_qs);

    viewModel->startNewConversation();
    viewModel->setDraft(u"soon gone"_qs);
    viewModel->submit();
    viewModel->deleteSession(viewModel->currentSessionID());
    ASSERT_TRUE(finish(*viewModel));
    QTest::qWait(20);
    EXPECT_FALSE(titles(viewModel->sessions()).contains(u"soon gone"_qs)) << "a late title brings nothing back";
}

TEST_F(AssistantViewModelTest, TakesUpTheLatestConversation) {
    const std::vector<AssistantTurn> turns{{QUuid::createUuid(), Role::user, u"q"_qs},
                                           {QUuid::createUuid(), Role::error, u"e"_qs},
                                           {QUuid::createUuid(), Role::assistant, u"a"_qs}};
    const std::vector<ChatSession> saved{storedSession(u"old"_qs, 1), storedSession(u"new"_qs, 3, turns),
                                         storedSession(u"also new"_qs, 3), storedSession(u"middle"_qs, 2)};
    ChatHistoryStore::save(saved, m_path);
    const auto viewModel = open();
    EXPECT_EQ(titles(viewModel->sessions()), QStringList({u"new"_qs, u"also new"_qs, u"middle"_qs, u"old"_qs}));
    EXPECT_EQ(viewModel->currentSessionID(), saved[1].id);
    EXPECT_EQ(viewModel->turns(), turns);
    m_provider->reply(ScriptedProvider::answer(u"ok"_qs));
    ask(*viewModel, u"more"_qs);
    EXPECT_EQ(m_provider->calls[0].history,
              std::vector({AIMessage::userText(u"q"_qs), assistantText(u"a"_qs), AIMessage::userText(u"more"_qs)}));

    viewModel->setDraft(u"kept"_qs);
    viewModel->switchToSession(saved[3].id);
    EXPECT_TRUE(viewModel->turns().empty());
    EXPECT_EQ(viewModel->draft(), u"kept"_qs);
    viewModel->deleteSession(saved[3].id);
    EXPECT_EQ(viewModel->currentSessionID(), saved[1].id) << "the first of those that are left";
    EXPECT_EQ(viewModel->turns().size(), 5U);
    QSignalSpy changes(viewModel.get(), &AssistantViewModel::sessionsChanged);
    for (const QUuid& id : {saved[0].id, saved[1].id, saved[2].id})
        viewModel->deleteSession(id);
    EXPECT_EQ(changes.count(), 3);
    EXPECT_EQ(titles(stored()), QStringList(u"New Chat"_qs));
    EXPECT_EQ(stored().front().id, viewModel->currentSessionID());
    EXPECT_TRUE(viewModel->turns().empty());
}

TEST_F(AssistantViewModelTest, WritesNothingForADocumentWithoutAFile) {
    const auto viewModel = openUnsaved();
    EXPECT_EQ(viewModel->documentName(), u"Untitled PDF"_qs);
    m_provider->reply(ScriptedProvider::answer(u"ok"_qs));
    ask(*viewModel, u"hello"_qs);
    EXPECT_EQ(viewModel->turns().size(), 2U);
    EXPECT_EQ(titles(openUnsaved()->sessions()), QStringList(u"New Chat"_qs));
    EXPECT_TRUE(ChatHistoryStore::load(QString()).empty());
}
