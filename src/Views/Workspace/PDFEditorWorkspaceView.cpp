#include "PDFEditorWorkspaceView.h"

#include "AnnotatingPDFView.h"
#include "AssistantDock.h"
#include "AssistantPanel.h"
#include "AssistantViewModel.h"
#include "FileOpenRouter.h"
#include "LineStyleHoverModifier.h"
#include "LineStylePicker.h"
#include "OpenPanel.h"
#include "PDFEditorDocument.h"
#include "PDFKitRepresentedView.h"
#include "PDFViewCoordinator.h"
#include "PageField.h"
#include "Palette.h"
#include "PassingNotice.h"
#include "PlainMessage.h"
#include "PrintPanel.h"
#include "RedactionCommand.h"
#include "Shortcuts.h"
#include "SignaturePickerView.h"
#include "ThumbnailSidebar.h"
#include "ToolActions.h"
#include "ToolState.h"
#include "UndoManager.h"
#include "UserDefaults.h"
#include "WebLink.h"
#include "WorkspaceActions.h"
#include "WorkspaceToolbar.h"

#include <QAction>
#include <QEvent>
#include <QKeySequence>
#include <QMessageBox>
#include <QPointer>
#include <QProgressDialog>
#include <QSplitter>
#include <QVBoxLayout>

#include <algorithm>
#include <utility>
#include <vector>

// A sentence about the file takes longer to read than the name of a tool.
static constexpr std::chrono::seconds openNoticeTime{6};

// Of the viewer, in pixels: the assistant leaves that much of a narrow window.
static constexpr int smallestViewerWidth = 220;

// In pixels, its scroll bar included.
static constexpr int usualSidebarWidth = 192;
static constexpr int smallestSidebarWidth = 112;
static constexpr int largestSidebarWidth = 420;

static QString sidebarWidthKey() {
    return QStringLiteral("ThumbnailSidebar.width");
}

PDFEditorWorkspaceView::PDFEditorWorkspaceView(std::shared_ptr<PDFEditorDocument> document, const QUrl& fileURL,
                                               std::shared_ptr<ToolState> toolState, UserDefaults& defaults,
                                               QWidget* parent)
    : QWidget(parent), m_document(std::move(document)), m_toolState(std::move(toolState)),
      m_coordinator(new PDFViewCoordinator(defaults, this)), m_defaults(defaults),
      m_assistantDock(new AssistantDock([this] { return makeAssistantPanel(); })), m_splitter(new QSplitter) {
    setObjectName(QStringLiteral("workspace"));
    auto* viewerArea = new QWidget(m_splitter);
    PDFKitRepresentedView representation;
    representation.toolState = m_toolState;
    representation.pdfDocument = m_document->pdfDocument();
    representation.coordinator = m_coordinator;
    representation.fileURL = fileURL;
    representation.onAskAI = [this](const QString& prompt, bool send) { askAI(prompt, send); };
    representation.onTextExtracted = [this](const QString& text) { handleExtractedText(text); };
    representation.onRedactionDrawn = [this] { confirmApplyRedactions(); };
    representation.undoManager = m_document->undoManager();
    m_pdfView = representation.makeView(viewerArea);
    m_pdfView->setObjectName(QStringLiteral("viewer"));
    m_pdfView->setFrameShape(QFrame::NoFrame);
    m_actions = new WorkspaceActions(m_pdfView, m_toolState, this);
    m_notice = new PassingNotice(viewerArea);
    m_sidebar = new ThumbnailSidebar(m_document, *m_coordinator);
    m_toolbar = new WorkspaceToolbar(*m_actions, m_toolState, *m_coordinator);

    auto* viewerLayout = new QVBoxLayout(viewerArea);
    viewerLayout->setContentsMargins(0, 0, 0, 0);
    viewerLayout->addWidget(m_pdfView);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addWidget(m_toolbar);
    // What the assistant leaves.
    viewerArea->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
    auto* content = new QHBoxLayout;
    content->setSpacing(0);
    content->addWidget(m_splitter, 1);
    content->addWidget(m_assistantDock);
    layout->addLayout(content, 1);
    m_lineStylePicker = new LineStylePicker(m_toolState, this);
    connectTools();
    connectRedactions();
    connect(m_actions->action(WorkspaceActions::Command::ocrPage), &QAction::triggered, this,
            &PDFEditorWorkspaceView::ocrCurrentPageTapped);
    connectSidebar();
    connectAssistant();
    connectPanes();
    setFocusProxy(m_pdfView);

    connect(m_actions->action(WorkspaceActions::Command::print), &QAction::triggered, this,
            &PDFEditorWorkspaceView::print);
    connect(m_toolbar, &WorkspaceToolbar::openRequested, this, &PDFEditorWorkspaceView::openNewDocument);
    connect(m_toolbar, &WorkspaceToolbar::settingsRequested, this, &PDFEditorWorkspaceView::settingsRequested);
    connect(m_pdfView, &PDFView::linkActivated, this, [this](const QUrl& url) { WebLink::confirmAndOpen(url, this); });
    connect(m_pdfView, &PDFView::textReadingProgressed, this, &PDFEditorWorkspaceView::showReading);
    connect(m_pdfView, &AnnotatingPDFView::editingTextChanged, m_document.get(), &Document::setBeingTyped);
    connect(m_pdfView, &AnnotatingPDFView::typed, m_document.get(), &PDFEditorDocument::typed);
    connect(m_document.get(), &PDFEditorDocument::draftRequested, m_pdfView, &PDFView::addTo);
    connect(m_document.get(), &Document::commitEditingRequested, m_pdfView, &AnnotatingPDFView::applyEditors);
    if (!m_document->openNotice().isEmpty())
        m_notice->announce(m_document->openNotice(), openNoticeTime);
}

