#include "MTMathTable.h"

#include "MTException.h"
#include "MTMathList.h"

#include <algorithm>

namespace {

/// `index` as the index of a container, which it is not when negative.
std::size_t checkedIndex(int index) {
    if (index < 0)
        throw MTException(QStringLiteral("Index %1 out of bounds").arg(index));
    return static_cast<std::size_t>(index);
}

} // namespace

MTMathTable::MTMathTable(QString environmentName)
    : MTMathAtom(MTMathAtomType::table), environment(std::move(environmentName)) {}

int MTMathTable::numColumns() const {
    std::size_t count = 0;
    for (const auto& row : cells)
        count = std::max(count, row.size());
    return static_cast<int>(count);
}

void MTMathTable::setCell(std::shared_ptr<MTMathList> cell, int row, int column) {
    const std::size_t rowIndex = checkedIndex(row);
    const std::size_t columnIndex = checkedIndex(column);
    if (cells.size() <= rowIndex)
        cells.resize(rowIndex + 1);
    auto& rowCells = cells[rowIndex];
    while (rowCells.size() <= columnIndex)
        rowCells.push_back(rowCells.size() == columnIndex ? nullptr : std::make_shared<MTMathList>());
    rowCells[columnIndex] = std::move(cell);
}

void MTMathTable::setAlignment(MTColumnAlignment alignment, int column) {
    const std::size_t index = checkedIndex(column);
    if (alignments.size() <= index)
        alignments.resize(index + 1, MTColumnAlignment::center);
    alignments[index] = alignment;
}

MTColumnAlignment MTMathTable::alignmentForColumn(int column) const {
    const std::size_t index = checkedIndex(column);
    return index < alignments.size() ? alignments[index] : MTColumnAlignment::center;
}

std::shared_ptr<MTMathAtom> MTMathTable::clone() const {
    return cloneOf(*this);
}

void MTMathTable::unshare(ListTransform transform) {
    MTMathAtom::unshare(transform);
    for (auto& row : cells) {
        for (auto& cell : row)
            cell = transform(cell);
    }
}
