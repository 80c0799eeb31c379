#include "ReadingOrder.h"

#include <algorithm>
#include <numeric>
#include <optional>

namespace {

using ReadingOrder::Line;
using Sequence = std::vector<std::size_t>;

/// Fewer rows than this are a table row or two, not columns of running text.
constexpr std::size_t leastRows = 5;
/// Cells of a table are short; lines of a column of text are not.
constexpr double leastMeanLength = 18;
/// A page number, "xviii" and "1234–1240" too.
constexpr int longestLed = 12;

bool sameRow(const QRectF& a, const QRectF& b) {
    const double overlap = std::min(a.bottom(), b.bottom()) - std::max(a.top(), b.top());
    return overlap > 0.5 * std::min(a.height(), b.height());
}

bool followsInRow(const Line& before, const Line& line) {
    return before.upright && line.upright && sameRow(before.bounds, line.bounds) &&
           line.bounds.left() > before.bounds.right();
}

/// Finds what stands at the end of a row, where the file writes it apart from the row.
class RowEnds {
public:
    explicit RowEnds(const std::vector<Line>& lines) : m_lines(lines), m_byMiddle(lines.size()) {
        std::iota(m_byMiddle.begin(), m_byMiddle.end(), std::size_t(0));
        std::sort(m_byMiddle.begin(), m_byMiddle.end(),
                  [this](std::size_t a, std::size_t b) { return middle(a) < middle(b); });
    }

    /// The nearest short line to the right of one that leads; none when another one stands between.
    [[nodiscard]] std::optional<std::size_t> ledBy(std::size_t leader) const {
        const QRectF& bounds = m_lines[leader].bounds;
        std::optional<std::size_t> nearest;
        const auto first = std::lower_bound(m_byMiddle.begin(), m_byMiddle.end(), bounds.top(),
                                            [this](std::size_t i, double top) { return middle(i) < top; });
        for (auto at = first; at != m_byMiddle.end() && middle(*at) <= bounds.bottom(); ++at) {
            if (*at != leader && followsInRow(m_lines[leader], m_lines[*at]) &&
                (!nearest || m_lines[*at].bounds.left() < m_lines[*nearest].bounds.left()))
                nearest = *at;
        }
        return nearest && m_lines[*nearest].length <= longestLed ? nearest : std::nullopt;
    }

private:
    [[nodiscard]] double middle(std::size_t line) const { return m_lines[line].bounds.center().y(); }