PDFEditorWorkspaceView::~PDFEditorWorkspaceView() {
    m_document->setBeingTyped(false);
}

void PDFEditorWorkspaceView::setFileURL(const QUrl& fileURL) {
    m_coordinator->setFileURL(fileURL);
    m_coordinator->updatePageIndicator();
}

void PDFEditorWorkspaceView::setShowsToolbar(bool shows) {
    m_toolbar->setVisible(shows);
}

int PDFEditorWorkspaceView::toolbarHeight() const {
    return m_toolbar->height();
}

void PDFEditorWorkspaceView::connectTools() {
    const ToolActions& tools = m_actions->tools();
    connect(&tools, &ToolActions::toolChosen, this, &PDFEditorWorkspaceView::selectTool);
    connect(&tools, &ToolActions::markupChosen, this, &PDFEditorWorkspaceView::toggleMarkup);
    connect(&tools, &ToolActions::editTextChosen, this, &PDFEditorWorkspaceView::toggleTextEditingMode);
    new LineStyleHoverModifier(*m_toolbar->toolButton(AnnotationTool::line), *m_lineStylePicker);
    connect(m_toolbar, &WorkspaceToolbar::lineEndStylesRequested, this,
            [this](const QWidget* button) { m_lineStylePicker->popUpWithFocus(*button); });
}

void PDFEditorWorkspaceView::connectRedactions() {
    const auto done = [this] {
        m_pdfView->layoutDocumentView();
        m_notice->announce(QStringLiteral("Redacted — text is now permanently removed. %1 to undo")
                               .arg(QKeySequence(QKeySequence::Undo).toString(QKeySequence::NativeText)));
    };
    m_redactions =
        new RedactionCommand(*m_actions->action(WorkspaceActions::Command::applyRedactions), m_document, done, this);
    m_redactions->update();
}

void PDFEditorWorkspaceView::confirmApplyRedactions() {
    m_redactions->run();
}

void PDFEditorWorkspaceView::selectTool(AnnotationTool tool) {
    m_toolState->setTool(tool);
    m_toolState->setActiveMarkupMode(std::nullopt);
    m_toolState->setTextEditingModeEnabled(false);
    m_notice->announce(QStringLiteral("Switched to %1 Tool").arg(info(tool).label));
    if (tool == AnnotationTool::signature)
        (new SignaturePickerView(m_toolState->signatureStore(), this))->popUp(*m_toolbar->toolButton(tool));
}

void PDFEditorWorkspaceView::toggleTextEditingMode() {
    m_toolState->setTextEditingModeEnabled(!m_toolState->isTextEditingModeEnabled());
    if (!m_toolState->isTextEditingModeEnabled())
        return;
    m_toolState->setTool(AnnotationTool::select);
    m_toolState->setActiveMarkupMode(std::nullopt);
    m_notice->announce(QStringLiteral("Editing Mode — click any line of text to edit it"));
}

void PDFEditorWorkspaceView::toggleMarkup(MarkupAction action) {
    if (m_coordinator->applyMarkup(action))
        return;
    if (m_toolState->activeMarkupMode() == action) {
        m_toolState->setActiveMarkupMode(std::nullopt);
        return;
    }
    m_toolState->setActiveMarkupMode(action);
    m_toolState->setTool(AnnotationTool::select);
    m_toolState->setTextEditingModeEnabled(false);
}

