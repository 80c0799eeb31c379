#include "AssistantPanel.h"

#include "AssistantBubbleList.h"
#include "AssistantInputArea.h"
#include "AssistantViewModel.h"
#include "ChatHistoryListView.h"
#include "MessageField.h"
#include "PassingNotice.h"
#include "SymbolIcon.h"
#include "ToolbarButton.h"

#include <QAction>
#include <QFileDialog>
#include <QHBoxLayout>
#include <QPointer>

static constexpr std::chrono::seconds noticeTime{5};

/// Lets the user pick a file, and hands it over if the panel is still there then.
static void chooseFile(QWidget* panel, const QStringList& nameFilters,
                       const std::function<void(const QUrl& file)>& chosen) {
    auto* dialog = new QFileDialog(panel->window(), QStringLiteral("Add PDF or Text Attachment"));
    dialog->setObjectName(QStringLiteral("attachmentPanel"));
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->setFileMode(QFileDialog::ExistingFile);
    dialog->setNameFilters(nameFilters);
    QObject::connect(dialog, &QFileDialog::accepted, panel, [dialog, chosen] {
        if (const QList<QUrl> urls = dialog->selectedUrls(); !urls.isEmpty())
            chosen(urls.constFirst());
    });
    dialog->open();
}

AssistantPanel::AssistantPanel(std::shared_ptr<AssistantViewModel> viewModel, QWidget* parent)
    : QWidget(parent), m_viewModel(std::move(viewModel)), m_list(new AssistantBubbleList),
      m_input(new AssistantInputArea(m_viewModel)) {
    setObjectName(QStringLiteral("assistantPanel"));
    setAccessibleName(QStringLiteral("Assistant"));
    setFocusProxy(m_input);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addWidget(makeHeader());
    layout->addWidget(m_list, 1);
    layout->addWidget(m_input);
    m_notice = new PassingNotice(m_list);

    AssistantViewModel* model = m_viewModel.get();
    // The view model outlives the panel while a question runs.
    model->onChooseFile = [panel = QPointer(this)](const QStringList& nameFilters,
                                                   const std::function<void(const QUrl&)>& chosen) {
        if (panel)
            chooseFile(panel, nameFilters, chosen);
    };
    connect(model, &AssistantViewModel::turnsChanged, this, [this] { m_list->setTurns(m_viewModel->turns()); });
    connect(model, &AssistantViewModel::isRunningChanged, this,
            [this] { m_list->setTyping(m_viewModel->isRunning()); });
    connect(m_list, &AssistantBubbleList::regenerateRequested, model, &AssistantViewModel::submit);
    connect(m_list, &AssistantBubbleList::noticeRequested, this,
            [this](const QString& sentence) { m_notice->announce(sentence, noticeTime); });
    m_list->setTurns(model->turns());
    m_list->setTyping(model->isRunning());
}

AssistantPanel::~AssistantPanel() = default;

QWidget* AssistantPanel::makeHeader() {
    auto* header = new QWidget;
    auto* layout = new QHBoxLayout(header);
    layout->setContentsMargins(8, 5, 8, 5);
    layout->setSpacing(2);
    const auto addButton = [this, layout](const QString& name, const QString& symbolName, const QString& help,
                                          std::function<void()> operation) {
        auto* action = new QAction(SymbolIcon::icon(symbolName), QString(), this);
        action->setObjectName(name);
        action->setToolTip(help);
        connect(action, &QAction::triggered, this, std::move(operation));
        auto* button = new ToolbarButton(action);
        button->setAccessibleName(help);
        layout->addWidget(button);
        return button;
    };
    m_sidebarButton = addButton(QStringLiteral("toggleSidebar"), QStringLiteral("sidebar.left"),
                                QStringLiteral("Toggle Page Sidebar"), [this] { m_onToggleSidebar(); });
    m_sidebarButton->hide();
    addButton(QStringLiteral("newConversation"), QStringLiteral("square.and.pencil"),
              QStringLiteral("New Conversation"), [this] { m_viewModel->startNewConversation(); });
    m_historyButton = addButton(QStringLiteral("chatHistory"), QStringLiteral("clock.arrow.circlepath"),
                                QStringLiteral("Chat History"), [this] { showHistory(); });
    layout->addStretch(1);
    addButton(QStringLiteral("assistantSettings"), QStringLiteral("gearshape"),
              QStringLiteral("AI Assistant Settings…"), [this] { Q_EMIT settingsRequested(); });
    addButton(QStringLiteral("closeAssistant"), QStringLiteral("xmark"), QStringLiteral("Close Assistant"), [this] {
        if (onClose)
            onClose();
    });
    return header;
}

void AssistantPanel::setOnToggleSidebar(std::function<void()> onToggleSidebar) {
    m_onToggleSidebar = std::move(onToggleSidebar);
    m_sidebarButton->setVisible(static_cast<bool>(m_onToggleSidebar));
}

void AssistantPanel::showHistory() {
    (new ChatHistoryListView(m_viewModel, this))->popUp(*m_historyButton);
}

void AssistantPanel::showEvent(QShowEvent* event) {
    QWidget::showEvent(event);
    m_input->field()->setFocus();
}