    const std::vector<Line>& m_lines;
    Sequence m_byMiddle;
};

/// The lines as the file has them, but the page numbers of a table of contents behind their rows.
Sequence withLedLinesMoved(const std::vector<Line>& lines) {
    Sequence sequence(lines.size());
    std::iota(sequence.begin(), sequence.end(), std::size_t(0));
    std::vector<std::pair<std::size_t, std::size_t>> moves; // what is led, its leader
    std::optional<RowEnds> ends;
    for (std::size_t i = 0; i < lines.size(); ++i) {
        if (!lines[i].leads || !lines[i].upright || (i + 1 < lines.size() && followsInRow(lines[i], lines[i + 1])))
            continue;
        if (!ends)
            ends.emplace(lines);
        if (const auto led = ends->ledBy(i))
            moves.emplace_back(*led, i);
    }
    if (moves.empty())
        return sequence;
    constexpr auto none = std::size_t(-1);
    std::vector<std::size_t> ledOf(lines.size(), none);
    std::vector<bool> isMoved(lines.size(), false);
    for (const auto& [led, leader] : moves) {
        if (isMoved[led] || lines[led].leads)
            continue;
        isMoved[led] = true;
        ledOf[leader] = led;
    }
    sequence.clear();
    for (std::size_t i = 0; i < lines.size(); ++i) {
        if (!isMoved[i])
            sequence.push_back(i);
        if (ledOf[i] != none)
            sequence.push_back(ledOf[i]);
    }
    return sequence;
}

/// Lines of a row that belong together, as a title with the dots and the page number behind it: places in the sequence.
struct Cell {
    std::size_t first = 0;
    std::size_t count = 1;
    double left = 0;
    double right = 0;
    int length = 0;
    bool goesOn = false; // begins within a sentence, or leads to the end of its row
};

using Row = std::vector<Cell>;

std::vector<Row> rowsOf(const std::vector<Line>& lines, const Sequence& sequence) {
    std::vector<Row> rows;
    for (std::size_t i = 0; i < sequence.size(); ++i) {
        const Line& line = lines[sequence[i]];
        const Line* before = i > 0 ? &lines[sequence[i - 1]] : nullptr;
        if (!before || !followsInRow(*before, line))
            rows.emplace_back();
        Row& row = rows.back();
        if (row.empty() || !(before->leads || line.isLed))
            row.push_back({i, 0, line.bounds.left(), line.bounds.right(), 0, line.goesOn});
        Cell& cell = row.back();
        cell.goesOn = cell.goesOn || line.leads || line.isLed;
        ++cell.count;
        cell.right = line.bounds.right();
        cell.length += line.length;
    }
    return rows;
}

/// How far the gutters between the columns stay open over a run of rows: [left edge, right edge] for each gutter.
using Gutters = std::vector<std::pair<double, double>>;

Gutters guttersOf(const Row& row) {
    Gutters gutters;
    for (std::size_t i = 0; i + 1 < row.size(); ++i)
        gutters.emplace_back(row[i].right, row[i + 1].left);
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

/// Whether the cells [first, last) of each row read like lines of running text: most of them reach to the end of the
/// column or nearly so, and many begin within a sentence. The cells of a table do neither.
bool isRunningText(const std::vector<Row>& rows, std::size_t begin, std::size_t end, std::size_t first,
                   std::size_t last) {
    std::vector<double> widths;
    std::size_t within = 0;
    for (std::size_t row = begin; row < end; ++row) {
        const auto from = rows[row].begin() + std::ptrdiff_t(first);
        const auto to = rows[row].begin() + std::ptrdiff_t(last);
        widths.push_back((to - 1)->right - from->left);
        within += std::any_of(from, to, [](const Cell& cell) { return cell.goesOn; }) ? 1 : 0;
    }
    const auto middle = widths.begin() + std::ptrdiff_t(widths.size() / 2);
    std::nth_element(widths.begin(), middle, widths.end());
    constexpr double leastFilled = 0.8;
    return 4 * within >= widths.size() && *middle >= leastFilled * *std::max_element(middle, widths.end());
}

/// Where each column of running text begins among the cells of the rows. Short cells, such as numbers before the text
/// or amounts behind it, go with the neighbour that is nearer. One entry alone: the rows are those of a table.
std::vector<std::size_t> columnsOf(const std::vector<Row>& rows, std::size_t begin, std::size_t end, Gutters gutters) {
    const std::size_t cells = rows[begin].size();
    std::vector<std::size_t> starts(cells);
    std::iota(starts.begin(), starts.end(), std::size_t(0));
    std::vector<double> meanLengths(cells, 0);
    for (std::size_t row = begin; row < end; ++row)
        for (std::size_t cell = 0; cell < cells; ++cell)
            meanLengths[cell] += double(rows[row][cell].length) / double(end - begin);
    const auto width = [&gutters](std::size_t i) { return gutters[i].second - gutters[i].first; };
    while (starts.size() > 1) {
        const auto shortest = std::min_element(meanLengths.begin(), meanLengths.end());
        if (*shortest >= leastMeanLength)
            break;
        const auto at = std::size_t(shortest - meanLengths.begin());
        const bool toRight = at + 1 < starts.size() && (at == 0 || width(at) <= width(at - 1));
        const std::size_t gone = toRight ? at : at - 1; // the gutter that isn't one
        meanLengths[gone] += meanLengths[gone + 1];
        meanLengths.erase(meanLengths.begin() + std::ptrdiff_t(gone) + 1);
        starts.erase(starts.begin() + std::ptrdiff_t(gone) + 1);
        gutters.erase(gutters.begin() + std::ptrdiff_t(gone));
    }
    for (std::size_t i = 0; i < starts.size(); ++i)
        if (!isRunningText(rows, begin, end, starts[i], i + 1 < starts.size() ? starts[i + 1] : cells))
            return {0};
    return starts;
}

} // namespace

std::vector<std::size_t> ReadingOrder::order(const std::vector<Line>& lines) {
    const Sequence sequence = withLedLinesMoved(lines);
    const std::vector<Row> rows = rowsOf(lines, sequence);
    std::vector<std::size_t> result;
    result.reserve(lines.size());
    const auto put = [&](const Cell& cell) {
        for (std::size_t i = 0; i < cell.count; ++i)
            result.push_back(sequence[cell.first + i]);
    };
    const auto boundsOf = [&](const Row& row) { return lines[sequence[row.front().first]].bounds; };
    for (std::size_t begin = 0; begin < rows.size();) {
        std::size_t end = begin + 1;
        Gutters gutters = guttersOf(rows[begin]);
        const double leastWidth = 0.5 * boundsOf(rows[begin]).height();
        while (!gutters.empty() && end < rows.size() && boundsOf(rows[end]).top() > boundsOf(rows[end - 1]).top() &&
               narrow(gutters, guttersOf(rows[end]), leastWidth))
            ++end;
        std::vector<std::size_t> columns{0};
        if (end - begin >= leastRows)
            columns = columnsOf(rows, begin, end, std::move(gutters));
        columns.push_back(rows[begin].size());
        for (std::size_t column = 0; column + 1 < columns.size(); ++column)
            for (std::size_t row = begin; row < end; ++row)
                std::for_each(rows[row].begin() + std::ptrdiff_t(columns[column]),
                              rows[row].begin() + std::ptrdiff_t(columns[column + 1]), put);
        begin = end;
    }
    return result;
}
