#pragma once

#include "MarkdownBlock.h"

#include <QStringView>

#include <optional>
#include <vector>

/// Reads the small dialect of Markdown that replies are written in, line by line: no nesting, no reference links, no
/// underlined headings, no indented code. It never fails: what it doesn't know is a paragraph, and a text that is cut
/// off anywhere is as good as any other. One pass, linear in the length. Any thread.
///
/// Trimming takes blanks, tabs and the space separators of Unicode, but no line ends: a carriage return before the line
/// feed stays. A marker counts only where each of its characters stands alone, without a combining mark.
namespace MarkdownParser {

[[nodiscard]] std::vector<MarkdownBlock> parse(QStringView text);

/// The heading that the line is, with its level and text: one to six "#" and a blank at its start make it one. None for
/// any other line. A closing row of "#" belongs to the text.
[[nodiscard]] std::optional<MarkdownBlock::Heading> headingLevel(QStringView line);

/// At least one "-", and nothing but "-", ":", "|" and blanks. The number of columns doesn't matter.
[[nodiscard]] bool isTableSeparator(QStringView line);

/// The trimmed cells between the bars. No bar is escaped. "|" is one empty cell.
[[nodiscard]] QStringList splitTableRow(QStringView line);

/// What stands behind a number, a full stop and a blank, not trimmed. The number is decimal with an optional sign, and
/// fits 64 bits.
[[nodiscard]] std::optional<QString> numberedListItem(QStringView line);

} // namespace MarkdownParser
