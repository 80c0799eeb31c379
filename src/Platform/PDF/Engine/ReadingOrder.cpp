#include "ReadingOrder.h"

#include <algorithm>
#include <numeric>

namespace {

/// Fewer rows than this are a table row or two, not columns of running text.
constexpr std::size_t leastRows = 5;
/// Cells of a table are short; lines of a column of text are not.
constexpr double leastMeanLength = 18;

bool sameRow(const QRectF& a, const QRectF& b) {
    const double overlap = std::min(a.bottom(), b.bottom()) - std::max(a.top(), b.top());
    return overlap > 0.5 * std::min(a.height(), b.height());
}

/// Lines first..last that stand side by side on one row, from left to right.
struct Row {
    std::size_t first = 0;
    std::size_t count = 1;
};

std::vector<Row> rowsOf(const std::vector<ReadingOrder::Line>& lines) {
    std::vector<Row> rows;
    for (std::size_t i = 0; i < lines.size(); ++i) {
        if (i > 0 && lines[i].upright && lines[i - 1].upright && sameRow(lines[i - 1].bounds, lines[i].bounds) &&
            lines[i].bounds.left() > lines[i - 1].bounds.right())
            ++rows.back().count;
        else
            rows.push_back({i, 1});
    }
    return rows;
}

/// How far the gutters between the columns stay open over a run of rows: [left edge, right edge] for each gutter.
using Gutters = std::vector<std::pair<double, double>>;

Gutters guttersOf(const std::vector<ReadingOrder::Line>& lines, const Row& row) {
    Gutters gutters;
    for (std::size_t i = row.first; i + 1 < row.first + row.count; ++i)
        gutters.emplace_back(lines[i].bounds.right(), lines[i + 1].bounds.left());
    return gutters;
}

/// Narrows `gutters` to what stays open in `row` too; false, and unchanged, when one of them closes.
bool narrow(Gutters& gutters, const Gutters& row, double leastWidth) {
    if (gutters.size() != row.size())
        return false;
    Gutters narrowed = gutters;
    for (std::size_t i = 0; i < row.size(); ++i) {
        narrowed[i].first = std::max(narrowed[i].first, row[i].first);
        narrowed[i].second = std::min(narrowed[i].second, row[i].second);
        if (narrowed[i].second - narrowed[i].first < leastWidth)
            return false;
    }
    gutters = narrowed;
    return true;
}

} // namespace

std::vector<std::size_t> ReadingOrder::order(const std::vector<Line>& lines) {
    std::vector<std::size_t> result(lines.size());
    std::iota(result.begin(), result.end(), std::size_t(0));
    const std::vector<Row> rows = rowsOf(lines);
    for (std::size_t begin = 0; begin < rows.size();) {
        std::size_t end = begin + 1;
        if (rows[begin].count < 2) {
            begin = end;
            continue;
        }
        Gutters gutters = guttersOf(lines, rows[begin]);
        const double leastWidth = 0.5 * lines[rows[begin].first].bounds.height();
        std::size_t segments = rows[begin].count;
        while (end < rows.size() && lines[rows[end].first].bounds.top() > lines[rows[end - 1].first].bounds.top() &&
               narrow(gutters, guttersOf(lines, rows[end]), leastWidth))
            segments += rows[end++].count;
        const std::size_t first = rows[begin].first;
        double characters = 0;
        for (std::size_t i = first; i < first + segments; ++i)
            characters += lines[i].length;
        if (end - begin >= leastRows && characters / double(segments) >= leastMeanLength) {
            std::size_t out = first;
            for (std::size_t column = 0; column < rows[begin].count; ++column)
                for (std::size_t row = begin; row < end; ++row)
                    result[out++] = rows[row].first + column;
        }
        begin = end;
    }
    return result;
}
