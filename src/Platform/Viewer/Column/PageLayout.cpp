#include "PageLayout.h"

#include <algorithm>
#include <cmath>

static constexpr double largestPageSide = 1 << 28;

static int pixels(double points, double scale) {
    const double side = std::round(points * scale);
    return side >= 1 ? static_cast<int>(std::min(side, largestPageSide)) : 1; // also for a side that is no number
}

void PageLayout::setSizes(std::vector<QSizeF> sizes) {
    m_sizes = std::move(sizes);
    layOut();
}

void PageLayout::setMetrics(const Metrics& metrics) {
    if (m_metrics == metrics)
        return;
    m_metrics = metrics;
    layOut();
}

void PageLayout::layOut() {
    m_tops.resize(m_sizes.size() + 1);
    m_maxWidth = 0;
    double top = m_metrics.margin;
    for (std::size_t i = 0; i < m_sizes.size(); ++i) {
        m_tops[i] = top;
        top += pixels(m_sizes[i].height(), m_metrics.scale) + m_metrics.gap;
        m_maxWidth = std::max(m_maxWidth, m_sizes[i].width());
    }
    m_tops.back() = top;
    m_height = m_sizes.empty() ? 0 : top - m_metrics.gap + m_metrics.margin;
    if (m_height < m_metrics.view.height()) {
        const double down = std::floor((m_metrics.view.height() - m_height) / 2);
        for (double& each : m_tops)
            each += down;
    }
}

QSize PageLayout::pageSize(int index) const {
    const QSizeF& size = m_sizes[static_cast<std::size_t>(index)];
    return {pixels(size.width(), m_metrics.scale), pixels(size.height(), m_metrics.scale)};
}

QRectF PageLayout::pageRect(int index) const {
    const QSize size = pageSize(index);
    const double left = std::floor((contentSize().width() - size.width()) / 2);
    return {QPointF(left, m_tops[static_cast<std::size_t>(index)]), QSizeF(size)};
}

QSizeF PageLayout::contentSize() const {
    const double width = m_sizes.empty() ? 0 : pixels(m_maxWidth, m_metrics.scale) + 2.0 * m_metrics.margin;
    return {std::max<double>(width, m_metrics.view.width()), std::max<double>(m_height, m_metrics.view.height())};
}

int PageLayout::pageAtHeight(double y) const {
    if (m_sizes.empty())
        return -1;
    const auto next = std::upper_bound(m_tops.begin(), m_tops.end() - 1, y + m_metrics.gap / 2.0);
    return std::max(0, static_cast<int>(next - m_tops.begin()) - 1);
}

std::pair<int, int> PageLayout::pagesBetween(double top, double bottom) const {
    if (m_sizes.empty())
        return {0, 0};
    // The first page that ends below `top`: the page after it starts below top plus the gap.
    const auto first = std::upper_bound(m_tops.begin() + 1, m_tops.end(), top + m_metrics.gap) - (m_tops.begin() + 1);
    const auto last = std::lower_bound(m_tops.begin(), m_tops.end() - 1, bottom) - m_tops.begin();
    return {static_cast<int>(std::min(first, last)), static_cast<int>(last)};
}
