#include "AssistantViewModel.h"

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
    std::shared_ptr<AssistantViewModel> openUnsaved() {
        return AssistantViewModel::create(AssistantContext{m_document, m_coordinator.get(), {}}, m_provider);
    }
    /// Asks and waits for the end of the run.
    static void ask(AssistantViewModel& viewModel, const QString& question) {
        viewModel.setDraft(question);
        viewModel.submit();
        EXPECT_TRUE(finish(viewModel));
    }
    /// Waits until no file is read any more.
    static bool hasRead(AssistantViewModel& viewModel) {
        return QTest::qWaitFor([&viewModel] { return !viewModel.nameOfFileBeingRead(); });
    }
    [[nodiscard]] std::vector<ChatSession> stored() const { return ChatHistoryStore::load(m_path); }
    [[nodiscard]] QUrl file(const QString& name, const QByteArray& content) const {
        QFile written(m_folder.filePath(name));
        EXPECT_TRUE(written.open(QIODevice::WriteOnly));
        written.write(content);
        return QUrl::fromLocalFile(written.fileName());
    }

    [[nodiscard]] QUrl at(const QString& name) const { return QUrl::fromLocalFile(m_folder.filePath(name)); }

    std::shared_ptr<ScriptedProvider> m_provider = std::make_shared<ScriptedProvider>();
};

QStringList texts(const std::vector<AssistantTurn>& turns) {
    QStringList list;
    for (const AssistantTurn& turn : turns)
        list.append(AssistantTurn::rawValue(turn.role) + QStringLiteral(": ") + turn.text);
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
    EXPECT_EQ(viewModel->documentName(), QStringLiteral("Some.Book"));
    EXPECT_EQ(titles(viewModel->sessions()), QStringList(QStringLiteral("New Chat")));
    viewModel->setDraft(QStringLiteral(" \n "));
    viewModel->submit();
    EXPECT_EQ(viewModel->draft(), QStringLiteral(" \n "));
    EXPECT_TRUE(viewModel->turns().empty());

    m_provider->reply(ScriptedProvider::answer({}));
    viewModel->setDraft(QStringLiteral("  why? \n"));
    viewModel->submit();
    EXPECT_TRUE(viewModel->isRunning());
    EXPECT_EQ(texts(viewModel->turns()), QStringList(QStringLiteral("user: why?")));
    EXPECT_EQ(stored().front().turns, viewModel->turns()) << "the question is safe before there is an answer";
    viewModel->setDraft(QStringLiteral("next"));
    const QUuid current = viewModel->currentSessionID();
    viewModel->submit();
    viewModel->startNewConversation();
    viewModel->switchToSession(QUuid::createUuid());
    EXPECT_EQ(viewModel->draft(), QStringLiteral("next"));
    EXPECT_EQ(viewModel->currentSessionID(), current);
    ASSERT_TRUE(finish(*viewModel));
    EXPECT_EQ(texts(viewModel->turns()),
              QStringList({QStringLiteral("user: why?"), QStringLiteral("assistant: Done.")}));
    ASSERT_EQ(m_provider->calls.size(), 1U);
    EXPECT_EQ(m_provider->calls[0].history, std::vector{AIMessage::userText(QStringLiteral("why?"))});
    EXPECT_EQ(m_provider->calls[0].system, SystemPrompts::pdf());
    EXPECT_EQ(m_provider->calls[0].tools.size(), 7U);
    EXPECT_EQ(viewModel->draft(), QStringLiteral("next"));
    EXPECT_EQ(stored().front().turns, viewModel->turns());
}