void PDFEditorWorkspaceView::connectSidebar() {
    m_splitter->setObjectName(QStringLiteral("sidebarSplitter"));
    m_splitter->setHandleWidth(1);
    m_splitter->setChildrenCollapsible(false);
    m_splitter->insertWidget(0, m_sidebar);
    m_splitter->setStretchFactor(0, 0);
    m_splitter->setStretchFactor(1, 1);
    m_sidebar->setMinimumWidth(smallestSidebarWidth);
    m_sidebar->setMaximumWidth(largestSidebarWidth);
    const QString remembered = m_defaults.stringForKey(sidebarWidthKey()).value_or(QString());
    const int width = remembered.isEmpty() ? usualSidebarWidth : remembered.toInt();
    m_splitter->setSizes({std::clamp(width, smallestSidebarWidth, largestSidebarWidth), largestSidebarWidth * 4});
    m_sidebarRest.setSingleShot(true);
    m_sidebarRest.setInterval(std::chrono::milliseconds(500));
    connect(&m_sidebarRest, &QTimer::timeout, this,
            [this] { m_defaults.setString(sidebarWidthKey(), QString::number(m_sidebar->width())); });
    connect(m_splitter, &QSplitter::splitterMoved, this, [this] {
        m_sidebarRest.start();
        shareWidth();
    });
    QAction* toggle = m_actions->action(WorkspaceActions::Command::toggleSidebar);
    toggle->setChecked(true);
    connect(toggle, &QAction::triggered, this, &PDFEditorWorkspaceView::setShowsSidebar);
    connect(m_sidebar, &ThumbnailSidebar::announced, m_notice,
            [this](const QString& sentence) { m_notice->announce(sentence); });
}

bool PDFEditorWorkspaceView::showsSidebar() const {
    return !m_sidebar->isHidden();
}

void PDFEditorWorkspaceView::setShowsSidebar(bool shows) {
    if (!shows && m_sidebar->isAncestorOf(focusWidget()))
        m_pdfView->setFocus();
    m_sidebarGaveWay = false;
    m_sidebar->setVisible(shows);
    m_actions->action(WorkspaceActions::Command::toggleSidebar)->setChecked(shows);
    shareWidth();
}

/// Leaves the viewer some width, at first at the cost of the sidebar, then of the assistant.
void PDFEditorWorkspaceView::shareWidth() {
    const int assistant = showsAssistant() ? static_cast<int>(AssistantDock::minPanelWidth) : 0;
    const bool isNarrow = width() - smallestViewerWidth - assistant < smallestSidebarWidth;
    if (std::exchange(m_isNarrow, isNarrow) != isNarrow && (isNarrow ? showsSidebar() : m_sidebarGaveWay)) {
        setShowsSidebar(!isNarrow);
        m_sidebarGaveWay = isNarrow;
    }
    const int sidebar = showsSidebar() ? m_sidebar->width() + m_splitter->handleWidth() : 0;
    m_assistantDock->setAvailableWidth(width() - smallestViewerWidth - sidebar);
}

void PDFEditorWorkspaceView::connectAssistant() {
    QAction* ask = m_actions->action(WorkspaceActions::Command::askAssistant);
    connect(ask, &QAction::triggered, this, [this] { setShowsAssistant(!showsAssistant()); });
    connect(m_assistantDock, &AssistantDock::panelShownChanged, ask, &QAction::setChecked);
    connect(m_assistantDock, &AssistantDock::panelShownChanged, this, &PDFEditorWorkspaceView::shareWidth);
    connect(m_assistantDock, &AssistantDock::panelShownChanged, this, [this](bool shown) {
        if (!shown && m_assistantDock->isAncestorOf(focusWidget()))
            m_pdfView->setFocus();
    });
}

void PDFEditorWorkspaceView::connectPanes() {
    const std::pair<QString, int> commands[] = {{QStringLiteral("nextPane"), 1}, {QStringLiteral("previousPane"), -1}};
    for (const auto& [name, steps] : commands) {
        auto* action = new QAction(this);
        action->setObjectName(name);
        action->setShortcuts(Shortcuts::of(name));
        action->setShortcutContext(Qt::WidgetWithChildrenShortcut);
        addAction(action);
        connect(action, &QAction::triggered, this, [this, steps = steps] { goToPane(steps); });
    }
}

/// Gives the keyboard to the next of sidebar, pages, assistant and toolbar (its page field), as far as they are shown.
void PDFEditorWorkspaceView::goToPane(int steps) {
    struct Pane {
        QWidget* area;
        QWidget* entry;
    };
    std::vector<Pane> panes{{m_pdfView, m_pdfView}};
    if (showsSidebar())
        panes.insert(panes.begin(), {m_sidebar, m_sidebar->focusProxy()});
    if (showsAssistant())
        panes.push_back({m_assistantDock, m_assistantDock->panel()});
    auto* pageField = m_toolbar->findChild<PageField*>();
    if (m_toolbar->isVisible() && pageField->isEnabled())
        panes.push_back({m_toolbar, pageField});
    const QWidget* focus = window()->focusWidget();
    const auto present = std::find_if(panes.begin(), panes.end(), [focus](const Pane& pane) {
        return focus && (pane.area == focus || pane.area->isAncestorOf(focus));
    });
    const auto count = static_cast<int>(panes.size());
    const int from = present == panes.end() ? 0 : static_cast<int>(present - panes.begin());
    panes[static_cast<std::size_t>((from + steps + count) % count)].entry->setFocus(Qt::ShortcutFocusReason);
}

