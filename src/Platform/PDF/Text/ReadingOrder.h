#pragma once

#include <QRectF>

#include <vector>

/// The order in which a person reads the lines of a page.
///
/// Most files write their text in reading order, and that order is kept. Some write a page of columns row by row, the
/// left part of a row and then its right part: there the columns are put back one after the other. A table is read row
/// by row, and so is a table of contents: what a row of dots leads to follows the dots.
namespace ReadingOrder {

struct Line {
    QRectF bounds;       ///< as shown: y down
    int length = 0;      ///< characters
    bool upright = true; ///< written from left to right
    int block = 0;
    bool leads = false;  ///< ends in a leader, the dots that lead the eye to the end of the row
    bool isLed = false;  ///< begins with one
    bool goesOn = false; ///< begins with a letter that isn't a capital, as a line within a sentence mostly does
};

/// A permutation of the lines' indices.
[[nodiscard]] std::vector<std::size_t> order(const std::vector<Line>& lines);

} // namespace ReadingOrder
