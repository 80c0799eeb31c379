// The part of AssistantViewModel that runs a question.

#include "AIProvider.h"
#include "AIProviderError.h"
#include "AssistantViewModel.h"
#include "ChatTitle.h"
#include "Logging.h"

#include <QCoreApplication>

#include <algorithm>

namespace {

/// Calls of the model for one question.
constexpr int maximumSteps = 10;

/// Starts a task of the main thread with the next event. Tasks begin in the order in which they were started.
void startTask(std::function<void()> task) {
    QMetaObject::invokeMethod(QCoreApplication::instance(), std::move(task), Qt::QueuedConnection);
}

QString messageWithAttachment(const QString& name, const QString& content, const QString& text) {
    const QString question = text.isEmpty() ? QStringLiteral("Summarize or explain this attached file.") : text;
    return QStringLiteral("Context from attached file '%1':\n---\n%2\n---\n\n%3").arg(name, content, question);
}

/// What a log may tell of a failure: the message of a service may repeat the question, so only its status is told.
QString causeForLog(const std::exception& error) {
    const auto* const answer = dynamic_cast<const AIProviderError*>(&error);
    return answer && answer->kind() == AIProviderError::Kind::http ? QStringLiteral("status %1").arg(answer->status())
                                                                   : Logging::causes(error);
}

} // namespace

void AssistantViewModel::submit() {
    const QString text = m_draft.trimmed();
    if ((text.isEmpty() && !m_attachmentContent) || isRunning() || m_nameOfFileBeingRead)
        return;
    setDraft({});
    QString bubble = text;
    QString message = text;
    SentQuestion sent{{}, text, m_attachmentName, m_attachmentContent};
    if (m_attachmentName && m_attachmentContent) {
        if (text.isEmpty())
            bubble = QStringLiteral("Attached file: ") + *m_attachmentName;
        message = messageWithAttachment(*m_attachmentName, *m_attachmentContent, text);
        removeAttachment();
    }
    appendTurn(AssistantTurn::Role::user, bubble);
    sent.turnID = m_turns.back().id;
    m_sentQuestion = std::move(sent);
    m_history.push_back(AIMessage::userText(message));
    persistCurrentSession();
    setRunningSession(m_currentSessionID);
    startTask([self = shared_from_this(), chat = m_currentSessionID] { self->run(chat); });
}

void AssistantViewModel::editQuestion(QUuid errorTurnID) {
    using Role = AssistantTurn::Role;
    const auto error = std::find_if(m_turns.rbegin(), m_turns.rend(), [errorTurnID](const AssistantTurn& turn) {
        return turn.id == errorTurnID && turn.role == Role::error;
    });
    const auto question =
        std::find_if(error, m_turns.rend(), [](const AssistantTurn& turn) { return turn.role == Role::user; });
    if (question == m_turns.rend())
        return;
    const bool isLast = m_sentQuestion && m_sentQuestion->turnID == question->id;
    const QString text = isLast ? m_sentQuestion->text : question->text;
    if (isLast && m_sentQuestion->attachmentContent && !m_attachmentContent && !m_nameOfFileBeingRead)
        setAttachment(m_sentQuestion->attachmentName, m_sentQuestion->attachmentContent);
    if (m_draft.trimmed().isEmpty())
        setDraft(text);
    else if (!m_draft.startsWith(text))
        setDraft(text + QStringLiteral("\n\n") + m_draft);
}

void AssistantViewModel::goToPage(int number) const {
    static_cast<void>(resultOf({{}, QStringLiteral("go_to_page"), {{QStringLiteral("page"), number}}}));
}

QCoro::Task<void> AssistantViewModel::run(QUuid chat) {
    const auto self = shared_from_this(); // also when the panel is gone
    std::optional<QString> failure;
    try {
        co_await runAgentLoop(chat);
    } catch (const std::exception& error) {
        qCWarning(Logging::ai) << "a step of the conversation failed:" << causeForLog(error);
        failure = QString::fromUtf8(error.what());
    }
    if (m_runningSession != chat)
        co_return;
    if (failure)
        endRun(AssistantTurn::Role::error, *failure);
    setRunningSession(std::nullopt);
}

