#include "BubbleColumn.h"

#include <QtGlobal>

#include <algorithm>

static constexpr int notMeasured = -1;

void BubbleColumn::append(int estimatedHeight) {
    m_rows.push_back({estimatedHeight, notMeasured, 0});
    updateTops(m_rows.size() - 1);
}

void BubbleColumn::removeFrom(std::size_t first) {
    m_rows.resize(std::min(first, m_rows.size()), {0, notMeasured, 0});
}

bool BubbleColumn::setMeasured(std::size_t row, int width, int height) {
    const bool isAnother = m_rows[row].height != height;
    m_rows[row].measuredWidth = width;
    m_rows[row].height = height;
    if (isAnother)
        updateTops(row + 1);
    return isAnother;
}

void BubbleColumn::forgetMeasures() {
    for (Row& row : m_rows)
        row.measuredWidth = notMeasured;
}

void BubbleColumn::updateTops(std::size_t first) {
    for (std::size_t i = first; i < m_rows.size(); ++i)
        m_rows[i].top = i == 0 ? margin : m_rows[i - 1].top + m_rows[i - 1].height + spacing;
}

int BubbleColumn::contentHeight() const {
    return m_rows.empty() ? 0 : m_rows.back().top + m_rows.back().height + margin;
}

BubbleColumn::Range BubbleColumn::rowsBetween(int top, int bottom) const {
    const auto first =
        std::find_if(m_rows.begin(), m_rows.end(), [top](const Row& row) { return row.top + row.height > top; });
    const auto end = std::find_if(first, m_rows.end(), [bottom](const Row& row) { return row.top >= bottom; });
    return {static_cast<std::size_t>(first - m_rows.begin()), static_cast<std::size_t>(end - m_rows.begin())};
}

BubbleColumn::Anchor BubbleColumn::anchorAt(int place) const {
    const std::size_t row = std::min(rowsBetween(place, place + 1).first, m_rows.size() - 1);
    return {row, place - m_rows[row].top, m_rows[row].height};
}

int BubbleColumn::placeOf(const Anchor& anchor) const {
    const Row& row = m_rows[anchor.row];
    if (anchor.offset <= 0 || anchor.height <= 0)
        return row.top + anchor.offset;
    return row.top + static_cast<int>(static_cast<qint64>(anchor.offset) * row.height / anchor.height);
}

int BubbleColumn::positionShowing(std::size_t row, int windowHeight) const {
    const int bottom = m_rows[row].top + m_rows[row].height + margin;
    return std::min(bottom - windowHeight, m_rows[row].top - margin);
}
