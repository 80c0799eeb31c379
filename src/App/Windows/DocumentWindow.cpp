#include "DocumentWindow.h"

#include "AppActions.h"
#include "ContentView.h"
#include "DocumentController.h"
#include "DocumentDialogs.h"
#include "DocumentTabBar.h"
#include "DroppedFile.h"
#include "FileOpenRouter.h"
#include "FullScreenChrome.h"
#include "MainMenu.h"
#include "PDFDocument.h"
#include "PDFEditorDocument.h"
#include "PDFEditorWorkspaceView.h"
#include "PageMimeData.h"
#include "PageOperations.h"
#include "PassingNotice.h"
#include "PlainText.h"
#include "Shortcuts.h"
#include "SlowSaves.h"
#include "UserDefaults.h"

#include <QApplication>
#include <QCloseEvent>
#include <QDir>
#include <QKeyEvent>
#include <QMenu>
#include <QMenuBar>
#include <QMimeData>
#include <QStackedWidget>
#include <QTimer>
#include <QVBoxLayout>

#include <chrono>

/// The size of a window that is neither maximized nor takes the whole screen: "1000x720".
static QString sizeKey() {
    return QStringLiteral("DocumentWindow.size");
}

static QSize rememberedSize(const UserDefaults& defaults, QSize usual) {
    const QStringList sides = defaults.stringForKey(sizeKey()).value_or(QString()).split(QLatin1Char('x'));
    const QSize size = sides.size() == 2 ? QSize(sides[0].toInt(), sides[1].toInt()) : QSize();
    return size.width() > 0 && size.height() > 0 ? size.boundedTo({16'384, 16'384}) : usual;
}

DocumentWindow::DocumentWindow(WindowServices& services)
    : m_services(services), m_menu(new MainMenu(*this, services.actions, services.controller)),
      m_tabBar(new DocumentTabBar(services.actions.newTab)), m_stack(new QStackedWidget),
      m_slowSaves(new SlowSaves(services.controller, this)),
      m_chrome(new FullScreenChrome(
          *this, [this](bool shows) { showChrome(shows); }, [this] { return chromeHeight(); })) {
    setObjectName(QStringLiteral("documentWindow"));
    setAcceptDrops(true);
    setMinimumSize(480, 360);
    resize(rememberedSize(services.defaults, {1000, 720}));

    auto* central = new QWidget;
    auto* layout = new QVBoxLayout(central);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addWidget(m_tabBar);
    layout->addWidget(m_stack);
    setCentralWidget(central);
    addTabSwitching();
    m_sizeRest.setSingleShot(true);
    m_sizeRest.setInterval(std::chrono::milliseconds(500));
    connect(&m_sizeRest, &QTimer::timeout, this, [this] {
        // A window that is just becoming maximized has its new size before it says so.
        if (!isMaximized() && !isFullScreen())
            m_services.defaults.setString(sizeKey(), QStringLiteral("%1x%2").arg(width()).arg(height()));
    });

    connect(m_tabBar, &DocumentTabBar::currentChanged, this, &DocumentWindow::currentTabChanged);
    connect(m_tabBar, &DocumentTabBar::closeRequested, this, &DocumentWindow::closeTab);
    connect(m_tabBar, &DocumentTabBar::menuRequested, this, &DocumentWindow::showTabMenu);
    connect(m_tabBar, &DocumentTabBar::pagesDropped, this, [this](QWidget* content, const PageMimeData& pages) {
        takePages(qobject_cast<ContentView*>(content), pages);
    });
    connect(m_slowSaves, &SlowSaves::changed, this, [this](const std::shared_ptr<Document>& document) {
        if (ContentView* view = contentView(*document))
            updateTab(view);
    });
    connect(&services.controller, &DocumentController::documentSavingChanged, this,
            [this](const std::shared_ptr<Document>& document, bool isSaving) { announceSaving(*document, isSaving); });
    connect(m_menu, &MainMenu::closeRequested, this, [this] { closeTab(m_tabBar->current()); });
    connect(m_menu, &MainMenu::openRecentRequested, this, &FileOpenRouter::openRecent);
}

DocumentWindow::~DocumentWindow() = default;

void DocumentWindow::addTabSwitching() {
    const struct {
        QString name;
        int steps;
    } switches[] = {{QStringLiteral("nextTab"), 1}, {QStringLiteral("previousTab"), -1}};
    for (const auto& entry : switches) {
        auto* action = new QAction(this);
        action->setObjectName(entry.name);
        action->setShortcuts(Shortcuts::of(entry.name));
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
        if (view->workspace())
            view->workspace()->setShowsToolbar(m_chrome->isShown());
        if (view == currentContentView())
            updateMenu();
    });
    connect(view, &ContentView::openedInPlace, this, &DocumentWindow::openedInPlace);
    connect(view, &ContentView::openingFailed, this, [this](const QString& title, const QString& sentence) {
        m_services.dialogs.presentError(this, title, sentence);
    });
    connect(view, &ContentView::closeRequested, this, [this, view] { closeTab(view); });
    if (view->workspace())
        view->workspace()->setShowsToolbar(m_chrome->isShown());
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

void DocumentWindow::showTabMenu(QWidget* content, QPoint globalPosition) {
    m_tabBar->setCurrent(content);
    auto* menu = new QMenu(this);
    menu->setObjectName(QStringLiteral("tabMenu"));
    menu->setAttribute(Qt::WA_DeleteOnClose);
    for (QAction* action : m_menu->tabActions()) {
        if (action)
            menu->addAction(action);
        else
            menu->addSeparator();
    }
    menu->popup(globalPosition);
}

