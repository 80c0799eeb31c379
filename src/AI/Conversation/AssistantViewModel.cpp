// The part of AssistantViewModel that keeps the conversations.

#include "AssistantViewModel.h"

#include "AIMessage.h"
#include "AIProvider.h"
#include "APIKeyStore.h"
#include "AssistantToolFactory.h"
#include "AttachmentReader.h"
#include "BackendAIProvider.h"
#include "ChatHistoryStore.h"
#include "ChatTitle.h"
#include "FileWork.h"
#include "PDFDocument.h"
#include "RotatingAIProvider.h"
#include "SystemPrompts.h"

#include <QFileInfo>

#include <algorithm>

namespace {

std::shared_ptr<AIProvider> selectProvider(UserDefaults& defaults) {
    if (APIKeyStore::hasAnyKey(defaults))
        return std::make_shared<RotatingAIProvider>(defaults);
    return std::make_shared<BackendAIProvider>();
}

QString systemPromptFor(const AssistantSource& source) {
    return std::holds_alternative<AssistantContext>(source) ? SystemPrompts::pdf() : SystemPrompts::textOnly();
}

/// What the model gets to read of a conversation that comes back from the disk: calls of tools and the texts of
/// attachments weren't stored.
std::vector<AIMessage> historyFrom(const std::vector<AssistantTurn>& turns) {
    std::vector<AIMessage> history;
    for (const AssistantTurn& turn : turns) {
        if (turn.role == AssistantTurn::Role::user)
            history.push_back(AIMessage::userText(turn.text));
        else if (turn.role == AssistantTurn::Role::assistant)
            history.push_back({AIRole::assistant, {AIContentPart::text(turn.text)}});
    }
    return history;
}

void sortNewestFirst(std::vector<ChatSession>& sessions) {
    std::stable_sort(sessions.begin(), sessions.end(),
                     [](const ChatSession& a, const ChatSession& b) { return a.updatedAt > b.updatedAt; });
}

} // namespace

std::shared_ptr<AssistantViewModel> AssistantViewModel::create(const AssistantSource& source, UserDefaults& defaults) {
    return create(source, selectProvider(defaults));
}

std::shared_ptr<AssistantViewModel> AssistantViewModel::create(const AssistantSource& source,
                                                               std::shared_ptr<AIProvider> provider) {
    return std::shared_ptr<AssistantViewModel>(new AssistantViewModel(source, std::move(provider)));
}

AssistantViewModel::AssistantViewModel(const AssistantSource& source, std::shared_ptr<AIProvider> provider)
    : m_source(source), m_tools(AssistantToolFactory::makeTools(source)), m_provider(std::move(provider)),
      m_systemPrompt(systemPromptFor(source)), m_documentKey(fileURL(source).toLocalFile()) {
    if (!m_documentKey.isEmpty()) {
        const QFileInfo file(m_documentKey);
        m_documentName = file.completeBaseName().isEmpty() ? file.fileName() : file.completeBaseName();
        m_sessions = ChatHistoryStore::load(m_documentKey);
    }
    if (m_sessions.empty()) {
        beginSession();
    } else {
        sortNewestFirst(m_sessions);
        show(m_sessions.front());
    }
}

AssistantViewModel::~AssistantViewModel() = default;

void AssistantViewModel::setSource(const AssistantSource& source) {
    m_source = source;
    m_tools = AssistantToolFactory::makeTools(source);
}

int AssistantViewModel::pageCount() const {
    const auto* const pages = std::get_if<AssistantContext>(&m_source);
    return pages ? pages->pdfDocument->pageCount() : 0;
}

// State

void AssistantViewModel::setDraft(const QString& draft) {
    if (draft == m_draft)
        return;
    m_draft = draft;
    Q_EMIT draftChanged();
}

void AssistantViewModel::setModelPreference(AIModelPreference preference) {
    if (preference == m_modelPreference)
        return;
    m_modelPreference = preference;
    Q_EMIT modelPreferenceChanged();
}

void AssistantViewModel::setRunningSession(const std::optional<QUuid>& id) {
    if (id == m_runningSession)
        return;
    m_runningSession = id;
    Q_EMIT isRunningChanged();
}

// Attachment

