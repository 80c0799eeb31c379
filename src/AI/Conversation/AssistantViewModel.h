#pragma once

#include "AIModelPreference.h"
#include "AssistantSource.h"
#include "AssistantTool.h"
#include "AssistantTurn.h"
#include "ChatSession.h"

#include <QCoroTask>
#include <QObject>
#include <QStringList>

#include <functional>
#include <memory>
#include <optional>
#include <vector>

class AIProvider;
class UserDefaults;
struct AIAgentTurn;
struct AIMessage;
struct AIToolCall;

/// The conversations about one document: what the user sees (`turns`), what the model gets to read (the history), and
/// the run of a question through model and tools. Main thread only; nothing here waits for the network.
///
/// A question that runs keeps the view model alive until it is answered, also when the panel is gone by then, so that
/// the answer is saved with its chat; a chat that is deleted takes its question along. Conversations are kept for
/// documents that have a file.
class AssistantViewModel : public QObject, public std::enable_shared_from_this<AssistantViewModel> {
    Q_OBJECT

public:
    /// With the user's own keys if `defaults` hold any, otherwise with the built-in service. That choice stays: keys
    /// that change later serve view models made later. `defaults` must outlive the view model.
    [[nodiscard]] static std::shared_ptr<AssistantViewModel> create(const AssistantSource& source,
                                                                    UserDefaults& defaults);
    /// Takes up the latest of the document's saved conversations, or starts one.
    [[nodiscard]] static std::shared_ptr<AssistantViewModel> create(const AssistantSource& source,
                                                                    std::shared_ptr<AIProvider> provider);
    ~AssistantViewModel() override;

    /// How many pages the document has now; 0 where there are none to go to.
    [[nodiscard]] int pageCount() const;
    /// Shows the page of that number, counted from 1, as the model does with its tool; nothing happens where there is
    /// none.
    void goToPage(int number) const;

    /// From here on the tools work on another reading of the same file, in another view; the conversation goes on.
    void setSource(const AssistantSource& source);

    // State

    /// The bubbles of the current conversation, oldest first.
    [[nodiscard]] const std::vector<AssistantTurn>& turns() const { return m_turns; }
    /// True from a question of the current conversation until its answer or its failure.
    [[nodiscard]] bool isRunning() const { return m_runningSession.has_value(); }
    /// The text in the input box.
    [[nodiscard]] const QString& draft() const { return m_draft; }
    void setDraft(const QString& draft);
    /// The most recent first. The turns of the current one are up to date only in `turns`.
    [[nodiscard]] const std::vector<ChatSession>& sessions() const { return m_sessions; }
    [[nodiscard]] QUuid currentSessionID() const { return m_currentSessionID; }
    /// The file's name without its extension; "Untitled PDF" without a file.
    [[nodiscard]] const QString& documentName() const { return m_documentName; }
    /// Goes for the next call of the model, also within a run.
    [[nodiscard]] AIModelPreference modelPreference() const { return m_modelPreference; }
    void setModelPreference(AIModelPreference preference);
    /// The file whose text goes with the next question; none without one.
    [[nodiscard]] const std::optional<QString>& attachmentName() const { return m_attachmentName; }
    [[nodiscard]] const std::optional<QString>& attachmentContent() const { return m_attachmentContent; }
    /// The name of the file that is being read for the next question; none when none is.
    [[nodiscard]] const std::optional<QString>& nameOfFileBeingRead() const { return m_nameOfFileBeingRead; }

    // Operations

