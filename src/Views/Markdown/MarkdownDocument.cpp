#include "MarkdownDocument.h"

#include "MarkdownBlock.h"
#include "MarkdownTableWriter.h"
#include "MarkdownTextWriter.h"
#include "MathSegmentSplitter.h"

#include <cmath>

#include <QFontMetricsF>
#include <QTextCursor>
#include <QTextDocument>
#include <QTextTable>

static constexpr double blockGap = 6;
static constexpr double listItemGap = 2; // besides the line spacing
static constexpr double markerGap = 6;
static constexpr double quoteGap = 8;
static constexpr double equationPadding = 4;

namespace {

class DocumentWriter {
public:
    explicit DocumentWriter(MarkdownTextWriter& writer) : m_writer(writer) {
        m_document->setUndoRedoEnabled(false);
        m_document->setDocumentMargin(0);
        m_document->setDefaultFont(m_writer.style().body().font());
        QTextOption option = m_document->defaultTextOption();
        option.setWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
        m_document->setDefaultTextOption(option);
        m_cursor = QTextCursor(m_document.get());
        m_cursor.beginEditBlock();
    }

    MarkdownDocument::Result write(const std::vector<MarkdownBlock>& blocks, bool isCut) {
        for (const MarkdownBlock& block : blocks)
            std::visit([this](const auto& content) { write(content); }, block.content);
        if (isCut || m_isFull)
            writeEnd();
        m_cursor.endEditBlock();
        return {std::move(m_document), std::move(m_decorations)};
    }

private:
    void write(const MarkdownBlock::Heading& heading) {
        if (startBlock(MarkdownDocument::textBlockFormat(), gap()))
            m_writer.writeInline(m_cursor, heading.text, m_writer.style().heading(heading.level));
        m_below = -MarkdownDocument::lineSpacing;
    }

    void write(const MarkdownBlock::Paragraph& paragraph) {
        if (const auto latex = MathSegmentSplitter::soleDisplayEquation(paragraph.text)) {
            writeEquation(*latex);
            return;
        }
        if (startBlock(MarkdownDocument::textBlockFormat(), gap()))
            m_writer.writeInline(m_cursor, fitting(paragraph.text), m_writer.style().body());
        m_below = -MarkdownDocument::lineSpacing;
    }

    void writeEquation(const QString& latex) {
        QTextBlockFormat format;
        format.setAlignment(Qt::AlignHCenter);
        format.setBottomMargin(equationPadding);
        if (startBlock(format, gap() + equationPadding))
            m_writer.writeEquation(m_cursor, latex);
        m_below = equationPadding;
    }

    void write(const MarkdownBlock::BulletList& list) {
        writeItems(list.items, [](qsizetype) { return QStringLiteral("\u2022"); });
    }

    void write(const MarkdownBlock::NumberedList& list) {
        writeItems(list.items, [](qsizetype index) { return QStringLiteral("%1.").arg(index + 1); });
    }

    template <typename Marker>
    void writeItems(const QStringList& items, Marker&& marker) {
        const QTextCharFormat markerFormat = m_writer.style().secondary(m_writer.style().body());
        // The last marker is the widest: digits are about as wide as each other.
        const QFontMetricsF metrics(markerFormat.font());
        const double indent = std::ceil(metrics.horizontalAdvance(marker(items.size() - 1)) + markerGap);
        QTextBlockFormat format = MarkdownDocument::textBlockFormat();
        format.setLeftMargin(indent);
        format.setTextIndent(-indent);
        format.setTabPositions({QTextOption::Tab(indent, QTextOption::LeftTab)});
        for (qsizetype i = 0; i < items.size() && startBlock(format, i == 0 ? gap() : listItemGap); ++i) {
            m_cursor.insertText(marker(i) + u'\t', markerFormat);
            m_writer.writeInline(m_cursor, items[i], m_writer.style().body());
        }
        m_below = -MarkdownDocument::lineSpacing;
    }

    void write(const MarkdownBlock::CodeBlock& code) {
        writePadded(code.text.split(u'\n'), m_writer.style().codeBlock());
    }

