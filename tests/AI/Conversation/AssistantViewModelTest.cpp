#include "AssistantViewModel.h"

#include "AIProviderError.h"
#include "AssistantTest.h"
#include "ChatHistoryStore.h"
#include "PDFPage.h"
#include "SystemPrompts.h"

#include <QScopeGuard>
#include <QSignalSpy>
#include <QTest>

#include <sys/stat.h>

namespace {

using Role = AssistantTurn::Role;

class AssistantViewModelTest : public AssistantTest {
protected:
    std::shared_ptr<AssistantViewModel> open() { return AssistantViewModel::create(context(), m_provider); }
    static void submit(AssistantViewModel& viewModel, const char* question) {
        viewModel.setDraft(QString::fromUtf8(question));
        viewModel.submit();
    }
    /// Asks and waits for the end of the run.
    static void ask(AssistantViewModel& viewModel, const char* question) {
        submit(viewModel, question);
        EXPECT_TRUE(finish(viewModel));
    }
    /// Asks what is answered with "ok".
    void askWell(AssistantViewModel& viewModel, const char* question) {
        m_provider->reply("ok");
        ask(viewModel, question);
    }
    /// Waits until no file is read any more.
    static bool hasRead(AssistantViewModel& viewModel) {
        return QTest::qWaitFor([&viewModel] { return !viewModel.nameOfFileBeingRead(); });
    }
    [[nodiscard]] std::vector<ChatSession> stored() const { return ChatHistoryStore::load(m_path); }

    std::shared_ptr<ScriptedProvider> m_provider = std::make_shared<ScriptedProvider>();
};

std::string texts(const std::vector<AssistantTurn>& turns) {
    QStringList list;
    for (const AssistantTurn& turn : turns)
        list.append(AssistantTurn::rawValue(turn.role) + QStringLiteral(": ") + turn.text);
    return list.join(u'|').toStdString();
}

std::string titles(const std::vector<ChatSession>& sessions) {
    QStringList list;
    for (const ChatSession& session : sessions)
        list.append(session.title);
    return list.join(u'|').toStdString();
}

AIMessage userText(const char* text) {
    return AIMessage::userText(QString::fromUtf8(text));
}

AIContentPart result(const char* id, const char* text) {
    return AIContentPart::toolResult(QLatin1String(id), QString::fromUtf8(text));
}

ChatSession storedSession(const char* title, int minute, const std::vector<AssistantTurn>& turns = {}) {
    const QDateTime time(QDate(2024, 1, 1), QTime(12, minute), Qt::UTC);
    return {QUuid::createUuid(), QString::fromLatin1(title), turns, time};
}

} // namespace

TEST_F(AssistantViewModelTest, SendsOnlyWhatThereIsAndOneQuestionAtATime) {
    const auto viewModel = open();
    EXPECT_EQ(viewModel->documentName(), QStringLiteral("Some.Book"));
    submit(*viewModel, " \n ");
    EXPECT_TRUE(viewModel->turns().empty());

    m_provider->reply("");
    submit(*viewModel, "  why? \n");
    EXPECT_TRUE(viewModel->isRunning());
    EXPECT_EQ(texts(viewModel->turns()), "user: why?");
    EXPECT_EQ(stored().front().turns, viewModel->turns()) << "the question is safe before there is an answer";
    submit(*viewModel, "next");
    viewModel->startNewConversation();
    viewModel->switchToSession(QUuid::createUuid());
    ASSERT_TRUE(finish(*viewModel));
    EXPECT_EQ(texts(viewModel->turns()), "user: why?|assistant: Done.");
    ASSERT_EQ(m_provider->calls.size(), 1U);
    EXPECT_EQ(m_provider->calls[0].history, std::vector{userText("why?")});
    EXPECT_EQ(m_provider->calls[0].system, SystemPrompts::pdf());
    EXPECT_EQ(m_provider->calls[0].tools.size(), 7U);
    EXPECT_EQ(stored().front().turns, viewModel->turns());

    const auto ofText =
        AssistantViewModel::create(TextOnlyAssistantContext{QUrl(), QStringLiteral("words")}, m_provider);
    askWell(*ofText, "what?");
    EXPECT_EQ(m_provider->calls.back().system, SystemPrompts::textOnly());
    EXPECT_EQ(m_provider->calls.back().tools.size(), 2U);
}

