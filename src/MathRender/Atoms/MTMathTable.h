#pragma once

#include "MTMathAtom.h"

#include <cstdint>

enum class MTColumnAlignment : std::uint8_t { left, center, right };

/// Lists in rows and columns. Rows may differ in length.
class MTMathTable : public MTMathAtom {
public:
    explicit MTMathTable(QString environmentName = {});

    /// By column; columns behind the end are centred.
    std::vector<MTColumnAlignment> alignments;
    std::vector<std::vector<std::shared_ptr<MTMathList>>> cells;
    /// The environment to write the table as; empty for none.
    QString environment;
    double interColumnSpacing = 0;        ///< in mu, eighteenths of an em
    double interRowAdditionalSpacing = 0; ///< in TeX's jots

    [[nodiscard]] int numRows() const { return static_cast<int>(cells.size()); }
    /// The cells of the longest row. Looks at every row.
    [[nodiscard]] int numColumns() const;

    /// Grows the table with empty rows, and the row with empty lists, as far as needed. Indices are zero-based;
    /// throws MTException for a negative one.
    void setCell(std::shared_ptr<MTMathList> cell, int row, int column);
    void setAlignment(MTColumnAlignment alignment, int column);
    [[nodiscard]] MTColumnAlignment alignmentForColumn(int column) const;

protected:
    MTMathTable(const MTMathTable&) = default;
    [[nodiscard]] std::shared_ptr<MTMathAtom> clone() const override;
    void unshare(ListTransform transform) override;
};
