#include "PDFEditorWorkspaceView.h"

#include "AnnotatingPDFView.h"
#include "FileOpenRouter.h"
#include "OpenPanel.h"
#include "PDFEditorDocument.h"
#include "PDFKitRepresentedView.h"
#include "PDFViewCoordinator.h"
#include "Palette.h"
#include "PassingNotice.h"
#include "SymbolIcon.h"
#include "ToolState.h"
#include "UndoManager.h"
#include "WebLink.h"
#include "WorkspaceActions.h"
#include "WorkspaceToolbar.h"

#include <QAction>
#include <QEvent>
#include <QVBoxLayout>

// A sentence about the file takes longer to read than the name of a tool.
static constexpr std::chrono::seconds openNoticeTime{6};

PDFEditorWorkspaceView::PDFEditorWorkspaceView(std::shared_ptr<PDFEditorDocument> document, const QUrl& fileURL,
                                               std::shared_ptr<ToolState> toolState, UserDefaults& defaults,
                                               QWidget* parent)
    : QWidget(parent), m_document(std::move(document)), m_toolState(std::move(toolState)),
      m_coordinator(new PDFViewCoordinator(defaults, this)) {
    setObjectName(u"workspace"_qs);
    auto* viewerArea = new QWidget(this);
    PDFKitRepresentedView representation;
    representation.toolState = m_toolState;
    representation.pdfDocument = m_document->pdfDocument();
    representation.coordinator = m_coordinator;
    representation.fileURL = fileURL;
    representation.undoManager = m_document->undoManager();
    m_pdfView = representation.makeView(viewerArea);
    m_pdfView->setObjectName(u"viewer"_qs);
    m_pdfView->setFrameShape(QFrame::NoFrame);
    m_actions = new WorkspaceActions(m_pdfView, this);
    m_notice = new PassingNotice(viewerArea);
    makeMarkupActions();
    auto* toolbar = new WorkspaceToolbar(*m_actions, m_markupActions, m_toolState, *m_coordinator);

    auto* viewerLayout = new QVBoxLayout(viewerArea);
    viewerLayout->setContentsMargins(0, 0, 0, 0);
    viewerLayout->addWidget(m_pdfView);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addWidget(toolbar);
    layout->addWidget(viewerArea, 1);
    setFocusProxy(m_pdfView);

    connect(toolbar, &WorkspaceToolbar::openRequested, this, &PDFEditorWorkspaceView::openNewDocument);
    connect(m_pdfView, &PDFView::linkActivated, this, [this](const QUrl& url) { WebLink::confirmAndOpen(url, this); });
    connect(m_toolState.get(), &ToolState::activeMarkupModeChanged, this, &PDFEditorWorkspaceView::updateMarkupActions);
    if (!m_document->openNotice().isEmpty())
        m_notice->announce(m_document->openNotice(), openNoticeTime);
}

PDFEditorWorkspaceView::~PDFEditorWorkspaceView() = default;

void PDFEditorWorkspaceView::setFileURL(const QUrl& fileURL) {
    m_coordinator->setFileURL(fileURL);
    m_coordinator->updatePageIndicator();
}

void PDFEditorWorkspaceView::makeMarkupActions() {
    for (const MarkupActionInfo& info : allMarkupActions()) {
        auto* action = new QAction(SymbolIcon::icon(info.symbolName), info.title, this);
        const QKeySequence keys(u"Ctrl+Shift+"_qs + info.shortcutKey.toUpper());
        action->setObjectName(info.rawValue);
        action->setShortcut(keys);
        action->setToolTip(helpText(info.action, keys.toString(QKeySequence::NativeText)));
        action->setCheckable(true);
        connect(action, &QAction::triggered, this, [this, markup = info.action] {
            toggleMarkup(markup);
            // A button that was pressed has changed its look, whatever became of the mode.
            updateMarkupActions();
        });
        m_markupActions.append(action);
    }
}

void PDFEditorWorkspaceView::updateMarkupActions() {
    for (const MarkupActionInfo& info : allMarkupActions()) {
        m_markupActions[static_cast<int>(info.action)]->setChecked(m_toolState->activeMarkupMode() == info.action);
    }
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

void PDFEditorWorkspaceView::openNewDocument() {
    OpenPanel::show(this, [](const QUrl& url) { FileOpenRouter::open(url); });
}

void PDFEditorWorkspaceView::changeEvent(QEvent* event) {
    if (event->type() == QEvent::PaletteChange)
        m_pdfView->setBackgroundColor(Palette::appTint(palette()));
    QWidget::changeEvent(event);
}
