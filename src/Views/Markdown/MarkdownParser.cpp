#include "MarkdownParser.h"

#include "GraphemeClusters.h"

#include <algorithm>

using Lines = std::vector<QStringView>;

static const QLatin1String fence("```");
static const QLatin1String quoteMarker("> ");
static const QLatin1String emptyQuoteLine(">");
static constexpr qsizetype markerLength = 2; // of quotes and bullets
static constexpr int deepestHeading = 6;

static bool isHorizontalSpace(QChar character) {
    return character == u'\t' || character.category() == QChar::Separator_Space;
}

static QStringView trimmed(QStringView line) {
    while (!line.isEmpty() && isHorizontalSpace(line.front()))
        line = line.sliced(1);
    while (!line.isEmpty() && isHorizontalSpace(line.back()))
        line.chop(1);
    return line;
}

static bool startsWith(QStringView line, QLatin1String prefix) {
    return line.startsWith(prefix) && GraphemeClusters::standsAlone(line, prefix.size() - 1);
}

static bool isQuoteLine(QStringView trimmedLine) {
    return startsWith(trimmedLine, quoteMarker) || trimmedLine == emptyQuoteLine;
}

static bool isBulletLine(QStringView trimmedLine) {
    return startsWith(trimmedLine, QLatin1String("- ")) || startsWith(trimmedLine, QLatin1String("* "));
}

static bool isTableStart(const Lines& lines, std::size_t index, QStringView trimmedLine) {
    return trimmedLine.contains(u'|') && index + 1 < lines.size() && MarkdownParser::isTableSeparator(lines[index + 1]);
}

static Lines split(QStringView text) {
    Lines lines;
    for (const QStringView line : text.tokenize(u'\n'))
        lines.push_back(line);
    return lines;
}

// Each of the following starts at the first line of its block and leaves `index` behind the last.

static MarkdownBlock::CodeBlock readCodeBlock(const Lines& lines, std::size_t& index) {
    QStringList code;
    for (++index; index < lines.size() && !startsWith(trimmed(lines[index]), fence); ++index)
        code.append(lines[index].toString());
    if (index < lines.size())
        ++index;
    return {code.join(u'\n')};
}

static MarkdownBlock::Table readTable(const Lines& lines, std::size_t& index) {
    MarkdownBlock::Table table{MarkdownParser::splitTableRow(lines[index]), {}};
    for (index += 2; index < lines.size() && lines[index].contains(u'|'); ++index)
        table.rows.push_back(MarkdownParser::splitTableRow(lines[index]));
    return table;
}

static MarkdownBlock::Blockquote readBlockquote(const Lines& lines, std::size_t& index) {
    QStringList quoted;
    for (; index < lines.size(); ++index) {
        const QStringView line = trimmed(lines[index]);
        if (!isQuoteLine(line))
            break;
        quoted.append(line == emptyQuoteLine ? QString() : line.sliced(markerLength).toString());
    }
    return {quoted.join(u'\n')};
}

static MarkdownBlock::BulletList readBulletList(const Lines& lines, std::size_t& index) {
    MarkdownBlock::BulletList list;
    for (; index < lines.size(); ++index) {
        const QStringView line = trimmed(lines[index]);
        if (!isBulletLine(line))
            break;
        list.items.append(line.sliced(markerLength).toString());
    }
    return list;
}

static MarkdownBlock::NumberedList readNumberedList(const Lines& lines, std::size_t& index) {
    MarkdownBlock::NumberedList list;
    for (; index < lines.size(); ++index) {
        const auto item = MarkdownParser::numberedListItem(trimmed(lines[index]));
        if (!item)
            break;
        list.items.append(*item);
    }
    return list;
}

static bool endsParagraph(const Lines& lines, std::size_t index, QStringView line) {
    return line.isEmpty() || MarkdownParser::headingLevel(line) || startsWith(line, fence) || isBulletLine(line) ||
           MarkdownParser::numberedListItem(line) || isQuoteLine(line) || isTableStart(lines, index, line);
}

static MarkdownBlock::Paragraph readParagraph(const Lines& lines, std::size_t& index) {
    QStringList text{trimmed(lines[index]).toString()};
    for (++index; index < lines.size(); ++index) {
        const QStringView line = trimmed(lines[index]);
        if (endsParagraph(lines, index, line))
            break;
        text.append(line.toString());
    }
    return {text.join(u'\n')};
}

std::vector<MarkdownBlock> MarkdownParser::parse(QStringView text) {
    const Lines lines = split(text);
    std::vector<MarkdownBlock> blocks;
    // The order decides: a list line above a separator is the header of a table.
    for (std::size_t index = 0; index < lines.size();) {
        const QStringView line = trimmed(lines[index]);
        if (line.isEmpty()) {
            ++index;
        } else if (startsWith(line, fence)) {
            blocks.push_back({readCodeBlock(lines, index)});
        } else if (auto heading = headingLevel(line)) {
            blocks.push_back({*std::move(heading)});
            ++index;
        } else if (isTableStart(lines, index, line)) {
            blocks.push_back({readTable(lines, index)});
        } else if (isQuoteLine(line)) {
            blocks.push_back({readBlockquote(lines, index)});
        } else if (isBulletLine(line)) {
            blocks.push_back({readBulletList(lines, index)});
        } else if (numberedListItem(line)) {
            blocks.push_back({readNumberedList(lines, index)});
        } else {
            blocks.push_back({readParagraph(lines, index)});
        }
    }
    return blocks;
}

std::optional<MarkdownBlock::Heading> MarkdownParser::headingLevel(QStringView line) {
    qsizetype level = 0;
    while (level < line.size() && line[level] == u'#' && GraphemeClusters::standsAlone(line, level))
        ++level;
    if (level < 1 || level > deepestHeading || level == line.size() || line[level] != u' ' ||
        !GraphemeClusters::standsAlone(line, level))
        return std::nullopt;
    return MarkdownBlock::Heading{static_cast<int>(level), trimmed(line.sliced(level + 1)).toString()};
}

bool MarkdownParser::isTableSeparator(QStringView line) {
    const QStringView row = trimmed(line);
    return row.contains(u'-') && std::all_of(row.begin(), row.end(), [](QChar character) {
               return character == u'-' || character == u':' || character == u'|' || character == u' ';
           });
}

QStringList MarkdownParser::splitTableRow(QStringView line) {
    QStringView row = trimmed(line);
    if (row.startsWith(u'|'))
        row = row.sliced(1);
    if (row.endsWith(u'|'))
        row.chop(1);
    QStringList cells;
    for (const QStringView cell : row.tokenize(u'|'))
        cells.append(trimmed(cell).toString());
    return cells;
}

/// A sign or none, then ASCII digits only.
static bool isInteger64(QStringView text) {
    const QStringView digits = text.startsWith(u'-') || text.startsWith(u'+') ? text.sliced(1) : text;
    const bool onlyDigits =
        std::all_of(digits.begin(), digits.end(), [](QChar digit) { return digit >= u'0' && digit <= u'9'; });
    bool fits = false;
    if (onlyDigits && !digits.isEmpty())
        (void)text.toLongLong(&fits);
    return fits;
}

std::optional<QString> MarkdownParser::numberedListItem(QStringView line) {
    const qsizetype stop = line.indexOf(u'.');
    if (stop < 1 || stop + 1 >= line.size() || line[stop + 1] != u' ' ||
        !GraphemeClusters::standsAlone(line, stop + 1) || !isInteger64(line.first(stop)))
        return std::nullopt;
    return line.sliced(stop + 2).toString();
}
