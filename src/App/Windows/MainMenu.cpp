#include "MainMenu.h"

#include "AppActions.h"
#include "DocumentController.h"
#include "PDFDocument.h"
#include "PDFEditorDocument.h"
#include "PlainText.h"
#include "Shortcuts.h"
#include "ToolActions.h"
#include "UndoManager.h"
#include "WorkspaceActions.h"

#include <QAction>
#include <QDir>
#include <QLineEdit>
#include <QMainWindow>
#include <QMenuBar>
#include <QTextEdit>

MainMenu::MainMenu(QMainWindow& window, AppActions& actions, DocumentController& controller)
    : QObject(&window), m_window(window), m_controller(controller),
      m_noWorkspace(new WorkspaceActions(nullptr, nullptr, this)), m_workspace(m_noWorkspace) {
    makeMenus(actions);
    fillWorkspaceMenus();
    updateDocumentActions();
}

MainMenu::~MainMenu() = default;

QAction* MainMenu::add(QMenu* menu, const QString& name, const QString& text, std::function<void()> triggered) {
    auto* action = new QAction(text, this);
    action->setObjectName(name);
    action->setShortcuts(Shortcuts::of(name));
    connect(action, &QAction::triggered, this, std::move(triggered));
    menu->addAction(action);
    return action;
}

template <typename Action>
bool MainMenu::askEditor(const Action& action) {
    QWidget* const editor = m_document->isBeingTyped() ? m_window.focusWidget() : nullptr;
    auto* const lines = qobject_cast<QTextEdit*>(editor);
    auto* const line = qobject_cast<QLineEdit*>(editor);
    if (lines)
        action(*lines);
    else if (line)
        action(*line);
    else
        m_document->commitEditing(); // a list that is open, say: its change becomes the newest of the document
    return lines || line;
}

void MainMenu::makeMenus(AppActions& actions) {
    QMenuBar* bar = m_window.menuBar();
    bar->setObjectName(QStringLiteral("menuBar"));

    QMenu* file = bar->addMenu(QStringLiteral("&File"));
    file->addAction(actions.newTab);
    file->addAction(actions.open);
    m_recentMenu = file->addMenu(QStringLiteral("Open &Recent"));
    m_recentMenu->setObjectName(QStringLiteral("openRecent"));
    file->addSeparator();
    m_close = add(file, QStringLiteral("close"), QStringLiteral("&Close"), [this] { Q_EMIT closeRequested(); });
    m_save =
        add(file, QStringLiteral("save"), QStringLiteral("&Save"), [this] { m_controller.saveDocument(m_document); });
    m_saveAs = add(file, QStringLiteral("saveAs"), QStringLiteral("Save &As…"),
                   [this] { m_controller.saveDocumentAs(m_document); });
    m_duplicate = add(file, QStringLiteral("duplicate"), QStringLiteral("&Duplicate"),
                      [this] { m_controller.duplicateDocument(m_document); });
    m_revert = add(file, QStringLiteral("revert"), QStringLiteral("Re&vert to Saved…"),
                   [this] { m_controller.revertDocument(std::shared_ptr<Document>(m_document)); });
    file->addSeparator();
    m_afterPrint = file->addSeparator();
    file->addAction(actions.quit);
    m_fileMenu = file;

    m_settings = actions.settings;
    m_editMenu = bar->addMenu(QStringLiteral("&Edit"));
    m_undo = add(m_editMenu, QStringLiteral("undo"), QStringLiteral("&Undo"), [this] {
        if (!askEditor([](auto& editor) { editor.undo(); }))
            m_document->undoManager()->undo();
    });
    m_redo = add(m_editMenu, QStringLiteral("redo"), QStringLiteral("&Redo"), [this] {
        if (!askEditor([](auto& editor) { editor.redo(); }))
            m_document->undoManager()->redo();
    });

    m_viewMenu = bar->addMenu(QStringLiteral("&View"));
    m_fullScreen = add(m_viewMenu, QStringLiteral("fullScreen"), QStringLiteral("&Full Screen"),
                       [this] { m_window.setWindowState(m_window.windowState() ^ Qt::WindowFullScreen); });
    m_fullScreen->setCheckable(true);
    connect(m_viewMenu, &QMenu::aboutToShow, this, [this] { m_fullScreen->setChecked(m_window.isFullScreen()); });

    m_goMenu = bar->addMenu(QStringLiteral("&Go"));

    m_toolsMenu = bar->addMenu(QStringLiteral("&Tools"));

    QMenu* help = bar->addMenu(QStringLiteral("&Help"));
    help->addAction(actions.makeDefault);
    help->addAction(actions.about);

    connect(file, &QMenu::aboutToShow, this, [this] {
        fillRecentMenu();
        m_controller.lookUpRecentDocuments();
    });
    connect(&m_controller, &DocumentController::recentDocumentsChanged, this, [this, file] {
        if (file->isVisible())
            fillRecentMenu();
    });
    connect(&m_controller, &DocumentController::documentSavingChanged, this, &MainMenu::updateDocumentActions);
}

