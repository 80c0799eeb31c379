#include "AssistantPanel.h"

#include "AssistantBubbleList.h"
#include "AssistantInputArea.h"
#include "AssistantViewModel.h"
#include "ChatHistoryListView.h"
#include "DropHighlight.h"
#include "DroppedFile.h"
#include "FileWork.h"
#include "MessageField.h"
#include "PassingNotice.h"
#include "SymbolIcon.h"
#include "ToolbarButton.h"

#include <QAction>
#include <QDragEnterEvent>
#include <QFileDialog>
#include <QFileInfo>
#include <QHBoxLayout>
#include <QMimeData>
#include <QPointer>

#include <algorithm>

static constexpr std::chrono::seconds noticeTime{5};

static QList<QUrl> localFiles(const QMimeData& data) {
    QList<QUrl> files = data.urls();
    files.removeIf([](const QUrl& url) { return !url.isLocalFile(); });
    return files;
}

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
    m_dropHighlight = new DropHighlight(QStringLiteral("Drop a file here to attach it to your question"), this);
    setAcceptDrops(true);

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
    connect(model, &AssistantViewModel::attachmentRefused, this, [this](const QString& name) {
        tell(QStringLiteral("“%1” can't be attached: there is no text in it that Quillo can read, or more than 64 MB.")
                 .arg(name));
    });
    connect(m_list, &AssistantBubbleList::regenerateRequested, model, &AssistantViewModel::submit);
    connect(m_list, &AssistantBubbleList::noticeRequested, this, &AssistantPanel::tell);
    connect(m_list, &AssistantBubbleList::pageRequested, this, &AssistantPanel::goToPage);
    connect(m_list, &AssistantBubbleList::questionEditRequested, this, [this](QUuid errorTurnID) {
        m_viewModel->editQuestion(errorTurnID);
        m_input->field()->setFocus();
    });
    m_list->pageCount = [this] { return m_viewModel->pageCount(); };
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

void AssistantPanel::tell(const QString& sentence) {
    m_notice->announce(sentence, noticeTime);
}

/// Pages may have been deleted since a reply named this one.
void AssistantPanel::goToPage(int page) {
    const int count = m_viewModel->pageCount();
    if (page <= count)
        m_viewModel->goToPage(page);
    else
        tell(QStringLiteral("There is no page %1 any more: the document has %2.")
                 .arg(page)
                 .arg(count == 1 ? QStringLiteral("1 page") : QStringLiteral("%1 pages").arg(count)));
}

// Dropping files

void AssistantPanel::dragEnterEvent(QDragEnterEvent* event) {
    if (localFiles(*event->mimeData()).isEmpty())
        return;
    event->setDropAction(Qt::CopyAction);
    event->accept();
    m_dropHighlight->setShown(true);
}

void AssistantPanel::dragLeaveEvent(QDragLeaveEvent*) {
    m_dropHighlight->setShown(false);
}

void AssistantPanel::dropEvent(QDropEvent* event) {
    m_dropHighlight->setShown(false);
    const QList<QUrl> files = localFiles(*event->mimeData());
    if (files.isEmpty())
        return;
    event->setDropAction(Qt::CopyAction);
    event->accept();
    attachFirst(files);
}

/// One file goes with a question, so of several the first that is no folder is taken.
void AssistantPanel::attachFirst(const QList<QUrl>& files) {
    struct Found {
        std::optional<QUrl> file;
        QString refusal;
    };
    const auto lookUp = [files] {
        const auto file = std::find_if(files.begin(), files.end(),
                                       [](const QUrl& url) { return !QFileInfo(url.toLocalFile()).isDir(); });
        return file == files.end() ? Found{{}, QStringLiteral("It is a folder.")}
                                   : Found{DroppedFile::keep(*file), QStringLiteral("It can't be read.")};
    };
    const auto attach = [this, files](const Found& found) {
        if (!found.file) {
            const QString name = files.constFirst().adjusted(QUrl::StripTrailingSlash).fileName();
            tell(QStringLiteral("“%1” can't be attached. %2").arg(name, found.refusal));
            return;
        }
        m_viewModel->attach(*found.file);
        m_input->field()->setFocus();
        if (files.size() > 1)
            tell(QStringLiteral("One file goes with a question: this one is “%1”.").arg(found.file->fileName()));
    };
    // A file that was made for the drop may be gone afterwards, and a disk may take forever to answer.
    constexpr std::chrono::milliseconds patience{500};
    FileWork::run(this, lookUp, attach, patience);
}
