#include "MarkdownTableWriter.h"

#include "MarkdownDecorations.h"
#include "MarkdownDocument.h"
#include "MarkdownTextWriter.h"

#include <QTextCursor>
#include <QTextTable>

#include <algorithm>

static constexpr double columnGap = 10;

static void writeRow(const QTextTable& table, int row, const QStringList& cells, const QTextCharFormat& format,
                     MarkdownTextWriter& writer) {
    for (int column = 0; column < cells.size(); ++column) {
        QTextTableCell cell = table.cellAt(row, column);
        QTextTableCellFormat cellFormat;
        cellFormat.setLeftPadding(column == 0 ? 0 : columnGap);
        cellFormat.setTopPadding(row == 1 ? MarkdownTableWriter::dividerDistance : 0);
        cell.setFormat(cellFormat);
        QTextCursor cursor = cell.firstCursorPosition();
        cursor.setBlockFormat(MarkdownDocument::textBlockFormat());
        writer.writeInline(cursor, cells[column], format);
    }
}

qsizetype MarkdownTableWriter::columnCount(const MarkdownBlock::Table& table) {
    qsizetype count = table.header.size();
    for (const QStringList& row : table.rows)
        count = std::max(count, row.size());
    return count;
}

qsizetype MarkdownTableWriter::cellCount(const MarkdownBlock::Table& table) {
    return columnCount(table) * (static_cast<qsizetype>(table.rows.size()) + 1);
}

bool MarkdownTableWriter::fits(const MarkdownBlock::Table& table) {
    return columnCount(table) <= mostColumns && cellCount(table) <= mostCells;
}

QTextTable* MarkdownTableWriter::write(QTextCursor& cursor, const MarkdownBlock::Table& table, double topMargin,
                                       MarkdownTextWriter& writer) {
    QTextTableFormat format;
    format.setBorder(0);
    format.setCellSpacing(0);
    format.setCellPadding(0);
    format.setTopMargin(topMargin + MarkdownDecorations::padding);
    format.setLeftMargin(MarkdownDecorations::padding);
    format.setRightMargin(MarkdownDecorations::padding);
    // The last row has the space below its line already.
    format.setBottomMargin(MarkdownDecorations::padding - MarkdownDocument::lineSpacing);
    QTextTable* grid =
        cursor.insertTable(static_cast<int>(table.rows.size()) + 1, static_cast<int>(columnCount(table)), format);
    writeRow(*grid, 0, table.header, writer.style().tableHeader(), writer);
    for (std::size_t row = 0; row < table.rows.size(); ++row)
        writeRow(*grid, static_cast<int>(row) + 1, table.rows[row], writer.style().body(), writer);
    cursor.movePosition(QTextCursor::End);
    return grid;
}