void AssistantViewModel::attachFile() {
    if (!onChooseFile)
        return;
    onChooseFile(AttachmentReader::nameFilters(), [self = weak_from_this()](const QUrl& file) {
        if (const auto viewModel = self.lock())
            viewModel->attach(file);
    });
}

void AssistantViewModel::attach(const QUrl& file) {
    const QString path = file.toLocalFile();
    const QString name = QFileInfo(path).fileName();
    const int reading = ++m_fileReadings;
    setFileBeingRead(name);
    const auto read = [path] { return AttachmentReader::text(path); };
    FileWork::run(this, read, [this, reading, name](const QString& text) {
        if (reading != m_fileReadings)
            return;
        setFileBeingRead(std::nullopt);
        if (text.trimmed().isEmpty())
            Q_EMIT attachmentRefused(name);
        else
            setAttachment(name, text);
    });
}

void AssistantViewModel::removeAttachment() {
    ++m_fileReadings;
    setFileBeingRead(std::nullopt);
    setAttachment(std::nullopt, std::nullopt);
}

void AssistantViewModel::setFileBeingRead(const std::optional<QString>& name) {
    if (name == m_nameOfFileBeingRead)
        return;
    m_nameOfFileBeingRead = name;
    Q_EMIT nameOfFileBeingReadChanged();
}

void AssistantViewModel::setAttachment(const std::optional<QString>& name, const std::optional<QString>& content) {
    const bool nameChanges = name != m_attachmentName;
    const bool contentChanges = content != m_attachmentContent;
    m_attachmentName = name;
    m_attachmentContent = content;
    if (nameChanges)
        Q_EMIT attachmentNameChanged();
    if (contentChanges)
        Q_EMIT attachmentContentChanged();
}

// Conversations

void AssistantViewModel::startNewConversation() {
    if (isRunning())
        return;
    persistCurrentSession();
    beginSession();
    setDraft({});
}

void AssistantViewModel::switchToSession(QUuid id) {
    if (isRunning() || id == m_currentSessionID)
        return;
    persistCurrentSession();
    if (const ChatSession* const found = session(id))
        show(*found);
}

void AssistantViewModel::deleteSession(QUuid id) {
    std::erase_if(m_sessions, [&id](const ChatSession& candidate) { return candidate.id == id; });
    if (id == m_currentSessionID) {
        setRunningSession(std::nullopt);
        if (m_sessions.empty())
            m_sessions.push_back({});
        show(m_sessions.front());
    }
    Q_EMIT sessionsChanged();
    save();
}

void AssistantViewModel::beginSession() {
    m_sessions.insert(m_sessions.begin(), ChatSession());
    show(m_sessions.front());
    Q_EMIT sessionsChanged();
}

void AssistantViewModel::show(const ChatSession& session) {
    m_currentSessionID = session.id;
    m_turns = session.turns;
    m_sentQuestion.reset();
    m_history = historyFrom(m_turns);
    Q_EMIT currentSessionIDChanged();
    Q_EMIT turnsChanged();
}

void AssistantViewModel::appendTurn(AssistantTurn::Role role, const QString& text) {
    m_turns.push_back({QUuid::createUuid(), role, text});
    Q_EMIT turnsChanged();
}

void AssistantViewModel::persistCurrentSession() {
    ChatSession* const current = session(m_currentSessionID);
    if (!current)
        return;
    current->turns = m_turns;
    current->updatedAt = QDateTime::currentDateTimeUtc();
    const auto firstQuestion = std::find_if(m_turns.begin(), m_turns.end(), [](const AssistantTurn& turn) {
        return turn.role == AssistantTurn::Role::user;
    });
    if (current->title == ChatSession::defaultTitle() && firstQuestion != m_turns.end()) {
        current->title = ChatTitle::fromFirstMessage(firstQuestion->text);
        askForTitle(current->id, firstQuestion->text);
    }
    sortNewestFirst(m_sessions);
    Q_EMIT sessionsChanged();
    save();
}

void AssistantViewModel::save() const {
    if (!m_documentKey.isEmpty())
        ChatHistoryStore::save(m_sessions, m_documentKey);
}

ChatSession* AssistantViewModel::session(QUuid id) {
    const auto found = std::find_if(m_sessions.begin(), m_sessions.end(),
                                    [&id](const ChatSession& candidate) { return candidate.id == id; });
    return found == m_sessions.end() ? nullptr : &*found;
}