void DocumentWindow::announceSaving(const Document& document, bool isSaving) {
    const ContentView* view = contentView(document);
    if (!view || !view->workspace())
        return;
    // As long as it takes, unless another message comes.
    constexpr std::chrono::hours untilItEnds{24};
    const QString message = QStringLiteral("Saving…");
    PassingNotice& notice = view->workspace()->notice();
    if (isSaving)
        notice.announce(message, untilItEnds);
    else if (notice.message() == message)
        notice.announce(message, std::chrono::milliseconds::zero());
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

QString DocumentWindow::title(const Document& document) const {
    return m_slowSaves->contains(document) ? document.displayName() + QStringLiteral(" — Saving…")
                                           : document.displayName();
}

void DocumentWindow::updateTab(ContentView* view) {
    const Document& document = *view->document();
    m_tabBar->setTitle(view, title(document), document.isDocumentEdited(),
                       document.originURL().isEmpty() ? document.displayName()
                                                      : QDir::toNativeSeparators(document.originURL().toLocalFile()));
    if (view == currentContentView())
        updateTitle();
}

void DocumentWindow::updateTitle() {
    const Document& document = *currentContentView()->document();
    setWindowFilePath(document.fileURL().toLocalFile());
    setWindowTitle(PlainText::windowTitle(title(document)) + QStringLiteral("[*] — Quillo"));
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
    // A question that waits for its answer stays before the window that it keeps from being used.
    if (QWidget* question = QApplication::activeModalWidget()) {
        question->raise();
        question->activateWindow();
    }
}

// Full screen

void DocumentWindow::showChrome(bool shows) {
    // The keys of its commands work only while the menu bar counts as shown.
    menuBar()->setMaximumHeight(shows ? QWIDGETSIZE_MAX : 0);
    m_tabBar->setShown(shows);
    for (const ContentView* view : contentViews())
        if (view->workspace())
            view->workspace()->setShowsToolbar(shows);
    const ContentView* view = currentContentView();
    if (!shows && view && view->workspace())
        view->workspace()->notice().announce(QStringLiteral("Press Esc to leave the full screen"));
}

int DocumentWindow::chromeHeight() const {
    const ContentView* view = currentContentView();
    return menuBar()->height() + (m_tabBar->isVisible() ? m_tabBar->height() : 0) +
           (view && view->workspace() ? view->workspace()->toolbarHeight() : 0);
}

void DocumentWindow::keyPressEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_Escape && isFullScreen())
        setWindowState(windowState() & ~Qt::WindowFullScreen);
    else
        QMainWindow::keyPressEvent(event);
}

void DocumentWindow::resizeEvent(QResizeEvent* event) {
    QMainWindow::resizeEvent(event);
    if (isVisible() && !isMaximized() && !isFullScreen() && !isMinimized())
        m_sizeRest.start();
}

void DocumentWindow::closeEvent(QCloseEvent* event) {
    // The window goes with its last tab, now or when the documents are saved.
    m_services.controller.closeAllDocuments();
    event->setAccepted(m_tabBar->count() == 0);
}

void DocumentWindow::changeEvent(QEvent* event) {
    QMainWindow::changeEvent(event);
    if (event->type() == QEvent::ActivationChange && isActiveWindow()) {
        if (const ContentView* view = currentContentView())
            m_services.controller.setCurrentDocument(view->document());
    }
}

std::shared_ptr<PDFEditorDocument> DocumentWindow::receiver(const ContentView* view, const PageMimeData* pages) {
    const bool canReceive =
        view && pages && !pages->isOf(*view->document()) && !view->document()->pdfDocument()->isLocked();
    return canReceive ? view->document() : nullptr;
}

/// Copies them to the end of the document.
void DocumentWindow::takePages(const ContentView* view, const PageMimeData& pages) {
    const std::shared_ptr<PDFEditorDocument> document = receiver(view, &pages);
    const std::shared_ptr<PDFDocument> copies = document ? pages.copies() : nullptr;
    if (!copies)
        return;
    document->commitEditing();
    PageOperations::merge(*document, *copies, document->pdfDocument()->pageCount(), document->undoManager().get());
    const int count = copies->pageCount();
    if (const ContentView* shown = currentContentView(); shown->workspace())
        shown->workspace()->notice().announce(
            (count == 1 ? QStringLiteral("1 page added to ") : QStringLiteral("%1 pages added to ").arg(count)) +
            document->displayName());
}

void DocumentWindow::dragEnterEvent(QDragEnterEvent* event) {
    if (receiver(currentContentView(), PageMimeData::from(event->mimeData()))) {
        event->setDropAction(Qt::CopyAction);
        event->accept();
        return;
    }
    if (FileOpenRouter::droppedFile(*event->mimeData()))
        event->acceptProposedAction();
}

void DocumentWindow::dropEvent(QDropEvent* event) {
    if (const PageMimeData* pages = PageMimeData::from(event->mimeData())) {
        event->setDropAction(Qt::CopyAction);
        event->accept();
        takePages(currentContentView(), *pages);
        return;
    }
    QList<QUrl> kept;
    for (const QUrl& dropped : FileOpenRouter::droppedFiles(*event->mimeData()))
        if (const auto url = DroppedFile::keep(dropped))
            kept.append(*url);
    if (kept.isEmpty())
        return;
    event->acceptProposedAction();
    QTimer::singleShot(0, this, [kept] {
        for (const QUrl& url : kept)
            FileOpenRouter::open(url);
    });
}
