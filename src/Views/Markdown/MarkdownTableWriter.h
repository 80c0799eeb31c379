#pragma once

#include "MarkdownBlock.h"

class MarkdownTextWriter;
class QTextCursor;
class QTextTable;

/// Writes a table of a reply: a header, a line, and rows as long as they came.
namespace MarkdownTableWriter {

/// From the text of the first row up to the line below the header, in pixels.
inline constexpr double dividerDistance = 5;

/// Tables with more columns or cells are better read as lines of text.
inline constexpr qsizetype mostColumns = 200;
inline constexpr qsizetype mostCells = 10'000;

/// How many cells the longest row has.
[[nodiscard]] qsizetype columnCount(const MarkdownBlock::Table& table);

/// The places in its grid, filled or not.
[[nodiscard]] qsizetype cellCount(const MarkdownBlock::Table& table);

[[nodiscard]] bool fits(const MarkdownBlock::Table& table);

/// At the end of the document, `topMargin` below what is there; leaves `cursor` behind the table, which is the
/// document's.
QTextTable* write(QTextCursor& cursor, const MarkdownBlock::Table& table, double topMargin, MarkdownTextWriter& writer);

} // namespace MarkdownTableWriter
