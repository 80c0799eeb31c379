// Tables: columns as wide as their widest cell, rows as far apart as lines of text (TeXbook, chapter 22 and its
// \baselineskip, \lineskip and \lineskiplimit).

#include "MTFont.h"
#include "MTMathTable.h"
#include "MTTypesetter.h"

#include <algorithm>
#include <utility>

namespace {

// The distances of rows, as parts of the font's size.
constexpr double kBaseLineSkipMultiplier = 1.2; ///< between the baselines of rows
constexpr double kLineSkipMultiplier = 0.1;     ///< between rows that are too high for that
constexpr double kLineSkipLimitMultiplier = 0;  ///< the least room that the first leaves, or they are
constexpr double kJotMultiplier = 0.3;

MTRange unionOf(MTRange one, MTRange other) {
    const int location = std::min(one.location, other.location);
    return {location, std::max(one.end(), other.end()) - location};
}

} // namespace

std::unique_ptr<MTDisplay> MTTypesetter::makeTable(const MTMathTable& table) {
    const auto numColumns = static_cast<std::size_t>(table.numColumns());
    std::vector<std::unique_ptr<MTDisplay>> rows;
    if (numColumns == 0 || table.numRows() == 0)
        return std::make_unique<MTMathListDisplay>(std::move(rows), table.indexRange);

    std::vector<double> columnWidths(numColumns, 0);
    rows.reserve(table.cells.size());
    for (Cells& cells : typesetCells(table, columnWidths))
        rows.push_back(makeRowWithColumns(std::move(cells), table, columnWidths));
    positionRows(rows, table);
    auto display = std::make_unique<MTMathListDisplay>(std::move(rows), table.indexRange);
    display->setPosition(m_currentPosition);
    return display;
}

std::vector<MTTypesetter::Cells> MTTypesetter::typesetCells(const MTMathTable& table,
                                                            std::vector<double>& columnWidths) {
    std::vector<Cells> rows;
    rows.reserve(table.cells.size());
    for (const auto& row : table.cells) {
        Cells cells;
        cells.reserve(row.size());
        for (std::size_t column = 0; column < row.size(); ++column) {
            cells.push_back(layOut(row[column], m_style, false));
            columnWidths[column] = std::max(columnWidths[column], cells.back()->width());
        }
        rows.push_back(std::move(cells));
    }
    return rows;
}

MTTypesetter::ListDisplay MTTypesetter::makeRowWithColumns(Cells cells, const MTMathTable& table,
                                                           const std::vector<double>& columnWidths) const {
    const double columnSpace = table.interColumnSpacing * styleMetrics().muUnit();
    std::vector<std::unique_ptr<MTDisplay>> placed;
    placed.reserve(cells.size());
    MTRange range = cells.empty() ? MTRange{} : cells.front()->range();
    double columnStart = 0;
    for (std::size_t column = 0; column < cells.size(); ++column) {
        ListDisplay& cell = cells[column];
        const double slack = columnWidths[column] - cell->width();
        double cellPos = columnStart;
        switch (table.alignmentForColumn(static_cast<int>(column))) {
        case MTColumnAlignment::left:
            break;
        case MTColumnAlignment::center:
            cellPos += slack / 2;
            break;
        case MTColumnAlignment::right:
            cellPos += slack;
            break;
        }
        cell->setPosition({cellPos, 0});
        range = unionOf(range, cell->range());
        columnStart += columnWidths[column] + columnSpace;
        placed.push_back(std::move(cell));
    }
    return std::make_unique<MTMathListDisplay>(std::move(placed), range);
}

void MTTypesetter::positionRows(const std::vector<std::unique_ptr<MTDisplay>>& rows, const MTMathTable& table) const {
    const double fontSize = m_styleFont->fontSize();
    const double openup = table.interRowAdditionalSpacing * kJotMultiplier * fontSize;
    const double baselineSkip = openup + kBaseLineSkipMultiplier * fontSize;
    const double lineSkip = openup + kLineSkipMultiplier * fontSize;
    const double lineSkipLimit = openup + kLineSkipLimitMultiplier * fontSize;

    double y = 0;
    double prevDescent = 0;
    bool isFirst = true;
    for (const auto& row : rows) {
        if (!isFirst) {
            double skip = baselineSkip;
            if (skip - (prevDescent + row->ascent()) < lineSkipLimit)
                skip = prevDescent + row->ascent() + lineSkip;
            y -= skip;
        }
        isFirst = false;
        row->setPosition({0, y});
        prevDescent = row->descent();
    }

    const double ascent = rows.front()->ascent();
    const double descent = -y + prevDescent;
    const double shiftDown = 0.5 * (ascent - descent) - styleMetrics().axisHeight();
    for (const auto& row : rows)
        row->setPosition(row->position() - QPointF(0, shiftDown));
}
