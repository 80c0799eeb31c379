#include "PDFDocument.h"
#include "PDFEditorDocument.h"
#include "PageFiles.h"
#include "PageMimeData.h"
#include "Palette.h"
#include "ThumbnailList.h"
#include "ThumbnailLoader.h"
#include "ThumbnailModel.h"

#include <QApplication>
#include <QDrag>
#include <QDragEnterEvent>
#include <QPainter>
#include <QScrollBar>

#include <algorithm>
#include <cmath>

static constexpr int edgeHeight = 48;     // of the strips in which a drag scrolls
static constexpr double fastestStep = 22; // pixels a turn, at the very edge

void ThumbnailList::startDragging(int row) {
    const std::vector<int> rows = rowsMeantBy(row);
    auto* drag = new QDrag(this);
    drag->setMimeData(new PageMimeData(m_document, rows, row));
    const QPixmap picture = dragPicture(row, rows.size());
    drag->setPixmap(picture);
    const QSizeF size = picture.deviceIndependentSize();
    drag->setHotSpot(QPoint(static_cast<int>(size.width() / 2), static_cast<int>(size.height() / 3)));
    drag->exec(Qt::MoveAction | Qt::CopyAction, Qt::MoveAction);
}

/// The page that was taken hold of; with others, sheets behind it and their number.
QPixmap ThumbnailList::dragPicture(int row, std::size_t count) const {
    constexpr int margin = 12;
    constexpr int sheetStep = 4;
    constexpr QSizeF usual(90, 116);
    const QImage image = m_loader->picture(row);
    const QSizeF page = (image.isNull() ? usual : QSizeF(image.size())).scaled(usual, Qt::KeepAspectRatio);
    const qreal ratio = devicePixelRatioF();
    const QSizeF size = page + QSizeF(2 * margin, 2 * margin);
    QPixmap pixmap((size * ratio).toSize());
    pixmap.setDevicePixelRatio(ratio);
    pixmap.fill(Qt::transparent);
    QPainter painter(&pixmap);
    painter.setRenderHints(QPainter::Antialiasing | QPainter::SmoothPixmapTransform);
    painter.setOpacity(0.9);
    const QRectF front(QPointF(margin, margin), page);
    painter.setPen(QColor(0, 0, 0, 90));
    painter.setBrush(Qt::white);
    for (int sheet = static_cast<int>(std::min<std::size_t>(count, 3)) - 1; sheet >= 0; --sheet)
        painter.drawRect(front.translated(sheet * sheetStep, sheet * sheetStep));
    if (!image.isNull())
        painter.drawImage(front.adjusted(0.5, 0.5, -0.5, -0.5), image);
    if (count > 1) {
        const QString text = QString::number(count);
        QFont bold = font();
        bold.setBold(true);
        painter.setFont(bold);
        painter.setOpacity(1);
        const int height = painter.fontMetrics().height() + 4;
        QRectF badge(0, 0, std::max(height, painter.fontMetrics().horizontalAdvance(text) + 12), height);
        badge.moveCenter(front.topRight() - QPointF(badge.width() / 4, 0));
        badge.moveRight(std::min(badge.right(), size.width() - 1));
        painter.setPen(QPen(Qt::white, 1.5));
        painter.setBrush(Palette::systemRed);
        painter.drawRoundedRect(badge, badge.height() / 2, badge.height() / 2);
        painter.drawText(badge, Qt::AlignCenter, text);
    }
    return pixmap;
}

int ThumbnailList::gapAt(QPoint position) const {
    const int y = position.y() + verticalOffset();
    return std::clamp((y + rowHeight() / 2) / rowHeight(), 0, m_model->rowCount());
}

bool ThumbnailList::understands(const QMimeData& dragged) const {
    return PageMimeData::from(&dragged) || PageMimeData::indexInText(dragged) ||
           !PageFiles::pdfFiles(dragged).isEmpty();
}

void ThumbnailList::setLandingGap(std::optional<int> gap) {
    if (m_landingGap == gap)
        return;
    m_landingGap = gap;
    viewport()->update();
}

void ThumbnailList::takeDrag(QDropEvent& event, QPoint position) {
    if (!understands(*event.mimeData())) {
        event.ignore(); // the window may know what to do with it
        return;
    }
    m_dragPosition = {position.x(), std::clamp(position.y(), 0, viewport()->height() - 1)};
    setLandingGap(gapAt(m_dragPosition));
    m_edgeTimer.start();
    const PageMimeData* pages = PageMimeData::from(event.mimeData());
    event.setDropAction(pages && pages->isOf(*m_document) ? Qt::MoveAction : Qt::CopyAction);
    event.accept();
}

void ThumbnailList::forgetDrag() {
    m_edgeTimer.stop();
    setLandingGap({});
}

void ThumbnailList::takeDrop(QDropEvent& event, QPoint position) {
    takeDrag(event, position);
    const auto gap = m_landingGap;
    forgetDrag();
    event.setAccepted(gap && onDrop && onDrop(*event.mimeData(), *gap));
}

void ThumbnailList::dragEnterEvent(QDragEnterEvent* event) {
    takeDrag(*event, event->position().toPoint());
}

void ThumbnailList::dragMoveEvent(QDragMoveEvent* event) {
    takeDrag(*event, event->position().toPoint());
}

void ThumbnailList::dragLeaveEvent(QDragLeaveEvent*) {
    forgetDrag();
}

void ThumbnailList::dropEvent(QDropEvent* event) {
    takeDrop(*event, event->position().toPoint());
}

void ThumbnailList::scrollAtEdge() {
    const int y = m_dragPosition.y();
    const int above = edgeHeight - y;
    const int below = y - (viewport()->height() - edgeHeight);
    const double depth = std::clamp(std::max(above, below) / static_cast<double>(edgeHeight), 0.0, 1.0);
    if (depth == 0)
        return;
    const int step = static_cast<int>(std::ceil(depth * fastestStep));
    verticalScrollBar()->setValue(verticalScrollBar()->value() + (above > below ? -step : step));
    setLandingGap(gapAt(m_dragPosition));
    viewport()->update();
}
