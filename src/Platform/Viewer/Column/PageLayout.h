#pragma once

#include <QPointF>
#include <QRectF>
#include <QSizeF>

#include <utility>
#include <vector>

/// Where the pages of a document lie in one centred column. Pure geometry, for any number of pages: a change of scale
/// costs one pass over the sizes, a look-up is a binary search.
///
/// All results are in content space: device pixels, origin at the upper left of the whole column, y down. Every edge of
/// a page is on a whole pixel, so that pictures of pages fall on pixels. Positions are doubles that hold whole numbers,
/// since a column may be longer than an int can count.
class PageLayout {
public:
    /// In device pixels.
    struct Metrics {
        double scale = 1.0; ///< pixels for a point
        int gap = 0;        ///< between two pages
        int margin = 0;     ///< around the column
        QSize view;         ///< a column smaller than this is centred in it
        bool operator==(const Metrics&) const = default;
    };

    /// The sizes of the pages as shown, in points.
    void setSizes(std::vector<QSizeF> sizes);
    void setMetrics(const Metrics& metrics);
    [[nodiscard]] const Metrics& metrics() const { return m_metrics; }

    [[nodiscard]] int count() const { return static_cast<int>(m_sizes.size()); }
    /// At least one pixel, and never so large that pixels of a page can't be counted in an int.
    [[nodiscard]] QSize pageSize(int index) const;
    [[nodiscard]] QRectF pageRect(int index) const;
    /// The column with its margins, never smaller than the view.
    [[nodiscard]] QSizeF contentSize() const;

    /// The page whose band holds the height `y`; a band reaches to the middle of the gaps around the page. The first or
    /// last page for a height outside, -1 when there are no pages.
    [[nodiscard]] int pageAtHeight(double y) const;
    /// The pages that a window from `top` to `bottom` touches, as [first, last).
    [[nodiscard]] std::pair<int, int> pagesBetween(double top, double bottom) const;

private:
    void layOut();

    Metrics m_metrics;
    std::vector<QSizeF> m_sizes;
    std::vector<double> m_tops; // one more than pages: the last is the top of the page that would follow
    double m_maxWidth = 0;
    double m_height = 0; // of the column with its margins
};
