#pragma once

#include <cstddef>
#include <vector>

/// Where the rows of a conversation stand, one below the other: heights and places in pixels, nothing that draws.
/// A row that hasn't been measured for the present width has an estimated height.
class BubbleColumn {
public:
    static constexpr int margin = 14;  ///< around all rows
    static constexpr int spacing = 16; ///< between rows

    /// A place that is kept while heights change: within a row at the same part of its height, or in the space before.
    struct Anchor {
        std::size_t row;
        int offset; ///< from the row's upper edge; negative in the space before it
        int height; ///< of the row then
    };

    [[nodiscard]] std::size_t count() const { return m_rows.size(); }
    void append(int estimatedHeight);
    void removeFrom(std::size_t first);

    [[nodiscard]] int height(std::size_t row) const { return m_rows[row].height; }
    [[nodiscard]] bool isMeasured(std::size_t row, int width) const { return m_rows[row].measuredWidth == width; }
    /// True when the height is another one than before.
    bool setMeasured(std::size_t row, int width, int height);
    /// What was measured counts as estimated.
    void forgetMeasures();

    /// Where the row's upper edge is, from the start of the content.
    [[nodiscard]] int top(std::size_t row) const { return m_rows[row].top; }
    [[nodiscard]] int contentHeight() const;
    /// The rows that have a part between the two places; both empty where there is none.
    struct Range {
        std::size_t first;
        std::size_t end;
    };
    [[nodiscard]] Range rowsBetween(int top, int bottom) const;

    [[nodiscard]] Anchor anchorAt(int place) const;
    [[nodiscard]] int placeOf(const Anchor& anchor) const;

    /// The scroll position at which a window of that height shows the row: its end, or where it is higher than the
    /// window its beginning. Not held within the limits of scrolling.
    [[nodiscard]] int positionShowing(std::size_t row, int windowHeight) const;

private:
    struct Row {
        int height;
        int measuredWidth;
        int top;
    };

    void updateTops(std::size_t first);

    std::vector<Row> m_rows;
};