TEST_F(AssistantViewModelTest, RunsToolsAndTellsTheModelTheirResults) {
    const auto viewModel = open();
    const AIAgentTurn calls = ScriptedProvider::toolUse(
        {{"search_document", R"({"query":"dog"})"}, {"fly_%1", "{}"}, {"go_to_page", R"({"page":3})"}});
    m_provider->reply(calls);
    m_provider->replies.push_back([&viewModel] {
        viewModel->setModelPreference(AIModelPreference::balanced);
        return ScriptedProvider::toolUse({});
    });
    m_provider->reply("there");
    ask(*viewModel, "where is the dog?");
    EXPECT_EQ(texts(viewModel->turns()), "user: where is the dog?|assistant: there");
    EXPECT_EQ(m_coordinator->currentPageIndex(), 2);
    const std::vector<AIMessage> expected{
        userText("where is the dog?"),
        calls.message,
        {AIRole::user,
         {result("1", "Page 3: …about the lazy dog…"), result("2", "Unknown tool 'fly_%1'."),
          result("3", "Navigated to page 3.")}},
        {AIRole::assistant, {}},
        {AIRole::user, {}}};
    ASSERT_EQ(m_provider->calls.size(), 3U);
    EXPECT_EQ(m_provider->calls[2].history, expected);
    EXPECT_EQ(m_provider->calls[1].preference, AIModelPreference::highPerformance);
    EXPECT_EQ(m_provider->calls[2].preference, AIModelPreference::balanced);

    const auto failing = QObject::connect(m_coordinator.get(), &PDFViewCoordinator::currentPageIndexChanged,
                                          [] { throw std::runtime_error("no memory"); });
    const auto reset = qScopeGuard([&failing] { QObject::disconnect(failing); });
    m_provider->reply(ScriptedProvider::toolUse({{"go_to_page", R"({"page":1})"}}));
    m_provider->reply("no such page");
    ask(*viewModel, "go there");
    EXPECT_TRUE(texts(viewModel->turns()).ends_with("|assistant: no such page"));
    EXPECT_EQ(m_provider->calls.back().history.back().parts.front(),
              result("1", "The tool 'go_to_page' failed. Go on without it."));
}

TEST_F(AssistantViewModelTest, GivesUpAfterTenStepsAndAfterAFailure) {
    const auto viewModel = open();
    for (int i = 1; i <= 11; ++i)
        m_provider->reply(ScriptedProvider::toolUse({{"add_note", R"({"page":2,"text":"again"})"}}));
    ask(*viewModel, "loop");
    const std::string tooMany = "user: loop|error: That took too many steps to resolve — try rephrasing your request.";
    EXPECT_EQ(m_provider->calls.size(), 10U);
    EXPECT_EQ(m_document->page(1)->annotations().size(), 10U) << "the tools of the tenth step ran";
    EXPECT_EQ(texts(stored().front().turns), tooMany);

    m_provider->replies.clear();
    m_provider->replies.push_back(
        []() -> AIAgentTurn { throw AIProviderError::http(503, QStringLiteral("Zu spät.")); });
    ask(*viewModel, "again");
    EXPECT_EQ(texts(viewModel->turns()), tooMany + "|user: again|error: API error (503): Zu spät.");
    askWell(*viewModel, "and again");
    const std::vector<AIMessage>& history = m_provider->calls.back().history;
    EXPECT_EQ(history.size(), 23U) << "with the tools and the questions that failed";
}