TEST_F(AssistantViewModelTest, RunsToolsAndTellsTheModelTheirResults) {
    const auto viewModel = open();
    const AIAgentTurn calls = ScriptedProvider::toolUse(
        {{QStringLiteral("1"), QStringLiteral("search_document"), {{QStringLiteral("query"), QStringLiteral("dog")}}},
         {QStringLiteral("2"), QStringLiteral("fly_%1"), {}},
         {QStringLiteral("3"), QStringLiteral("go_to_page"), {{QStringLiteral("page"), 3}}}});
    m_provider->reply(calls);
    m_provider->reply(ScriptedProvider::toolUse({}));
    m_provider->replies.push_back([&viewModel] {
        viewModel->setModelPreference(AIModelPreference::balanced);
        return ScriptedProvider::toolUse({});
    });
    m_provider->reply(ScriptedProvider::answer(QStringLiteral("there")));
    ask(*viewModel, QStringLiteral("where is the dog?"));
    EXPECT_EQ(texts(viewModel->turns()),
              QStringList({QStringLiteral("user: where is the dog?"), QStringLiteral("assistant: there")}));
    EXPECT_EQ(m_coordinator->currentPageIndex(), 2);

    const AIMessage nothing{AIRole::assistant, {}};
    const AIMessage noResults{AIRole::user, {}};
    const std::vector<AIMessage> expected{
        AIMessage::userText(QStringLiteral("where is the dog?")),
        calls.message,
        {AIRole::user,
         {AIContentPart::toolResult(QStringLiteral("1"), QStringLiteral("Page 3: …about the lazy dog…")),
          AIContentPart::toolResult(QStringLiteral("2"), QStringLiteral("Unknown tool 'fly_%1'.")),
          AIContentPart::toolResult(QStringLiteral("3"), QStringLiteral("Navigated to page 3."))}},
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
        m_provider->reply(
            ScriptedProvider::toolUse({{QStringLiteral("id"),
                                        QStringLiteral("add_note"),
                                        {{QStringLiteral("page"), 2}, {QStringLiteral("text"), QString::number(i)}}}}));
    }
    ask(*viewModel, QStringLiteral("loop"));
    const QString tooMany = QStringLiteral("error: That took too many steps to resolve — try rephrasing your request.");
    EXPECT_EQ(texts(viewModel->turns()), QStringList({QStringLiteral("user: loop"), tooMany}));
    EXPECT_EQ(m_provider->calls.size(), 10U);
    EXPECT_EQ(m_document->page(1)->annotations().size(), 10U) << "the tools of the tenth step ran";
    EXPECT_EQ(texts(stored().front().turns).last(), tooMany);

    m_provider->replies.clear();
    m_provider->replies.push_back([]() -> AIAgentTurn { throw std::runtime_error("Zu spät."); });
    ask(*viewModel, QStringLiteral("again"));
    EXPECT_EQ(texts(viewModel->turns()).last(), QStringLiteral("error: Zu spät."));
    m_provider->reply(ScriptedProvider::answer(QStringLiteral("ok")));
    ask(*viewModel, QStringLiteral("and again"));
    const std::vector<AIMessage>& history = m_provider->calls.back().history;
    ASSERT_EQ(history.size(), 23U);
    EXPECT_EQ(history[21], AIMessage::userText(QStringLiteral("again")));
    EXPECT_EQ(history[22], AIMessage::userText(QStringLiteral("and again")));
}

TEST_F(AssistantViewModelTest, GoesOnWhenAToolFails) {
    const auto viewModel = open();
    const auto failing = QObject::connect(m_coordinator.get(), &PDFViewCoordinator::currentPageIndexChanged,
                                          [] { throw std::runtime_error("no memory"); });
    const auto reset = qScopeGuard([&failing] { QObject::disconnect(failing); });
    m_provider->reply(ScriptedProvider::toolUse(
        {{QStringLiteral("1"), QStringLiteral("go_to_page"), {{QStringLiteral("page"), 3}}}}));
    m_provider->reply(ScriptedProvider::answer(QStringLiteral("no such page")));
    ask(*viewModel, QStringLiteral("go there"));
    EXPECT_EQ(texts(viewModel->turns()).last(), QStringLiteral("assistant: no such page"));
    EXPECT_EQ(m_provider->calls.at(1).history.back().parts.front(),
              AIContentPart::toolResult(QStringLiteral("1"),
                                        QStringLiteral("The tool 'go_to_page' failed. Go on without it.")));
}

