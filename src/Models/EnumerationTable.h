#pragma once

#include "QuilloAssert.h"

#include <QStringView>

#include <optional>
#include <span>

/// Look-ups in a table that has one row for each case of an enumeration, in the order of the enumeration.
namespace EnumerationTable {

/// The row of `value`. A table that lacks it, or is out of order, is a programming error.
template <typename Row, typename Case>
const Row& row(std::span<const Row> table, Case Row::*field, Case value) {
    const auto index = static_cast<std::size_t>(value);
    QUILLO_ASSERT(index < table.size() && table[index].*field == value, "A case has its row, in order.");
    return table[index];
}

/// The case whose row has that `rawValue`, or none.
template <typename Row, typename Case>
std::optional<Case> fromRawValue(std::span<const Row> table, Case Row::*field, QStringView rawValue) {
    for (const Row& row : table) {
        if (row.rawValue == rawValue)
            return row.*field;
    }
    return std::nullopt;
}

} // namespace EnumerationTable