void MainMenu::fillRecentMenu() {
    m_recentMenu->clear();
    const QList<QUrl> urls = m_controller.recentDocumentURLs();
    for (const QUrl& url : urls) {
        QAction* action = m_recentMenu->addAction(PlainText::withoutMnemonics(url.fileName()));
        action->setToolTip(PlainText::toolTip(QDir::toNativeSeparators(url.toLocalFile())));
        connect(action, &QAction::triggered, this, [this, url] { Q_EMIT openRecentRequested(url); });
    }
    m_recentMenu->setToolTipsVisible(true);
    m_recentMenu->setEnabled(!urls.isEmpty());
    if (urls.isEmpty())
        return;
    m_recentMenu->addSeparator();
    QAction* clear = m_recentMenu->addAction(QStringLiteral("Clear Recents"));
    connect(clear, &QAction::triggered, &m_controller, &DocumentController::clearRecentDocuments);
}

void MainMenu::fillWorkspaceMenus() {
    using Command = WorkspaceActions::Command;
    const auto fill = [this](QMenu* menu, std::initializer_list<Command> commands) {
        for (const Command command : commands)
            menu->addAction(m_workspace->action(command));
    };
    m_fileMenu->removeAction(m_print);
    m_print = m_workspace->action(Command::print);
    m_fileMenu->insertAction(m_afterPrint, m_print);

    m_editMenu->clear();
    m_editMenu->addActions({m_undo, m_redo});
    m_editMenu->addSeparator();
    fill(m_editMenu, {Command::copy, Command::selectAll});
    m_editMenu->addSeparator();
    m_editMenu->addAction(m_settings);

    m_viewMenu->clear();
    fill(m_viewMenu, {Command::zoomIn, Command::zoomOut});
    m_viewMenu->addSeparator();
    m_viewMenu->addActions(m_workspace->scales());
    fill(m_viewMenu, {Command::zoomToFit});
    m_viewMenu->addSeparator();
    fill(m_viewMenu, {Command::toggleSidebar, Command::askAssistant});
    m_viewMenu->addSeparator();
    m_viewMenu->addAction(m_fullScreen);

    m_goMenu->clear();
    fill(m_goMenu, {Command::previousPage, Command::nextPage, Command::firstPage, Command::lastPage});
    m_goMenu->addSeparator();
    fill(m_goMenu, {Command::back, Command::forward});

    const ToolActions& tools = m_workspace->tools();
    m_toolsMenu->clear();
    m_toolsMenu->addActions(tools.tools());
    m_toolsMenu->addSeparator();
    m_toolsMenu->addActions(tools.markup());
    m_toolsMenu->addSeparator();
    m_toolsMenu->addAction(tools.editText());
    fill(m_toolsMenu, {Command::ocrPage, Command::applyRedactions});
}

void MainMenu::setDocument(const std::shared_ptr<PDFEditorDocument>& document, WorkspaceActions* workspace) {
    for (const QMetaObject::Connection& connection : m_documentConnections)
        disconnect(connection);
    m_documentConnections.clear();
    m_document = document;
    if (document) {
        m_documentConnections = {
            connect(document.get(), &Document::documentEditedChanged, this, &MainMenu::updateDocumentActions),
            connect(document.get(), &Document::fileURLChanged, this, &MainMenu::updateDocumentActions),
            connect(document.get(), &Document::beingTypedChanged, this, &MainMenu::updateDocumentActions),
            connect(document.get(), &PDFEditorDocument::objectWillChange, this, &MainMenu::updateDocumentActions),
            connect(document->undoManager().get(), &UndoManager::changed, this, &MainMenu::updateDocumentActions),
        };
    }
    if (WorkspaceActions* wanted = workspace ? workspace : m_noWorkspace; m_workspace != wanted) {
        m_workspace = wanted;
        fillWorkspaceMenus();
    }
    updateDocumentActions();
}

void MainMenu::updateDocumentActions() {
    const bool canBeSaved = m_document && !m_document->pdfDocument()->isLocked() &&
                            (m_document->pdfDocument()->pageCount() > 0 || m_document->isDocumentEdited());
    m_saveAs->setEnabled(canBeSaved);
    m_duplicate->setEnabled(canBeSaved);
    m_revert->setEnabled(m_document && m_controller.canRevertDocument(*m_document));
    m_save->setEnabled(canBeSaved && (m_document->isDocumentEdited() || m_document->isBeingTyped() ||
                                      m_document->fileURL().isEmpty()));
    const bool isTyped = m_document && m_document->isBeingTyped();
    m_undo->setEnabled(isTyped || (m_document && m_document->undoManager()->canUndo()));
    m_redo->setEnabled(isTyped || (m_document && m_document->undoManager()->canRedo()));
}

QList<QAction*> MainMenu::tabActions() const {
    return {m_save, m_saveAs, m_duplicate, m_revert, nullptr, m_close};
}