TEST_F(AssistantViewModelTest, GivesUpTheQuestionOfADeletedChat) {
    const auto viewModel = open();
    const auto asked = [this](std::size_t calls) {
        return QTest::qWaitFor([this, calls] { return m_provider->calls.size() == calls; }, 10'000);
    };
    m_provider->reply(ScriptedProvider::answer(QStringLiteral("ok")));
    ask(*viewModel, QStringLiteral("kept"));
    viewModel->startNewConversation();
    m_provider->reply(
        ScriptedProvider::toolUse({{QStringLiteral("id"),
                                    QStringLiteral("add_note"),
                                    {{QStringLiteral("page"), 2}, {QStringLiteral("text"), QStringLiteral("late")}}}}));
    viewModel->setDraft(QStringLiteral("soon gone"));
    viewModel->submit();
    ASSERT_TRUE(asked(2));
    viewModel->deleteSession(viewModel->currentSessionID());
    EXPECT_FALSE(viewModel->isRunning()) << "the next chat can be asked at once";
    m_provider->reply(ScriptedProvider::answer(QStringLiteral("right")));
    ask(*viewModel, QStringLiteral("next"));
    EXPECT_EQ(m_provider->calls.size(), 3U);
    EXPECT_TRUE(m_document->page(1)->annotations().empty());
    EXPECT_EQ(texts(viewModel->turns()),
              QStringList({QStringLiteral("user: kept"), QStringLiteral("assistant: ok"), QStringLiteral("user: next"),
                           QStringLiteral("assistant: right")}));
    ASSERT_EQ(stored().size(), 1U);
    EXPECT_EQ(stored().front().turns, viewModel->turns());
}

TEST_F(AssistantViewModelTest, SendsTheTextOfAnAttachment) {
    PdfFixture fixture;
    for (int i = 1; i <= 11; ++i)
        fixture.addPage(i == 2 ? QStringList() : QStringList(QStringLiteral("page %1").arg(i)));
    const QUrl pdf = file(QStringLiteral("Notes.PDF"), fixture.bytes());
    for (const char* name : {"pipe.txt", "pipe.pdf"}) // from which nothing ever comes
        ASSERT_EQ(mkfifo(qPrintable(m_folder.filePath(QLatin1String(name))), 0600), 0);
    for (const char* name : {"endless.txt", "endless.pdf"})
        QFile::link(QStringLiteral("/dev/zero"), m_folder.filePath(QLatin1String(name)));
    QFile huge(file(QStringLiteral("huge.txt"), {}).toLocalFile());
    ASSERT_TRUE(huge.resize(qint64(1) << 36)) << "which takes no room on the disk";
    const auto viewModel = open();
    QSignalSpy refused(viewModel.get(), &AssistantViewModel::attachmentRefused);
    for (const QUrl& useless :
         {file(QStringLiteral("blank.txt"), " \n "), file(QStringLiteral("latin.txt"), "caf\xe9"),
          file(QStringLiteral("broken.pdf"), "text"), QUrl::fromLocalFile(m_folder.path()), QUrl(),
          at(QStringLiteral("pipe.txt")), at(QStringLiteral("pipe.pdf")), at(QStringLiteral("endless.txt")),
          at(QStringLiteral("endless.pdf")), at(QStringLiteral("huge.txt"))}) {
        viewModel->attach(useless);
        ASSERT_TRUE(hasRead(*viewModel));
        EXPECT_FALSE(viewModel->attachmentName()) << qPrintable(useless.toString());
        EXPECT_EQ(refused.takeFirst().value(0).toString(), useless.fileName()) << "and it is told";
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
    m_provider->reply(ScriptedProvider::answer(QStringLiteral("ok")));
    viewModel->submit();
    EXPECT_FALSE(viewModel->attachmentName() || viewModel->attachmentContent());
    ASSERT_TRUE(finish(*viewModel));
    viewModel->attach(pdf); // and the user thinks better of it
    viewModel->removeAttachment();
    viewModel->attach(pdf);
    viewModel->attach(file(QStringLiteral("a.txt"), "%1 ünder\n"));
    ASSERT_TRUE(hasRead(*viewModel));
    m_provider->reply(ScriptedProvider::answer(QStringLiteral("ok")));
    ask(*viewModel, QStringLiteral("compare %2"));

    EXPECT_EQ(texts(viewModel->turns()),
              QStringList({QStringLiteral("user: Attached file: Notes.PDF"), QStringLiteral("assistant: ok"),
                           QStringLiteral("user: compare %2"), QStringLiteral("assistant: ok")}));
    const std::vector<AIMessage>& history = m_provider->calls.at(1).history;
    EXPECT_EQ(history[0], AIMessage::userText(QStringLiteral("Context from attached file 'Notes.PDF':\n---\n") + pages +
                                              QStringLiteral("\n---\n\nSummarize or explain this attached file.")));
    EXPECT_EQ(history[2], AIMessage::userText(QStringLiteral(
                              "Context from attached file 'a.txt':\n---\n%1 ünder\n\n---\n\ncompare %2")));
}

TEST_F(AssistantViewModelTest, TitlesAConversationOnce) {
    const auto viewModel = open();
    m_provider->title = QStringLiteral(" \n");
    m_provider->reply(ScriptedProvider::answer(QStringLiteral("ok")));
    ask(*viewModel, QStringLiteral("first\nquestion"));
    EXPECT_EQ(titles(viewModel->sessions()), QStringList(QStringLiteral("first question")));
    viewModel->startNewConversation();
    m_provider->title = QStringLiteral(" A Fine Title\n");
    for (const QString& question : {QStringLiteral("second"), QStringLiteral("third")}) {
        m_provider->reply(ScriptedProvider::answer(QStringLiteral("ok")));
        ask(*viewModel, question);
    }
    EXPECT_EQ(titles(viewModel->sessions()),
              QStringList({QStringLiteral("A Fine Title"), QStringLiteral("first question")}));
    EXPECT_EQ(titles(stored()), titles(viewModel->sessions()));
    ASSERT_EQ(m_provider->titleCalls.size(), 2U);
    EXPECT_EQ(m_provider->titleCalls[1].preference, AIModelPreference::fast);
    EXPECT_EQ(m_provider->titleCalls[1].history, std::vector{AIMessage::userText(QStringLiteral(
                                                     "Write a short chat title (3 to 6 words, no quotes, no trailing "
                                                     "punctuation) summarizing this message:\n\nsecond"))});
    EXPECT_EQ(m_provider->titleCalls[1].system,
              QStringLiteral("You write short, punchy chat titles and respond with the title only."));

    viewModel->startNewConversation();
    viewModel->setDraft(QStringLiteral("soon gone"));
    viewModel->submit();
    viewModel->deleteSession(viewModel->currentSessionID());
    ASSERT_TRUE(finish(*viewModel));
    QTest::qWait(20);
    EXPECT_FALSE(titles(viewModel->sessions()).contains(QStringLiteral("soon gone")))
        << "a late title brings nothing back";
}

TEST_F(AssistantViewModelTest, TakesUpTheLatestConversation) {
    const std::vector<AssistantTurn> turns{{QUuid::createUuid(), Role::user, QStringLiteral("q")},
                                           {QUuid::createUuid(), Role::error, QStringLiteral("e")},
                                           {QUuid::createUuid(), Role::assistant, QStringLiteral("a")}};
    const std::vector<ChatSession> saved{
        storedSession(QStringLiteral("old"), 1), storedSession(QStringLiteral("new"), 3, turns),
        storedSession(QStringLiteral("also new"), 3), storedSession(QStringLiteral("middle"), 2)};
    ChatHistoryStore::save(saved, m_path);
    const auto viewModel = open();
    EXPECT_EQ(titles(viewModel->sessions()), QStringList({QStringLiteral("new"), QStringLiteral("also new"),
                                                          QStringLiteral("middle"), QStringLiteral("old")}));
    EXPECT_EQ(viewModel->currentSessionID(), saved[1].id);
    EXPECT_EQ(viewModel->turns(), turns);
    m_provider->reply(ScriptedProvider::answer(QStringLiteral("ok")));
    ask(*viewModel, QStringLiteral("more"));
    EXPECT_EQ(m_provider->calls[0].history,
              std::vector({AIMessage::userText(QStringLiteral("q")), assistantText(QStringLiteral("a")),
                           AIMessage::userText(QStringLiteral("more"))}));

    viewModel->setDraft(QStringLiteral("kept"));
    viewModel->switchToSession(saved[3].id);
    EXPECT_TRUE(viewModel->turns().empty());
    EXPECT_EQ(viewModel->draft(), QStringLiteral("kept"));
    viewModel->deleteSession(saved[3].id);
    EXPECT_EQ(viewModel->currentSessionID(), saved[1].id) << "the first of those that are left";
    EXPECT_EQ(viewModel->turns().size(), 5U);
    QSignalSpy changes(viewModel.get(), &AssistantViewModel::sessionsChanged);
    for (const QUuid& id : {saved[0].id, saved[1].id, saved[2].id})
        viewModel->deleteSession(id);
    EXPECT_EQ(changes.count(), 3);
    EXPECT_EQ(titles(stored()), QStringList(QStringLiteral("New Chat")));
    EXPECT_EQ(stored().front().id, viewModel->currentSessionID());
    EXPECT_TRUE(viewModel->turns().empty());
}

TEST_F(AssistantViewModelTest, WritesNothingForADocumentWithoutAFile) {
    const auto viewModel = openUnsaved();
    EXPECT_EQ(viewModel->documentName(), QStringLiteral("Untitled PDF"));
    m_provider->reply(ScriptedProvider::answer(QStringLiteral("ok")));
    ask(*viewModel, QStringLiteral("hello"));
    EXPECT_EQ(viewModel->turns().size(), 2U);
    EXPECT_EQ(titles(openUnsaved()->sessions()), QStringList(QStringLiteral("New Chat")));
    EXPECT_TRUE(ChatHistoryStore::load(QString()).empty());
}
