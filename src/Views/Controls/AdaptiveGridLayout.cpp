#include "AdaptiveGridLayout.h"

AdaptiveGridLayout::AdaptiveGridLayout(int minimumCellWidth, int spacing) : m_minimumCellWidth(minimumCellWidth) {
    setContentsMargins(0, 0, 0, 0);
    setSpacing(spacing);
}

AdaptiveGridLayout::~AdaptiveGridLayout() {
    for (QLayoutItem* item : m_items)
        delete item;
}

void AdaptiveGridLayout::addItem(QLayoutItem* item) {
    m_items.push_back(item);
}

int AdaptiveGridLayout::count() const {
    return static_cast<int>(m_items.size());
}

QLayoutItem* AdaptiveGridLayout::itemAt(int index) const {
    return index >= 0 && index < count() ? m_items[static_cast<std::size_t>(index)] : nullptr;
}

QLayoutItem* AdaptiveGridLayout::takeAt(int index) {
    QLayoutItem* item = itemAt(index);
    if (item)
        m_items.erase(m_items.begin() + index);
    return item;
}

int AdaptiveGridLayout::columns(int width) const {
    return qMax(1, (width + spacing()) / (m_minimumCellWidth + spacing()));
}

int AdaptiveGridLayout::cellHeight() const {
    int height = 0;
    for (const QLayoutItem* item : m_items)
        height = qMax(height, item->sizeHint().height());
    return height;
}

int AdaptiveGridLayout::heightForWidth(int width) const {
    const int rows = (count() + columns(width) - 1) / columns(width);
    return qMax(0, rows * (cellHeight() + spacing()) - spacing());
}

QSize AdaptiveGridLayout::sizeHint() const {
    return minimumSize();
}

QSize AdaptiveGridLayout::minimumSize() const {
    return {m_minimumCellWidth, m_items.empty() ? 0 : cellHeight()};
}

void AdaptiveGridLayout::setGeometry(const QRect& rect) {
    QLayout::setGeometry(rect);
    const int columnCount = columns(rect.width());
    const int cellWidth = (rect.width() - (columnCount - 1) * spacing()) / columnCount;
    for (int i = 0; i < count(); ++i) {
        const QPoint place((i % columnCount) * (cellWidth + spacing()), (i / columnCount) * (cellHeight() + spacing()));
        m_items[static_cast<std::size_t>(i)]->setGeometry({rect.topLeft() + place, QSize(cellWidth, cellHeight())});
    }
}
