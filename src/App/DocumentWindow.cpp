#include "DocumentWindow.h"

#include "AppActions.h"
#include "ContentView.h"
#include "DocumentController.h"
#include "DocumentDialogs.h"
#include "DocumentTabBar.h"
#include "DroppedFile.h"
#include "FileOpenRouter.h"
#include "MainMenu.h"
#include "PDFEditorDocument.h"
#include "PDFEditorWorkspaceView.h"

#include <QCloseEvent>
#include <QDir>
#include <QMimeData>
#include <QStackedWidget>
#include <QTimer>
#include <QVBoxLayout>

/// A file name as a window's title: "[*]" would stand for the edited mark.
static QString titleText(const QString& fileName) {
    return QString(fileName).replace(QLatin1String("[*]"), QLatin1String("[*][*]"));
}

DocumentWindow::DocumentWindow(WindowServices& services)
    : m_services(services), m_menu(new MainMenu(*this, services.actions, services.controller)),
      m_tabBar(new DocumentTabBar(services.actions.newTab)), m_stack(new QStackedWidget) {
    setObjectName(u"documentWindow"_qs);
    setAcceptDrops(true);
    setMinimumSize(480, 360);
    resize(1000, 720);

    auto* central = new QWidget;
    auto* layout = new QVBoxLayout(central);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addWidget(m_tabBar);
    layout->addWidget(m_stack);
    setCentralWidget(central);
    addTabSwitching();

    connect(m_tabBar, &DocumentTabBar::currentChanged, this, &DocumentWindow::currentTabChanged);
    connect(m_tabBar, &DocumentTabBar::closeRequested, this, &DocumentWindow::closeTab);
    connect(m_menu, &MainMenu::closeRequested, this, [this] { closeTab(m_tabBar->current()); });
    connect(m_menu, &MainMenu::openRecentRequested, this,
            [this](const QUrl& url) { m_services.controller.openDocument(url, true); });
}

DocumentWindow::~DocumentWindow() = default;

void DocumentWindow::addTabSwitching() {
    const struct {
        const char* name;
        QList<QKeySequence> keys;
        int steps;
    } switches[] = {
        {"nextTab", {Qt::CTRL | Qt::Key_Tab, Qt::CTRL | Qt::Key_PageDown}, 1},
        {"previousTab", {Qt::CTRL | Qt::SHIFT | Qt::Key_Tab, Qt::CTRL | Qt::Key_PageUp}, -1},
    };
    for (const auto& entry : switches) {
        auto* action = new QAction(this);
        action->setObjectName(QLatin1String(entry.name));
        action->setShortcuts(entry.keys);
        addAction(action);
        connect(action, &QAction::triggered, this,
                [this, steps = entry.steps] { m_tabBar->setCurrent(m_tabBar->neighbour(steps)); });
    }
}

void DocumentWindow::addDocument(const std::shared_ptr<PDFEditorDocument>& document) {
    auto* view = new ContentView(document, m_services.controller, m_services.defaults,
                                 [this](QWidget* parent) { return m_services.dialogs.askPassword(parent); });
    m_stack->addWidget(view);
    m_tabBar->addTab(view);
    updateTab(view);

    connect(view, &ContentView::settingsRequested, m_services.actions.settings, &QAction::trigger);
    connect(view, &ContentView::contentChanged, this, [this, view] {
        if (view == currentContentView())
            updateMenu();
    });
    connect(view, &ContentView::openedInPlace, this, &DocumentWindow::openedInPlace);
    connect(view, &ContentView::closeRequested, this, [this, view] { closeTab(view); });
    const auto update = [this, view] { updateTab(view); };
    connect(document.get(), &Document::displayNameChanged, view, update);
    connect(document.get(), &Document::documentEditedChanged, view, update);
    setCurrent(view);
}

void DocumentWindow::removeDocument(const Document& document) {
    ContentView* view = contentView(document);
    if (!view)
        return;
    disconnect(view, nullptr, this, nullptr);
    m_tabBar->removeTab(view);
    m_stack->removeWidget(view);
    view->hide();
    // The close may come from within the view itself.
    view->deleteLater();
    if (m_tabBar->count() > 0)
        return;
    m_menu->setDocument(nullptr, nullptr);
    hide();
    deleteLater();
}

std::vector<ContentView*> DocumentWindow::contentViews() const {
    std::vector<ContentView*> views;
    for (int i = 0; i < m_tabBar->count(); ++i)
        views.push_back(qobject_cast<ContentView*>(m_tabBar->content(i)));
    return views;
}

ContentView* DocumentWindow::contentView(const Document& document) const {
    for (ContentView* view : contentViews()) {
        if (view->document().get() == &document)
            return view;
    }
    return nullptr;
}

ContentView* DocumentWindow::currentContentView() const {
    return qobject_cast<ContentView*>(m_tabBar->current());
}

void DocumentWindow::setCurrent(ContentView* view) {
    m_tabBar->setCurrent(view);
    // The first tab is current from the beginning.
    currentTabChanged();
}

void DocumentWindow::closeTab(QWidget* content) {
    if (const auto* view = qobject_cast<ContentView*>(content)) {
        m_tabBar->setCurrent(content);
        m_services.controller.closeDocument(view->document());
    }
}

void DocumentWindow::currentTabChanged() {
    ContentView* view = currentContentView();
    if (!view)
        return;
    m_stack->setCurrentWidget(view);
    m_services.controller.setCurrentDocument(view->document());
    updateTitle();
    updateMenu();
    view->setFocus();
}

void DocumentWindow::updateTab(ContentView* view) {
    const Document& document = *view->document();
    m_tabBar->setTitle(view, document.displayName(), document.isDocumentEdited(),
                       document.fileURL().isEmpty() ? document.displayName()
                                                    : QDir::toNativeSeparators(document.fileURL().toLocalFile()));
    if (view == currentContentView())
        updateTitle();
}

void DocumentWindow::updateTitle() {
    const Document& document = *currentContentView()->document();
    setWindowTitle(titleText(document.displayName()) + u"[*] — Quillo"_qs);
    setWindowModified(document.isDocumentEdited());
}

void DocumentWindow::updateMenu() {
    const ContentView* view = currentContentView();
    m_menu->setDocument(view->document(), view->workspace() ? view->workspace()->actions() : nullptr);
}

void DocumentWindow::present() {
    if (isMinimized())
        setWindowState(windowState() & ~Qt::WindowMinimized);
    if (!m_didMaximize && !isFullScreen()) {
        m_didMaximize = true;
        showMaximized();
    } else {
        show();
    }
    raise();
    activateWindow();
}

void DocumentWindow::closeEvent(QCloseEvent* event) {
    event->setAccepted(m_services.controller.closeAllDocuments());
}

void DocumentWindow::changeEvent(QEvent* event) {
    QMainWindow::changeEvent(event);
    if (event->type() == QEvent::ActivationChange && isActiveWindow()) {
        if (const ContentView* view = currentContentView())
            m_services.controller.setCurrentDocument(view->document());
    }
}

void DocumentWindow::dragEnterEvent(QDragEnterEvent* event) {
    if (FileOpenRouter::droppedFile(*event->mimeData()))
        event->acceptProposedAction();
}

void DocumentWindow::dropEvent(QDropEvent* event) {
    const auto dropped = FileOpenRouter::droppedFile(*event->mimeData());
    const auto kept = dropped ? DroppedFile::keep(*dropped) : std::nullopt;
    if (!kept)
        return;
    event->acceptProposedAction();
    QTimer::singleShot(0, this, [url = *kept] { FileOpenRouter::open(url); });
}
