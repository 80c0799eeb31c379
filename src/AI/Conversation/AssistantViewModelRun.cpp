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
    if ((text.isEmpty() && !m_attachmentContent) || m_isRunning)
        return;
    setDraft({});
    QString bubble = text;
    QString message = text;
    if (m_attachmentName && m_attachmentContent) {
        if (text.isEmpty())
            bubble = QStringLiteral("Attached file: ") + *m_attachmentName;
        message = messageWithAttachment(*m_attachmentName, *m_attachmentContent, text);
        removeAttachment();
    }
    appendTurn(AssistantTurn::Role::user, bubble);
    m_history.push_back(AIMessage::userText(message));
    persistCurrentSession();
    setRunning(true);
    startTask([self = shared_from_this()] { self->run(); });
}

QCoro::Task<void> AssistantViewModel::run() {
    const auto self = shared_from_this(); // also when the panel is gone
    co_await runAgentLoop();
    setRunning(false);
}

QCoro::Task<void> AssistantViewModel::runAgentLoop() {
    using Role = AssistantTurn::Role;
    for (int step = 0; step < maximumSteps; ++step) {
        AIAgentTurn turn;
        std::optional<QString> failure;
        try {
            turn = co_await nextTurn();
        } catch (const std::exception& error) {
            qCWarning(Logging::ai) << "a step of the conversation failed:" << causeForLog(error);
            failure = QString::fromUtf8(error.what());
        }
        if (failure) {
            endRun(Role::error, *failure);
            co_return;
        }

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

/// The model's reply. What its tool calls will have to read of a long document is read before it is handed over, so
/// that the calls themselves, which hold up the main thread, are short.
QCoro::Task<AIAgentTurn> AssistantViewModel::nextTurn() {
    AIAgentTurn turn = co_await m_provider->send(m_history, m_tools, m_systemPrompt, m_modelPreference);
    if (!turn.isFinal) {
        for (const AIToolCall& call : turn.toolCalls) {
            const AssistantTool* const called = tool(call.name);
            if (called && called->prepare)
                co_await called->prepare(call.input);
        }
    }
    co_return turn;
}

const AssistantTool* AssistantViewModel::tool(const QString& name) const {
    const auto found = std::find_if(m_tools.begin(), m_tools.end(),
                                    [&name](const AssistantTool& candidate) { return candidate.name == name; });
    return found == m_tools.end() ? nullptr : &*found;
}

QString AssistantViewModel::resultOf(const AIToolCall& call) const {
    const AssistantTool* const called = tool(call.name);
    return called ? called->execute(call.input) : QStringLiteral("Unknown tool '%1'.").arg(call.name);
}

void AssistantViewModel::endRun(AssistantTurn::Role role, const QString& text) {
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