    /// Lines as they are on a ground of their own.
    void writePadded(const QStringList& lines, const QTextCharFormat& textFormat) {
        QTextBlockFormat format;
        format.setLeftMargin(MarkdownDecorations::padding);
        format.setRightMargin(MarkdownDecorations::padding);
        int first = -1;
        for (qsizetype i = 0; i < lines.size(); ++i) {
            if (i == lines.size() - 1)
                format.setBottomMargin(MarkdownDecorations::padding);
            if (!startBlock(format, i == 0 ? gap() + MarkdownDecorations::padding : 0))
                break;
            if (first < 0)
                first = m_cursor.position();
            m_writer.writePlain(m_cursor, lines[i], textFormat);
        }
        if (first >= 0)
            m_decorations.addCode(first, m_cursor.position());
        m_below = MarkdownDecorations::padding;
    }

    void write(const MarkdownBlock::Table& table) {
        if (!MarkdownTableWriter::fits(table)) {
            QStringList lines{table.header.join(u'|')};
            for (const QStringList& row : table.rows)
                lines.append(row.join(u'|'));
            writePadded(lines, m_writer.style().codeBlock());
            return;
        }
        if (!takeLines(MarkdownTableWriter::cellCount(table)))
            return;
        m_table = MarkdownTableWriter::write(m_cursor, table, m_table ? blockGap : gap(), m_writer);
        m_decorations.addTable(m_table->firstPosition());
        m_below = MarkdownDecorations::padding - MarkdownDocument::lineSpacing;
        m_isBlockOpen = true; // the one behind the table
        m_isFirst = false;
    }

    void write(const MarkdownBlock::Blockquote& quote) {
        QTextBlockFormat format = MarkdownDocument::textBlockFormat();
        format.setLeftMargin(MarkdownDecorations::quoteBarWidth + quoteGap);
        if (!startBlock(format, gap()))
            return;
        m_decorations.addQuote(m_cursor.position());
        m_writer.writeInline(m_cursor, fitting(quote.text), m_writer.style().secondary(m_writer.style().body()));
        m_below = -MarkdownDocument::lineSpacing;
    }

    void writeEnd() {
        m_isFull = false;
        m_lineCount = 0;
        startBlock(MarkdownDocument::textBlockFormat(), gap());
        m_cursor.insertText(
            QStringLiteral("The rest of this reply is too long to show. Copy the reply to read it all."),
            m_writer.style().secondary(m_writer.style().body()));
    }

    /// The margin above the next block. What ends with a line of text has its spacing below it already.
    [[nodiscard]] double gap() const { return m_isFirst ? 0 : blockGap + m_below; }

    /// False, once and for all, when the document has grown too long.
    bool takeLines(qsizetype count) {
        m_isFull = m_isFull || m_lineCount + count > MarkdownDocument::mostLines;
        m_lineCount += count;
        return !m_isFull;
    }

    /// As many lines of a block that has been started as there is room for.
    QString fitting(const QString& text) {
        qsizetype end = -1;
        do
            end = text.indexOf(u'\n', end + 1);
        while (end >= 0 && takeLines(1));
        return text.left(end);
    }

    bool startBlock(QTextBlockFormat format, double topMargin) {
        if (!takeLines(1))
            return false;
        format.setTopMargin(topMargin);
        if (m_table) {
            // The layout passes over the margin of the first paragraph behind a table.
            QTextTableFormat tableFormat = m_table->format();
            tableFormat.setBottomMargin(topMargin);
            m_table->setFormat(tableFormat);
            m_table = nullptr;
        }
        if (m_isBlockOpen)
            m_cursor.setBlockFormat(format);
        else
            m_cursor.insertBlock(format, {});
        m_isBlockOpen = false;
        m_isFirst = false;
        return true;
    }

    std::unique_ptr<QTextDocument> m_document = std::make_unique<QTextDocument>();
    MarkdownDecorations m_decorations;
    MarkdownTextWriter& m_writer;
    QTextCursor m_cursor;
    QTextTable* m_table = nullptr; // when it is what was written last
    qsizetype m_lineCount = 0;
    double m_below = 0; // what must lie between the last block and the gap to the next; negative when it has too much
    bool m_isBlockOpen = true; // the document's last block is empty and to be used
    bool m_isFirst = true;
    bool m_isFull = false;
};

} // namespace

MarkdownDocument::Result MarkdownDocument::write(const std::vector<MarkdownBlock>& blocks, bool isCut,
                                                 MarkdownTextWriter& writer) {
    return DocumentWriter(writer).write(blocks, isCut);
}

QTextBlockFormat MarkdownDocument::textBlockFormat() {
    QTextBlockFormat format;
    format.setLineHeight(lineSpacing, QTextBlockFormat::LineDistanceHeight);
    return format;
}
