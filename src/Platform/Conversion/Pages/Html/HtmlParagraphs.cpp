#include "HtmlParagraphs.h"

#include <QTextBlock>
#include <QTextCursor>
#include <QTextDocument>
#include <QTextList>

#include <vector>

namespace {

constexpr qsizetype longest = 10'000; ///< characters

struct End {
    qsizetype position = 0;
    bool isLineEnd = false; ///< whether a line ends with the character there, which goes
};

/// Where a part of the text ends that starts at `from`: at a line's end, behind a blank, or between two characters.
End endOfPart(const QString& text, qsizetype from) {
    const auto isIn = [&](qsizetype at) { return at > from + longest / 2; };
    const qsizetype last = from + longest;
    if (const qsizetype line = text.lastIndexOf(QChar(QChar::LineSeparator), last); isIn(line))
        return {line, true};
    if (const qsizetype blank = text.lastIndexOf(QLatin1Char(' '), last - 1); isIn(blank))
        return {blank + 1};
    qsizetype end = last;
    while (isIn(end) && (text[end].isLowSurrogate() || text[end].isMark()))
        --end;
    return {end};
}

/// The list's item is the first part, and the others stand below it.
QTextBlockFormat formatOfParts(const QTextBlock& block) {
    QTextBlockFormat format = block.blockFormat();
    if (const QTextList* list = block.textList())
        format.setIndent(format.indent() + list->format().indent());
    format.setObjectIndex(-1);
    format.setTopMargin(0);
    format.setTextIndent(0);
    return format;
}

void divideBlock(const QTextBlock& block) {
    const QString text = block.text();
    std::vector<End> ends;
    for (qsizetype from = 0; text.size() - from > longest;) {
        ends.push_back(endOfPart(text, from));
        from = ends.back().position + (ends.back().isLineEnd ? 1 : 0);
    }
    QTextBlockFormat first = block.blockFormat();
    QTextBlockFormat format = formatOfParts(block);
    QTextCursor cursor(block);
    cursor.beginEditBlock();
    for (auto end = ends.rbegin(); end != ends.rend(); ++end) {
        cursor.setPosition(block.position() + int(end->position));
        if (end->isLineEnd)
            cursor.deleteChar();
        cursor.insertBlock(format, block.charFormat());
        format.setBottomMargin(0);
    }
    cursor.setPosition(block.position());
    first.setBottomMargin(0);
    cursor.setBlockFormat(first);
    cursor.endEditBlock();
}

} // namespace

void HtmlParagraphs::divide(QTextDocument& document) {
    for (QTextBlock block = document.begin(); block.isValid(); block = block.next())
        if (block.length() > longest + 1)
            divideBlock(block);
}
