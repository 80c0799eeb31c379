#include "QuickLookPreviewView.h"

#include "PDFDocument.h"
#include "PDFView.h"
#include "PlainText.h"
#include "Shortcuts.h"
#include "UnsupportedFileView.h"
#include "WebLink.h"

#include <QAction>
#include <QFrame>
#include <QLabel>
#include <QProgressBar>
#include <QVBoxLayout>

static constexpr int progressWidth = 260;
static constexpr double zoomStep = 1.25;
static constexpr double largestFittingScale = 1.5;

QuickLookPreviewView::QuickLookPreviewView(QUrl url, QWidget* parent) : QStackedWidget(parent), m_url(std::move(url)) {
    setObjectName(QStringLiteral("preview"));
    addWidget(makeProgress());
}

QuickLookPreviewView::~QuickLookPreviewView() = default;

QWidget* QuickLookPreviewView::makeProgress() {
    auto* progress = new QWidget(this);
    progress->setObjectName(QStringLiteral("previewProgress"));
    auto* line =
        new QLabel(QStringLiteral("Preparing the preview of “%1”…").arg(PlainText::name(m_url.fileName())), progress);
    line->setTextFormat(Qt::PlainText);
    line->setWordWrap(true);
    line->setAlignment(Qt::AlignCenter);
    auto* bar = new QProgressBar(progress);
    bar->setRange(0, 0);
    bar->setTextVisible(false);
    bar->setFixedWidth(progressWidth);
    bar->setAccessibleName(line->text());
    auto* layout = new QVBoxLayout(progress);
    layout->setContentsMargins(32, 32, 32, 32);
    layout->setSpacing(12);
    layout->addStretch();
    layout->addWidget(line);
    layout->addWidget(bar, 0, Qt::AlignHCenter);
    layout->addStretch();
    return progress;
}

void QuickLookPreviewView::showPages(const std::shared_ptr<PDFDocument>& pages) {
    m_pages = new PDFView(this);
    m_pages->setObjectName(QStringLiteral("viewer"));
    m_pages->setAccessibleName(QStringLiteral("Preview of %1").arg(m_url.fileName()));
    m_pages->setFrameShape(QFrame::NoFrame);
    m_pages->setFillsForms(false);
    m_pages->setAutoScales(true);
    m_pages->setDocument(pages);
    connect(m_pages, &PDFView::linkActivated, this, [this](const QUrl& url) { WebLink::confirmAndOpen(url, this); });
    connect(m_pages, &PDFView::scaleChanged, this, [this] {
        if (!m_isFitting && !m_pages->autoScales())
            m_followsWidth = false;
    });
    addZoom();
    const bool hadFocus = isAncestorOf(window()->focusWidget()) || !window()->focusWidget();
    addWidget(m_pages);
    setCurrentWidget(m_pages);
    fitWidth();
    setFocusProxy(m_pages);
    if (hadFocus)
        m_pages->setFocus();
}

/// As wide as the view, unless that makes the letters of a narrow sheet huge.
void QuickLookPreviewView::fitWidth() {
    m_isFitting = true;
    if (m_pages->scaleFactorForSizeToFit() > largestFittingScale)
        m_pages->setScaleFactor(largestFittingScale);
    else
        m_pages->setAutoScales(true);
    m_isFitting = false;
}

void QuickLookPreviewView::resizeEvent(QResizeEvent* event) {
    QStackedWidget::resizeEvent(event);
    if (m_pages && m_followsWidth)
        QMetaObject::invokeMethod(this, &QuickLookPreviewView::fitWidth, Qt::QueuedConnection); // once the pages fit
}

/// There is no tool for it, but the keys of every window.
void QuickLookPreviewView::addZoom() {
    const struct {
        QString name;
        std::function<void()> zoom;
    } commands[] = {
        {QStringLiteral("zoomIn"), [this] { m_pages->setScaleFactor(m_pages->scaleFactor() * zoomStep); }},
        {QStringLiteral("zoomOut"), [this] { m_pages->setScaleFactor(m_pages->scaleFactor() / zoomStep); }},
        {QStringLiteral("zoomToFit"), [this] { m_pages->setAutoScales(true); }},
    };
    for (const auto& [name, zoom] : commands) {
        auto* action = new QAction(m_pages);
        action->setObjectName(name);
        action->setShortcuts(Shortcuts::of(name));
        connect(action, &QAction::triggered, m_pages, zoom);
        m_pages->addAction(action);
    }
}

/// “spreadsheets”, say.
static QString kindOf(const QUrl& url) {
    const QString package = FilePreviewer::packageFor(url.toLocalFile());
    if (package.endsWith(u"calc"))
        return QStringLiteral("spreadsheets");
    return package.endsWith(u"impress") ? QStringLiteral("presentations") : QStringLiteral("such documents");
}

void QuickLookPreviewView::showFailure(FilePreviewer::Outcome outcome) {
    const QString reason =
        outcome == FilePreviewer::Outcome::programMissing
            ? QStringLiteral("Quillo shows %1 with the help of LibreOffice, which isn’t installed on this computer. "
                             "Install the package “%2”, then open the file again.")
                  .arg(kindOf(m_url), FilePreviewer::packageFor(m_url.toLocalFile()))
            : QStringLiteral("It may be damaged, protected by a password, too large, or of another kind than its name "
                             "says.");
    auto* failure = new UnsupportedFileView(m_url, reason, this);
    addWidget(failure);
    setCurrentWidget(failure);
}
