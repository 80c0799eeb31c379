#include "ThumbnailList.h"

#include "PDFDocument.h"
#include "PDFEditorDocument.h"
#include "PDFPage.h"
#include "Palette.h"
#include "ThumbnailCell.h"
#include "ThumbnailLoader.h"
#include "ThumbnailModel.h"

#include <QPainter>
#include <QResizeEvent>
#include <QScrollBar>

#include <algorithm>
#include <chrono>
#include <cmath>

using namespace std::chrono_literals;

// Above and below of what is in sight, drawn when that has been.
static constexpr int rowsAhead = 6;

// A reader who scrolls through the document wants its pages drawn; the thumbnails that go along come when he rests.
static constexpr auto viewerRest = 150ms;

ThumbnailList::ThumbnailList(std::shared_ptr<PDFEditorDocument> document, QWidget* parent)
    : QListView(parent), m_document(std::move(document)),
      m_loader(new ThumbnailLoader(m_document->pdfDocument(), this)),
      m_model(new ThumbnailModel(m_document->pdfDocument(), this)),
      m_cell(new ThumbnailCell(*m_model, *m_loader, this)) {
    setObjectName(QStringLiteral("thumbnails"));
    setAccessibleName(QStringLiteral("Pages"));
    if (const std::shared_ptr<PDFPage> first = m_document->pdfDocument()->page(0))
        m_cell->makeRoomFor(first->displaySize(PDFDisplayBox::cropBox));
    setItemDelegate(m_cell);
    setModel(m_model);
    setUniformItemSizes(true);
    setResizeMode(QListView::Adjust);
    setVerticalScrollMode(QAbstractItemView::ScrollPerPixel);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOn); // the pictures' size follows the width
    setSelectionMode(QAbstractItemView::ExtendedSelection);
    setEditTriggers(QAbstractItemView::NoEditTriggers);
    setFrameShape(QFrame::NoFrame);
    setMouseTracking(true);
    setAcceptDrops(true);
    viewport()->setAcceptDrops(true);
    viewport()->setBackgroundRole(QPalette::Window);
    setFocusedRow(0);

    m_pictureTimer.setSingleShot(true);
    connect(&m_pictureTimer, &QTimer::timeout, this, &ThumbnailList::askForPictures);
    m_editTimer.setSingleShot(true);
    m_editTimer.setInterval(200ms);
    connect(&m_editTimer, &QTimer::timeout, this, &ThumbnailList::askForPictures);
    connect(m_document->pdfDocument().get(), &PDFDocument::pageContentChanged, this, [this] {
        if (!m_editTimer.isActive())
            m_editTimer.start();
    });
    connect(m_model, &ThumbnailModel::layoutChanged, this, [this] {
        m_landingGap.reset();
        if (!currentIndex().isValid())
            setFocusedRow(0);
        m_pictureTimer.start(0ms);
    });
    connect(m_loader, &ThumbnailLoader::drawn, this, [this](int row) {
        const int formerHeight = rowHeight();
        if (m_cell->makeRoomFor(m_loader->picture(row).size()))
            layOutFrom(formerHeight);
        update(m_model->index(row));
    });
    m_edgeTimer.setInterval(16ms);
    connect(&m_edgeTimer, &QTimer::timeout, this, &ThumbnailList::scrollAtEdge);
}

ThumbnailList::~ThumbnailList() = default;

// Rows

int ThumbnailList::rowHeight() const {
    return m_cell->height(viewport()->width());
}

void ThumbnailList::setCurrentPage(std::optional<int> row) {
    if (row == m_model->currentRow())
        return;
    m_model->setCurrentRow(row);
    m_isFollowing = true;
    if (row)
        scrollTo(m_model->index(*row), QAbstractItemView::EnsureVisible);
    m_isFollowing = false;
}

void ThumbnailList::setFocusedRow(int row) {
    selectionModel()->setCurrentIndex(m_model->index(row), QItemSelectionModel::NoUpdate);
    m_anchorRow = row;
}

