#include "LandingView.h"

#include "AdaptiveGridLayout.h"
#include "DocumentController.h"
#include "DroppedFile.h"
#include "FileOpenRouter.h"
#include "OpenDocumentCard.h"
#include "OpenPanel.h"
#include "RecentThumbnailCell.h"
#include "RecentThumbnailLoader.h"

#include <QApplication>
#include <QDragEnterEvent>
#include <QIcon>
#include <QLabel>
#include <QMimeData>
#include <QPushButton>
#include <QTimer>
#include <QVBoxLayout>

#include <algorithm>

static constexpr int contentWidth = 800;
static constexpr int cellSpacing = 16;
static constexpr int minimumCellWidth = 130;

LandingView::LandingView(DocumentController& controller, std::function<void(const QUrl& url)> onOpenInPlace,
                         QWidget* parent)
    : QScrollArea(parent), m_controller(controller), m_onOpenInPlace(std::move(onOpenInPlace)),
      m_thumbnailLoader(new RecentThumbnailLoader(this)), m_card(new OpenDocumentCard) {
    setObjectName(QStringLiteral("landingView"));
    setAccessibleName(QStringLiteral("Start"));
    setFrameShape(QFrame::NoFrame);
    setWidgetResizable(true);
    setAcceptDrops(true);
    setFocusPolicy(Qt::NoFocus);

    auto* column = new QWidget;
    column->setMaximumWidth(contentWidth);
    auto* columnLayout = new QVBoxLayout(column);
    columnLayout->setContentsMargins(32, 48, 32, 32);
    columnLayout->setSpacing(28);
    columnLayout->addWidget(makeHeader());
    columnLayout->addWidget(m_card);
    columnLayout->addWidget(makeRecentsSection());
    columnLayout->addStretch();

    auto* content = new QWidget;
    auto* layout = new QHBoxLayout(content);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addStretch();
    layout->addWidget(column, 1000);
    layout->addStretch();
    setWidget(content);

    connect(m_card->selectButton(), &QPushButton::clicked, this, &LandingView::selectFile);
    setFocusProxy(m_card->selectButton());
}

LandingView::~LandingView() = default;

QWidget* LandingView::makeHeader() {
    auto* header = new QWidget;
    auto* icon = new QLabel;
    icon->setPixmap(QApplication::windowIcon().pixmap(QSize(88, 88), devicePixelRatioF()));
    auto* name = new QLabel(QStringLiteral("Quillo"));
    QFont nameFont = font();
    nameFont.setPointSizeF(nameFont.pointSizeF() * 2.6);
    nameFont.setWeight(QFont::Bold);
    name->setFont(nameFont);
    auto* slogan = new QLabel(QStringLiteral("Highlight, draw, and ask AI about your PDFs."));
    QFont sloganFont = font();
    sloganFont.setPointSizeF(sloganFont.pointSizeF() * 1.15);
    slogan->setFont(sloganFont);

    auto* layout = new QVBoxLayout(header);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(6);
    for (QWidget* part : std::initializer_list<QWidget*>{icon, name, slogan})
        layout->addWidget(part, 0, Qt::AlignHCenter);
    return header;
}

QWidget* LandingView::makeRecentsSection() {
    m_recentsSection = new QWidget;
    m_recentsSection->setObjectName(QStringLiteral("recents"));
    auto* heading = new QLabel(QStringLiteral("Recents"));
    QFont headingFont = font();
    headingFont.setPointSizeF(headingFont.pointSizeF() * 1.2);
    headingFont.setWeight(QFont::DemiBold);
    heading->setFont(headingFont);
    auto* clear = new QPushButton(QStringLiteral("Clear Recents"));
    clear->setObjectName(QStringLiteral("clearRecents"));
    clear->setAccessibleName(clear->text());
    connect(clear, &QPushButton::clicked, this, [this] {
        m_controller.clearRecentDocuments();
        showRecents();
    });
    connect(&m_controller, &DocumentController::recentDocumentsChanged, this, [this] {
        // Cleared by a menu, or some are gone. One that is opened elsewhere doesn't move the others about.
        const QList<QUrl> urls = m_controller.recentDocumentURLs();
        const auto isListed = [&urls](const QUrl& url) { return urls.contains(url); };
        if (m_recentsShown && !std::all_of(m_shownRecents.begin(), m_shownRecents.end(), isListed))
            showRecents();
    });

    auto* headingRow = new QHBoxLayout;
    headingRow->addWidget(heading);
    headingRow->addStretch();
    headingRow->addWidget(clear);
    m_recentsGrid = new AdaptiveGridLayout(minimumCellWidth, cellSpacing);
    auto* layout = new QVBoxLayout(m_recentsSection);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(12);
    layout->addLayout(headingRow);
    layout->addLayout(m_recentsGrid);
    m_recentsSection->hide();
    return m_recentsSection;
}

void LandingView::showRecents() {
    while (const auto item = std::unique_ptr<QLayoutItem>(m_recentsGrid->takeAt(0))) {
        item->widget()->hide();
        item->widget()->deleteLater();
    }
    m_shownRecents = m_controller.recentDocumentURLs();
    for (const QUrl& url : m_shownRecents) {
        auto* cell = new RecentThumbnailCell(url, *m_thumbnailLoader, m_recentsSection);
        connect(cell, &RecentThumbnailCell::clicked, this, [this, url] { openFile(url); });
        m_recentsGrid->addWidget(cell);
    }
    m_recentsSection->setVisible(!m_shownRecents.isEmpty());
}

void LandingView::showEvent(QShowEvent* event) {
    QScrollArea::showEvent(event);
    if (m_recentsShown)
        return;
    m_recentsShown = true;
    showRecents();
    m_controller.lookUpRecentDocuments();
}

void LandingView::selectFile() {
    OpenPanel::show(this, FileOpenRouter::nameFilters(), [this](const QUrl& url) { openFile(url); });
}

void LandingView::openFile(const QUrl& url) {
    const FileOpenRouter::Kind kind = FileOpenRouter::classify(url);
    const bool becomesDocument = kind == FileOpenRouter::Kind::pdf || kind == FileOpenRouter::Kind::track1;
    if (becomesDocument && m_onOpenInPlace)
        m_onOpenInPlace(url);
    else if (kind != FileOpenRouter::Kind::pdf)
        FileOpenRouter::open(url);
    else
        m_controller.openDocument(url, true);
}

void LandingView::dragEnterEvent(QDragEnterEvent* event) {
    if (!FileOpenRouter::droppedFile(*event->mimeData()))
        return;
    m_card->setDropTargeted(true);
    event->acceptProposedAction();
}

void LandingView::dragLeaveEvent(QDragLeaveEvent*) {
    m_card->setDropTargeted(false);
}

void LandingView::dropEvent(QDropEvent* event) {
    m_card->setDropTargeted(false);
    const auto dropped = FileOpenRouter::droppedFile(*event->mimeData());
    const auto kept = dropped ? DroppedFile::keep(*dropped) : std::nullopt;
    if (!kept)
        return;
    event->acceptProposedAction();
    // Opening may ask for a password, and the program that the file came from waits until the drop is over.
    QTimer::singleShot(0, this, [this, url = *kept] { openFile(url); });
}
