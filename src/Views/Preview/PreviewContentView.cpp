#include "PreviewContentView.h"

#include "AssistantPanel.h"
#include "AssistantViewModel.h"
#include "FileOpenRouter.h"
#include "FilePath.h"
#include "FilePreview.h"
#include "OpenPanel.h"
#include "QuickLookPreviewView.h"
#include "Shortcuts.h"
#include "SymbolIcon.h"
#include "SymbolPicture.h"
#include "ToolbarButton.h"
#include "UnsupportedFileView.h"

#include <QAction>
#include <QFrame>
#include <QHBoxLayout>
#include <QLabel>

#include <utility>

static QString noText() {
    return QStringLiteral(
        "Quillo couldn’t extract text from this file yet — this can happen right after downloading a file, before "
        "Spotlight has finished indexing it. Try again in a moment, or ask about it visually using what’s shown in the "
        "preview.");
}

PreviewContentView::PreviewContentView(QUrl url, bool isSupported, MakeAssistant makeAssistant, QWidget* parent)
    : QWidget(parent), m_url(std::move(url)), m_isSupported(isSupported), m_makeAssistant(std::move(makeAssistant)),
      m_preview(new FilePreview(FilePath::absolute(m_url), this)) {
    setObjectName(QStringLiteral("previewContent"));
    connect(m_preview, &FilePreview::textReady, this, &PreviewContentView::setText);
    if (m_isSupported) {
        makePreviewLayout();
        return;
    }
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(new UnsupportedFileView(m_url, this));
}

PreviewContentView::~PreviewContentView() = default;

static QFrame* makeLine(QFrame::Shape shape, QWidget* parent) {
    auto* line = new QFrame(parent);
    line->setFrameShape(shape);
    line->setFrameShadow(QFrame::Sunken);
    return line;
}

void PreviewContentView::makePreviewLayout() {
    m_pages = new QuickLookPreviewView(m_url, this);
    connect(m_preview, &FilePreview::pagesReady, m_pages, &QuickLookPreviewView::showPages);
    connect(m_preview, &FilePreview::pagesFailed, m_pages, &QuickLookPreviewView::showFailure);

    m_panelPlace = new QFrame(this);
    m_panelPlace->setObjectName(QStringLiteral("assistantPlace"));
    m_waiting = makeWaitingPlace();
    m_waiting->setFixedWidth(panelWidth);
    auto* panelRow = new QHBoxLayout(m_panelPlace);
    panelRow->setContentsMargins(0, 0, 0, 0);
    panelRow->setSpacing(0);
    panelRow->addWidget(makeLine(QFrame::VLine, m_panelPlace));
    m_panelLayout = new QVBoxLayout;
    m_panelLayout->addWidget(m_waiting);
    panelRow->addLayout(m_panelLayout);
    m_panelPlace->hide();

    auto* row = new QHBoxLayout;
    row->setSpacing(0);
    row->addWidget(m_pages, 1);
    row->addWidget(m_panelPlace);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addWidget(makeToolbar());
    layout->addWidget(makeLine(QFrame::HLine, this));
    layout->addLayout(row, 1);
    setFocusProxy(m_pages);
}

QWidget* PreviewContentView::makeToolbar() {
    auto* open = new QAction(QStringLiteral("Open"), this);
    open->setObjectName(QStringLiteral("previewOpen"));
    open->setToolTip(QStringLiteral("Open another file…"));
    open->setIcon(SymbolIcon::icon(QStringLiteral("doc.badge.plus")));
    connect(open, &QAction::triggered, this, &PreviewContentView::openNewDocument);

    m_ask = new QAction(QStringLiteral("Ask"), this);
    m_ask->setObjectName(QStringLiteral("previewAsk"));
    m_ask->setToolTip(QStringLiteral("Ask the AI assistant about this document"));
    m_ask->setIcon(SymbolIcon::icon(QStringLiteral("sparkles")));
    m_ask->setCheckable(true);
    m_ask->setShortcuts(Shortcuts::of(QStringLiteral("askAssistant")));
    connect(m_ask, &QAction::toggled, this, &PreviewContentView::showPanel);

    auto* toolbar = new QWidget(this);
    toolbar->setObjectName(QStringLiteral("previewToolbar"));
    auto* layout = new QHBoxLayout(toolbar);
    layout->setContentsMargins(8, 4, 8, 4);
    layout->addStretch();
    for (QAction* action : {open, m_ask}) {
        auto* button = new ToolbarButton(action, toolbar);
        button->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
        layout->addWidget(button);
    }
    return toolbar;
}

QWidget* PreviewContentView::makeWaitingPlace() {
    auto* place = new QWidget(this);
    auto* label = new QLabel(QStringLiteral("Reading document…"), place);
    label->setObjectName(QStringLiteral("readingDocument"));
    auto* layout = new QVBoxLayout(place);
    layout->setSpacing(12);
    layout->addStretch();
    layout->addWidget(new SymbolPicture(QStringLiteral("text.magnifyingglass"), 32, place), 0, Qt::AlignHCenter);
    layout->addWidget(label, 0, Qt::AlignHCenter);
    layout->addStretch();
    return place;
}

void PreviewContentView::showEvent(QShowEvent* event) {
    QWidget::showEvent(event);
    if (!std::exchange(m_didAttemptExtraction, true))
        m_preview->start(m_isSupported);
}

void PreviewContentView::setText(const std::optional<QString>& text) {
    m_assistant = m_makeAssistant({m_url, text.value_or(noText())});
    if (m_isSupported && showsAssistant())
        showPanel();
}

bool PreviewContentView::showsAssistant() const {
    return m_ask && m_ask->isChecked();
}

void PreviewContentView::setShowsAssistant(bool shows) {
    if (m_ask)
        m_ask->setChecked(shows);
}

void PreviewContentView::showPanel() {
    if (m_assistant && m_waiting && showsAssistant()) {
        auto* panel = new AssistantPanel(m_assistant, m_panelPlace);
        panel->setFixedWidth(panelWidth);
        panel->onClose = [this] { setShowsAssistant(false); };
        connect(panel, &AssistantPanel::settingsRequested, this, &PreviewContentView::settingsRequested);
        delete std::exchange(m_waiting, nullptr);
        m_panelLayout->addWidget(panel);
        m_panelPlace->setFocusProxy(panel);
    }
    m_panelPlace->setVisible(showsAssistant());
    (showsAssistant() ? static_cast<QWidget*>(m_panelPlace) : m_pages)->setFocus();
}

void PreviewContentView::openNewDocument() {
    OpenPanel::show(this, FileOpenRouter::nameFilters(), [](const QUrl& url) { FileOpenRouter::open(url); });
}