    /// Sends the draft, with the attachment if there is one, and empties both. With neither, while a question runs, or
    /// while a file is read that is to go with it, nothing happens and the draft stays.
    void submit();
    /// Saves the current conversation and starts an empty one. Nothing happens while a question runs.
    void startNewConversation();
    /// Saves the current conversation and shows another. Nothing happens while a question runs.
    void switchToSession(QUuid id);
    /// Also while a question runs, which is then given up: nothing of its answer is shown or kept. The most recent of
    /// the others takes the place of the current one.
    void deleteSession(QUuid id);
    /// Lets the user pick a file through `onChooseFile`, and attaches it.
    void attachFile();
    /// Attaches the text of a PDF's first ten pages, or the whole of a text file in UTF-8, once it has been read on
    /// another thread. Nothing changes for a file that can't be read or holds no text.
    void attach(const QUrl& file);
    /// Also gives up a file that is being read.
    void removeAttachment();
    /// Puts the question that ended with this error back into the draft, before what stands there, and with it the file
    /// that went with the last question, unless another is there. Nothing happens for any other turn.
    void editQuestion(QUuid errorTurnID);
    /// Shows a text as if the assistant had said it. The model isn't asked, and never reads it in this conversation.
    void appendAssistantTurn(const QString& text) { appendTurn(AssistantTurn::Role::assistant, text); }

    /// Shows the dialog in which the user picks one file, and hands it to `chosen`, now or later; `chosen` isn't called
    /// when the user cancels. `nameFilters` are as QFileDialog takes them. Set by who shows the panel.
    std::function<void(const QStringList& nameFilters, std::function<void(const QUrl& file)> chosen)> onChooseFile;

Q_SIGNALS:
    void turnsChanged();
    void isRunningChanged();
    void draftChanged();
    void sessionsChanged();
    void currentSessionIDChanged();
    void modelPreferenceChanged();
    void attachmentNameChanged();
    void attachmentContentChanged();
    void nameOfFileBeingReadChanged();
    /// The file of that name has no text to attach; all stays as it is.
    void attachmentRefused(const QString& name);

private:
    AssistantViewModel(const AssistantSource& source, std::shared_ptr<AIProvider> provider);

    // The run of a question
    QCoro::Task<void> run(QUuid chat);
    QCoro::Task<void> runAgentLoop(QUuid chat);
    QCoro::Task<void> prepareTools(const AIAgentTurn& turn, QUuid chat);
    [[nodiscard]] const AssistantTool* tool(const QString& name) const;
    [[nodiscard]] QString resultOf(const AIToolCall& call) const;
    void endRun(AssistantTurn::Role role, const QString& text);
    void askForTitle(QUuid sessionID, const QString& firstMessage);
    QCoro::Task<void> requestAITitle(QUuid sessionID, QString firstMessage);

    // Conversations
    void appendTurn(AssistantTurn::Role role, const QString& text);
    void beginSession();
    void show(const ChatSession& session);
    void persistCurrentSession();
    void save() const;
    [[nodiscard]] ChatSession* session(QUuid id);
    void setAttachment(const std::optional<QString>& name, const std::optional<QString>& content);
    void setFileBeingRead(const std::optional<QString>& name);
    void setRunningSession(const std::optional<QUuid>& id);

    /// What was sent last, as long as it may have to be sent again.
    struct SentQuestion {
        QUuid turnID;
        QString text;
        std::optional<QString> attachmentName;
        std::optional<QString> attachmentContent;
    };

    AssistantSource m_source;
    std::vector<AssistantTool> m_tools;
    const std::shared_ptr<AIProvider> m_provider;
    const QString m_systemPrompt;
    QString m_documentKey; // the file's path; empty without a file
    QString m_documentName = QStringLiteral("Untitled PDF");

    std::vector<AssistantTurn> m_turns;
    std::vector<AIMessage> m_history;
    std::optional<SentQuestion> m_sentQuestion;
    std::optional<QUuid> m_runningSession; // whose question runs: the current one's, or none
    QString m_draft;
    std::vector<ChatSession> m_sessions;
    QUuid m_currentSessionID = QUuid::createUuid();
    AIModelPreference m_modelPreference = AIModelPreference::highPerformance;
    std::optional<QString> m_attachmentName;
    std::optional<QString> m_attachmentContent;
    std::optional<QString> m_nameOfFileBeingRead;
    int m_fileReadings = 0; // started or given up: only the last one counts
};