/// Ends without a word once the run is no longer that of the chat.
QCoro::Task<void> AssistantViewModel::runAgentLoop(QUuid chat) {
    using Role = AssistantTurn::Role;
    for (int step = 0; step < maximumSteps; ++step) {
        if (m_runningSession != chat)
            co_return;
        const AIAgentTurn turn = co_await m_provider->send(m_history, m_tools, m_systemPrompt, m_modelPreference);
        if (!turn.isFinal)
            co_await prepareTools(turn, chat);
        if (m_runningSession != chat)
            co_return;

        m_history.push_back(turn.message);
        if (turn.isFinal) {
            endRun(Role::assistant, turn.text.isEmpty() ? QStringLiteral("Done.") : turn.text);
            co_return;
        }

        AIMessage results{AIRole::user, {}};
        for (const AIToolCall& call : turn.toolCalls)
            results.parts.push_back(AIContentPart::toolResult(call.id, resultOf(call)));
        m_history.push_back(results);
    }
    endRun(Role::error, QStringLiteral("That took too many steps to resolve — try rephrasing your request."));
}

/// What the tool calls will have to read of a long document is read before they are made, so that the calls themselves,
/// which hold up the main thread, are short.
QCoro::Task<void> AssistantViewModel::prepareTools(const AIAgentTurn& turn, QUuid chat) {
    for (const AIToolCall& call : turn.toolCalls) {
        const AssistantTool* const called = tool(call.name);
        if (m_runningSession == chat && called && called->prepare)
            co_await called->prepare(call.input);
    }
}

const AssistantTool* AssistantViewModel::tool(const QString& name) const {
    const auto found = std::find_if(m_tools.begin(), m_tools.end(),
                                    [&name](const AssistantTool& candidate) { return candidate.name == name; });
    return found == m_tools.end() ? nullptr : &*found;
}

QString AssistantViewModel::resultOf(const AIToolCall& call) const {
    const AssistantTool* const called = tool(call.name);
    if (!called)
        return QStringLiteral("Unknown tool '%1'.").arg(call.name);
    try {
        return called->execute(call.input);
    } catch (const std::exception& error) { // a damaged page, say
        qCWarning(Logging::ai) << "a tool failed:" << Logging::causes(error);
        return QStringLiteral("The tool '%1' failed. Go on without it.").arg(call.name);
    }
}

void AssistantViewModel::endRun(AssistantTurn::Role role, const QString& text) {
    if (role == AssistantTurn::Role::assistant)
        m_sentQuestion.reset();
    appendTurn(role, text);
    persistCurrentSession();
}

void AssistantViewModel::askForTitle(QUuid sessionID, const QString& firstMessage) {
    startTask([self = shared_from_this(), sessionID, firstMessage] { self->requestAITitle(sessionID, firstMessage); });
}

QCoro::Task<void> AssistantViewModel::requestAITitle(QUuid sessionID, QString firstMessage) {
    const auto self = shared_from_this();
    const std::vector<AIMessage> question(1, AIMessage::userText(ChatTitle::prompt(firstMessage)));
    const std::vector<AssistantTool> noTools;
    AIAgentTurn turn;
    try {
        turn = co_await m_provider->send(question, noTools, ChatTitle::systemPrompt(), AIModelPreference::fast);
    } catch (const std::exception& error) {
        qCWarning(Logging::ai) << "no title for the conversation:" << causeForLog(error);
        co_return; // the beginning of the message stays the title
    }
    const QString title = turn.text.trimmed();
    ChatSession* const titled = session(sessionID);
    if (title.isEmpty() || !titled)
        co_return;
    titled->title = title;
    Q_EMIT sessionsChanged();
    save();
}