TEST_F(AssistantViewModelTest, FinishesAndSavesAfterTheWindowWasClosed) {
    std::weak_ptr<AssistantViewModel> left;
    m_provider->replies.push_back([this] {
        closeWindow();
        return ScriptedProvider::toolUse({{"add_note", R"({"page":1,"text":"x"})"}});
    });
    m_provider->reply("late");
    {
        const auto viewModel = open();
        left = viewModel;
        submit(*viewModel, "where is the dog?");
    }
    ASSERT_TRUE(QTest::qWaitFor([&left] { return left.expired(); }, 10'000));
    EXPECT_EQ(texts(stored().front().turns), "user: where is the dog?|assistant: late");
    EXPECT_EQ(m_provider->calls.at(1).history.back().parts, std::vector{result("1", "Viewer is not available.")});
}

TEST_F(AssistantViewModelTest, GivesUpTheQuestionOfADeletedChat) {
    const auto viewModel = open();
    askWell(*viewModel, "kept");
    viewModel->startNewConversation();
    m_provider->reply(ScriptedProvider::toolUse({{"add_note", R"({"page":2,"text":"late"})"}}));
    submit(*viewModel, "soon gone");
    ASSERT_TRUE(QTest::qWaitFor([this] { return m_provider->calls.size() == 2; }, 10'000));
    viewModel->deleteSession(viewModel->currentSessionID());
    EXPECT_FALSE(viewModel->isRunning()) << "the next chat can be asked at once";
    askWell(*viewModel, "next");
    EXPECT_TRUE(m_document->page(1)->annotations().empty());
    EXPECT_EQ(texts(viewModel->turns()), "user: kept|assistant: ok|user: next|assistant: ok");
    EXPECT_EQ(stored().size(), 1U);
}

TEST_F(AssistantViewModelTest, SendsTheTextOfAnAttachment) {
    PdfFixture fixture;
    for (int i = 1; i <= 11; ++i)
        fixture.addPage(i == 2 ? QStringList() : QStringList(QStringLiteral("page %1").arg(i)));
    const QUrl pdf = write("Notes.PDF", fixture.bytes());
    QFile huge(write("huge.txt", {}).toLocalFile());
    ASSERT_TRUE(huge.resize(qint64(1) << 36)) << "which takes no room on the disk";
    QList<QUrl> useless{write("blank.txt", " \n "),           write("latin.txt", "caf\xe9"),
                        write("broken.pdf", "text"),          QUrl::fromLocalFile(huge.fileName()),
                        QUrl::fromLocalFile(m_folder.path()), QUrl()};
    for (const char* suffix : {"txt", "pdf"}) {
        const QString pipe = m_folder.filePath(QStringLiteral("pipe.") + QLatin1String(suffix));
        const QString endless = m_folder.filePath(QStringLiteral("endless.") + QLatin1String(suffix));
        ASSERT_EQ(mkfifo(qPrintable(pipe), 0600), 0); // from which nothing ever comes
        ASSERT_TRUE(QFile::link(QStringLiteral("/dev/zero"), endless));
        useless << QUrl::fromLocalFile(pipe) << QUrl::fromLocalFile(endless);
    }
    const auto viewModel = open();
    QSignalSpy refused(viewModel.get(), &AssistantViewModel::attachmentRefused);
    for (const QUrl& url : useless) {
        viewModel->attach(url);
        ASSERT_TRUE(hasRead(*viewModel));
        EXPECT_FALSE(viewModel->attachmentName()) << qPrintable(url.toString());
        EXPECT_EQ(refused.takeFirst().value(0).toString(), url.fileName()) << "and it is told";
    }
    viewModel->onChooseFile = [&pdf](const QStringList&, const std::function<void(const QUrl&)>& chosen) {
        chosen(pdf);
    };
    viewModel->attachFile();
    viewModel->submit();
    EXPECT_FALSE(viewModel->isRunning()) << "the file is to go with it";
    ASSERT_TRUE(hasRead(*viewModel));
    EXPECT_EQ(viewModel->attachmentName(), QStringLiteral("Notes.PDF"));
    const QString pages = QStringLiteral("page 1\npage 3\npage 4\npage 5\npage 6\npage 7\npage 8\npage 9\npage 10\n");
    EXPECT_EQ(viewModel->attachmentContent(), pages);
    m_provider->reply("ok");
    viewModel->submit();
    EXPECT_FALSE(viewModel->attachmentName() || viewModel->attachmentContent());
    ASSERT_TRUE(finish(*viewModel));
    viewModel->attach(pdf); // and the user thinks better of it
    viewModel->removeAttachment();
    viewModel->attach(pdf);
    viewModel->attach(write("a.txt", "%1 ünder\n"));
    ASSERT_TRUE(hasRead(*viewModel));
    askWell(*viewModel, "compare %2");
    EXPECT_EQ(texts(viewModel->turns()), "user: Attached file: Notes.PDF|assistant: ok|user: compare %2|assistant: ok");
    const std::vector<AIMessage>& history = m_provider->calls.at(1).history;
    EXPECT_EQ(history[0], AIMessage::userText(QStringLiteral("Context from attached file 'Notes.PDF':\n---\n") + pages +
                                              QStringLiteral("\n---\n\nSummarize or explain this attached file.")));
    EXPECT_EQ(history[2], userText("Context from attached file 'a.txt':\n---\n%1 ünder\n\n---\n\ncompare %2"));
}

TEST_F(AssistantViewModelTest, TitlesAConversationOnce) {
    const auto viewModel = open();
    m_provider->title = QStringLiteral(" \n");
    askWell(*viewModel, "first\nquestion");
    EXPECT_EQ(titles(viewModel->sessions()), "first question");
    viewModel->startNewConversation();
    m_provider->title = QStringLiteral(" A Fine Title\n");
    askWell(*viewModel, "second");
    askWell(*viewModel, "third");
    EXPECT_EQ(titles(viewModel->sessions()), "A Fine Title|first question");
    EXPECT_EQ(titles(stored()), titles(viewModel->sessions()));
    ASSERT_EQ(m_provider->titleCalls.size(), 2U);
    const ScriptedProvider::Call& call = m_provider->titleCalls[1];
    EXPECT_EQ(call.preference, AIModelPreference::fast);
    EXPECT_TRUE(call.history.at(0).parts.at(0).asText()->text.endsWith(QStringLiteral("message:\n\nsecond")));

    viewModel->startNewConversation();
    submit(*viewModel, "soon gone");
    viewModel->deleteSession(viewModel->currentSessionID());
    ASSERT_TRUE(finish(*viewModel));
    QTest::qWait(20);
    EXPECT_EQ(titles(viewModel->sessions()).find("soon gone"), std::string::npos) << "a late title brings nothing back";
}

TEST_F(AssistantViewModelTest, TakesUpTheLatestConversation) {
    const std::vector<AssistantTurn> turns{{QUuid::createUuid(), Role::user, QStringLiteral("q")},
                                           {QUuid::createUuid(), Role::error, QStringLiteral("e")},
                                           {QUuid::createUuid(), Role::assistant, QStringLiteral("a")}};
    const std::vector<ChatSession> saved{storedSession("old", 1), storedSession("new", 3, turns),
                                         storedSession("also new", 3), storedSession("middle", 2)};
    ChatHistoryStore::save(saved, m_path);
    const auto viewModel = open();
    EXPECT_EQ(titles(viewModel->sessions()), "new|also new|middle|old");
    EXPECT_EQ(viewModel->currentSessionID(), saved[1].id);
    EXPECT_EQ(viewModel->turns(), turns);
    askWell(*viewModel, "more");
    const AIMessage answered = ScriptedProvider::answer(QStringLiteral("a")).message;
    EXPECT_EQ(m_provider->calls[0].history, (std::vector{userText("q"), answered, userText("more")}));

    viewModel->switchToSession(saved[3].id);
    EXPECT_TRUE(viewModel->turns().empty());
    viewModel->deleteSession(saved[3].id);
    EXPECT_EQ(viewModel->currentSessionID(), saved[1].id) << "the first of those that are left";
    QSignalSpy changes(viewModel.get(), &AssistantViewModel::sessionsChanged);
    for (const QUuid& id : {saved[0].id, saved[1].id, saved[2].id})
        viewModel->deleteSession(id);
    EXPECT_EQ(changes.count(), 3);
    EXPECT_EQ(titles(stored()), "New Chat");
    EXPECT_EQ(stored().front().id, viewModel->currentSessionID());
}

TEST_F(AssistantViewModelTest, WritesNothingForADocumentWithoutAFile) {
    const AssistantContext unsaved{m_document, m_coordinator.get(), {}};
    const auto viewModel = AssistantViewModel::create(unsaved, m_provider);
    EXPECT_EQ(viewModel->documentName(), QStringLiteral("Untitled PDF"));
    askWell(*viewModel, "hello");
    EXPECT_TRUE(ChatHistoryStore::load(QString()).empty());
}
