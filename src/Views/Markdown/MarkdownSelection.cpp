#include "MarkdownSelection.h"

#include "MarkdownTextWriter.h"

#include <QTextBlock>
#include <QTextCursor>
#include <QTextTable>

/// The text of the part of `block` between two positions of the document.
static QString textOf(const QTextBlock& block, int start, int end) {
    QString result;
    for (auto it = block.begin(); !it.atEnd(); ++it) {
        const QTextFragment fragment = it.fragment();
        const int from = qMax(start, fragment.position());
        const int to = qMin(end, fragment.position() + fragment.length());
        const QTextCharFormat format = fragment.charFormat();
        if (from >= to || format.hasProperty(MarkdownTextWriter::insertedBreak))
            continue;
        if (format.hasProperty(MarkdownTextWriter::formulaSource))
            result.append(format.stringProperty(MarkdownTextWriter::formulaSource));
        else
            result.append(QStringView(fragment.text()).sliced(from - fragment.position(), to - from));
    }
    return result.replace(QChar::LineSeparator, u'\n');
}

/// What stands between a block and the one before it.
static QChar separatorBefore(const QTextBlock& block) {
    const QTextTable* table = QTextCursor(block).currentTable();
    if (!table)
        return u'\n';
    const QTextTableCell cell = table->cellAt(block.position());
    return cell.column() > 0 && cell.firstPosition() == block.position() ? u'\t' : u'\n';
}

/// True for the empty blocks that a document has around its tables.
static bool isSpare(const QTextBlock& block) {
    const QTextBlockFormat format = block.blockFormat();
    return block.length() == 1 && !format.hasProperty(QTextFormat::LineHeight) &&
           !format.hasProperty(QTextFormat::BlockRightMargin);
}

static QString textOfCells(const QTextCursor& cursor, const QTextTable& table) {
    int firstRow = 0;
    int rowCount = 0;
    int firstColumn = 0;
    int columnCount = 0;
    cursor.selectedTableCells(&firstRow, &rowCount, &firstColumn, &columnCount);
    QStringList rows;
    for (int row = firstRow; row < firstRow + rowCount; ++row) {
        QStringList cells;
        for (int column = firstColumn; column < firstColumn + columnCount; ++column) {
            const QTextTableCell cell = table.cellAt(row, column);
            cells.append(textOf(cell.firstCursorPosition().block(), cell.firstPosition(), cell.lastPosition()));
        }
        rows.append(cells.join(u'\t'));
    }
    return rows.join(u'\n');
}

QString MarkdownSelection::plainText(const QTextCursor& cursor) {
    // Between two cells of a table the selection is the rectangle of cells that they span.
    if (const QTextTable* table = cursor.currentTable(); table && cursor.hasComplexSelection())
        return textOfCells(cursor, *table);
    const int start = cursor.selectionStart();
    const int end = cursor.selectionEnd();
    QString result;
    QTextBlock block = cursor.document()->findBlock(start);
    for (bool isFirst = true; block.isValid() && block.position() < end; block = block.next()) {
        if (isSpare(block))
            continue;
        if (!isFirst)
            result.append(separatorBefore(block));
        isFirst = false;
        result.append(textOf(block, start, end));
    }
    return result;
}
