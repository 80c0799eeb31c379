#include "ToolbarLayout.h"

#include <QStyle>
#include <QWidget>

#include <algorithm>

static constexpr int gap = 11;
static constexpr int rowSpacing = 4;
static constexpr int separatorInset = 6;

ToolbarLayout::ToolbarLayout(QWidget* parent) : QLayout(parent) {}

ToolbarLayout::~ToolbarLayout() = default;

void ToolbarLayout::addGroup(QWidget* group, Placement placement) {
    addChildWidget(group);
    m_entries.push_back({std::make_unique<QWidgetItem>(group), placement});
}

void ToolbarLayout::addItem(QLayoutItem* item) {
    m_entries.push_back({std::unique_ptr<QLayoutItem>(item), Placement::follows});
}

int ToolbarLayout::count() const {
    return static_cast<int>(m_entries.size());
}

QLayoutItem* ToolbarLayout::itemAt(int index) const {
    return index >= 0 && index < count() ? m_entries[static_cast<std::size_t>(index)].item.get() : nullptr;
}

QLayoutItem* ToolbarLayout::takeAt(int index) {
    if (index < 0 || index >= count())
        return nullptr;
    QLayoutItem* item = m_entries[static_cast<std::size_t>(index)].item.release();
    m_entries.erase(m_entries.begin() + index);
    return item;
}

int ToolbarLayout::widthOf(std::size_t first, std::size_t end) const {
    int width = 0;
    for (std::size_t i = first; i < end; ++i)
        width += m_entries[i].item->sizeHint().width() + (i > first ? gap : 0);
    return width;
}

/// As many entries in each row as fit, and always one.
void ToolbarLayout::addRows(std::vector<Row>& rows, std::size_t first, std::size_t end, int width) const {
    for (std::size_t i = first; i < end; ++i) {
        const int height = m_entries[i].item->sizeHint().height();
        if (i > first && widthOf(rows.back().first, i + 1) <= width) {
            rows.back().end = i + 1;
            rows.back().height = std::max(rows.back().height, height);
        } else {
            rows.push_back({i, i + 1, height});
        }
    }
}

std::size_t ToolbarLayout::firstOf(Placement placement) const {
    const auto found = std::find_if(m_entries.begin(), m_entries.end(),
                                    [placement](const Entry& entry) { return entry.placement == placement; });
    return static_cast<std::size_t>(found - m_entries.begin());
}

std::vector<ToolbarLayout::Row> ToolbarLayout::rows(int width) const {
    const std::size_t end = m_entries.size();
    const std::size_t half = firstOf(Placement::beginsHalf);
    std::vector<Row> result;
    if (widthOf(0, end) <= width) {
        addRows(result, 0, end, width);
    } else if (widthOf(0, half) <= width && widthOf(half, end) <= width) {
        addRows(result, 0, half, width);
        addRows(result, half, end, width);
    } else {
        const std::size_t right = firstOf(Placement::beginsRightSide);
        addRows(result, 0, right, width);
        addRows(result, right, end, width);
    }
    return result;
}

QSize ToolbarLayout::sizeHint() const {
    const QMargins margins = contentsMargins();
    const int width = widthOf(0, m_entries.size()) + margins.left() + margins.right();
    return {width, heightForWidth(width)};
}

QSize ToolbarLayout::minimumSize() const {
    QSize size;
    for (const Entry& entry : m_entries)
        size = size.expandedTo(entry.item->sizeHint());
    return size.grownBy(contentsMargins());
}

int ToolbarLayout::heightForWidth(int width) const {
    const QMargins margins = contentsMargins();
    int height = margins.top() + margins.bottom();
    const std::vector<Row> all = rows(width - margins.left() - margins.right());
    for (const Row& row : all)
        height += row.height;
    return height + static_cast<int>(std::max<std::size_t>(all.size(), 1) - 1) * rowSpacing;
}

void ToolbarLayout::setGeometry(const QRect& rect) {
    QLayout::setGeometry(rect);
    m_separators.clear();
    const QRect content = rect.marginsRemoved(contentsMargins());
    int y = content.y();
    for (const Row& row : rows(content.width())) {
        placeRow(row, {content.x(), y, content.width(), row.height});
        y += row.height + rowSpacing;
    }
}

void ToolbarLayout::placeRow(const Row& row, const QRect& rect) {
    const Qt::LayoutDirection direction = parentWidget()->layoutDirection();
    const std::size_t firstAtRight = std::max(row.first, firstOf(Placement::beginsRightSide));
    int x = rect.x();
    for (std::size_t i = row.first; i < row.end; ++i) {
        const Entry& entry = m_entries[i];
        if (i == firstAtRight) {
            x = std::max(x, rect.x() + rect.width() - widthOf(i, row.end));
        } else if (i > row.first) {
            const QRect middle(x - gap / 2 - 1, rect.y() + separatorInset, 1, rect.height() - 2 * separatorInset);
            const QRect line = QStyle::visualRect(direction, rect, middle);
            m_separators.emplace_back(line.topLeft(), line.bottomLeft());
        }
        const QSize size = entry.item->sizeHint();
        entry.item->setGeometry(QStyle::visualRect(
            direction, rect, {x, rect.y() + (rect.height() - size.height()) / 2, size.width(), size.height()}));
        x += size.width() + gap;
    }
}