std::optional<int> ThumbnailList::focusedRow() const {
    return currentIndex().isValid() ? std::optional(currentIndex().row()) : std::nullopt;
}

std::vector<int> ThumbnailList::selectedRows() const {
    std::vector<int> rows;
    for (const QItemSelectionRange& range : selectionModel()->selection())
        for (int row = range.top(); row <= range.bottom(); ++row)
            rows.push_back(row);
    std::sort(rows.begin(), rows.end());
    return rows;
}

std::vector<int> ThumbnailList::rowsMeantBy(int row) const {
    return selectionModel()->isSelected(m_model->index(row)) ? selectedRows() : std::vector{row};
}

// Pictures

void ThumbnailList::askForPictures() {
    if (!isVisible()) {
        m_loader->want({}, {});
        return;
    }
    const int count = m_model->rowCount();
    const int first = std::clamp(verticalOffset() / rowHeight(), 0, std::max(0, count - 1));
    const int end = std::min(count, (verticalOffset() + viewport()->height()) / rowHeight() + 1);
    std::vector<int> rows;
    for (int row = first; row < end; ++row)
        rows.push_back(row);
    for (int ahead = 0; ahead < rowsAhead; ++ahead) {
        if (end + ahead < count)
            rows.push_back(end + ahead);
        if (first - 1 - ahead >= 0)
            rows.push_back(first - 1 - ahead);
    }
    const QSizeF pixels = QSizeF(m_cell->pictureArea(viewport()->width())) * devicePixelRatioF();
    m_loader->want(rows,
                   QSize(static_cast<int>(std::ceil(pixels.width())), static_cast<int>(std::ceil(pixels.height()))));
}

bool ThumbnailList::isDrawn() const {
    return m_loader->isIdle() && !m_pictureTimer.isActive() && !m_editTimer.isActive();
}

QImage ThumbnailList::picture(int row) const {
    return m_loader->picture(row);
}

/// The page at the top stays there while cells become higher or lower.
void ThumbnailList::layOutFrom(int formerRowHeight) {
    const double place = verticalOffset() / static_cast<double>(formerRowHeight);
    doItemsLayout();
    verticalScrollBar()->setValue(static_cast<int>(std::lround(place * rowHeight())));
    m_pictureTimer.start(0ms);
}

void ThumbnailList::resizeEvent(QResizeEvent* event) {
    QListView::resizeEvent(event);
    if (event->oldSize().width() > 0 && event->size().width() != event->oldSize().width())
        layOutFrom(m_cell->height(event->oldSize().width()));
    m_pictureTimer.start(0ms);
}

void ThumbnailList::showEvent(QShowEvent* event) {
    QListView::showEvent(event);
    if (const auto row = m_model->currentRow())
        scrollTo(m_model->index(*row), QAbstractItemView::EnsureVisible);
    m_pictureTimer.start(0ms);
}

void ThumbnailList::hideEvent(QHideEvent* event) {
    QListView::hideEvent(event);
    m_pictureTimer.start(0ms);
}

void ThumbnailList::scrollContentsBy(int dx, int dy) {
    QListView::scrollContentsBy(dx, dy);
    m_pictureTimer.start(m_isFollowing ? viewerRest : 0ms);
}

void ThumbnailList::paintEvent(QPaintEvent* event) {
    QListView::paintEvent(event);
    if (!m_landingGap)
        return;
    QPainter painter(viewport());
    painter.setRenderHint(QPainter::Antialiasing);
    constexpr int lineWidth = 3;
    const int y =
        std::clamp(*m_landingGap * rowHeight() - verticalOffset(), lineWidth, viewport()->height() - lineWidth);
    painter.setPen(QPen(Palette::brandBlue, lineWidth, Qt::SolidLine, Qt::RoundCap));
    constexpr int margin = 10;
    painter.drawLine(margin, y, viewport()->width() - margin, y);
    painter.setBrush(palette().color(QPalette::Window));
    painter.drawEllipse(QPoint(margin, y), 4, 4);
}