AssistantPanel* PDFEditorWorkspaceView::makeAssistantPanel() {
    auto* panel = new AssistantPanel(assistant());
    panel->onClose = [this] { setShowsAssistant(false); };
    panel->setOnToggleSidebar([this] { setShowsSidebar(!showsSidebar()); });
    connect(panel, &AssistantPanel::settingsRequested, this, &PDFEditorWorkspaceView::settingsRequested);
    return panel;
}

const std::shared_ptr<AssistantViewModel>& PDFEditorWorkspaceView::assistant() {
    if (!m_assistant)
        m_assistant = AssistantViewModel::create(assistantContext(), m_defaults);
    return m_assistant;
}

AssistantContext PDFEditorWorkspaceView::assistantContext() const {
    return {m_document->pdfDocument(), m_coordinator, m_document->originURL()};
}

void PDFEditorWorkspaceView::takePanelsOf(const PDFEditorWorkspaceView& former) {
    setShowsSidebar(former.showsSidebar());
    m_splitter->setSizes({former.m_sidebar->width(), largestSidebarWidth * 4});
    m_assistant = former.m_assistant;
    if (m_assistant)
        m_assistant->setSource(assistantContext());
    m_assistantDock->setPanelWidth(former.m_assistantDock->panelWidth());
    if (former.showsAssistant())
        setShowsAssistant(true);
}

bool PDFEditorWorkspaceView::showsAssistant() const {
    return m_assistantDock->isPanelShown();
}

void PDFEditorWorkspaceView::setShowsAssistant(bool shows) {
    m_assistantDock->setPanelShown(shows);
}

void PDFEditorWorkspaceView::handleExtractedText(const QString& text) {
    setShowsAssistant(true);
    assistant()->appendAssistantTurn(QStringLiteral("Extracted text:\n\n") + text);
}

void PDFEditorWorkspaceView::askAI(const QString& prompt, bool send) {
    setShowsAssistant(true);
    assistant()->setDraft(prompt);
    if (send)
        assistant()->submit();
}

void PDFEditorWorkspaceView::openNewDocument() {
    OpenPanel::show(this, FileOpenRouter::nameFilters(), [](const QUrl& url) { FileOpenRouter::open(url); });
}

void PDFEditorWorkspaceView::print() {
    m_document->commitEditing();
    const auto done = [notice = QPointer(m_notice)](const QString& sentence) {
        if (notice)
            notice->announce(sentence);
    };
    const auto failed = [shown = QPointer(window())](const QString& title, const QString& sentence) {
        auto* box = new QMessageBox(QMessageBox::Warning, QStringLiteral("Print"), {}, QMessageBox::Ok, shown);
        box->setObjectName(QStringLiteral("printFailure"));
        PlainMessage::setText(*box, title, sentence);
        box->setAttribute(Qt::WA_DeleteOnClose);
        box->open();
    };
    PrintPanel::show(m_document->pdfDocument(), m_document->displayName(), m_pdfView->currentPageIndex().value_or(0),
                     this, {done, failed});
}

/// A moment after the reading of much text has begun, and until it ends.
void PDFEditorWorkspaceView::showReading(int pagesRead, int pageCount) {
    auto* progress = findChild<QProgressDialog*>(QStringLiteral("readingProgress"));
    if (!progress) {
        progress = new QProgressDialog(QStringLiteral("Reading the text…"), QStringLiteral("Cancel"), 0,
                                       pageCount > 1 ? pageCount : 0, this);
        progress->setObjectName(QStringLiteral("readingProgress"));
        progress->setWindowTitle(QStringLiteral("Text"));
        progress->setMinimumDuration(500); // milliseconds
        progress->setAutoReset(false);
        connect(progress, &QProgressDialog::canceled, m_pdfView, &PDFView::cancelReadingText);
        connect(m_pdfView, &PDFView::textReadingEnded, progress, [progress] {
            progress->setObjectName({}); // the next reading gets its own
            progress->hide();
            progress->deleteLater();
        });
    }
    progress->setValue(pagesRead);
}

void PDFEditorWorkspaceView::resizeEvent(QResizeEvent* event) {
    shareWidth();
    layout()->activate();
    QWidget::resizeEvent(event);
}

void PDFEditorWorkspaceView::changeEvent(QEvent* event) {
    if (event->type() == QEvent::PaletteChange)
        m_pdfView->setBackgroundColor(Palette::appTint(palette()));
    QWidget::changeEvent(event);
}
