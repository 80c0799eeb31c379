#pragma once

#include "MarkdownDecorations.h"

#include <QTextBlockFormat>

#include <memory>
#include <vector>

class MarkdownTextWriter;
class QTextDocument;
struct MarkdownBlock;

/// The blocks of a reply as one text document, so that a selection can cross them.
namespace MarkdownDocument {

inline constexpr double lineSpacing = 4; ///< below each line of text, the last one too, in pixels

/// Replies with more lines, list items and table cells than that end there with a sentence. They take 10 to 30
/// microseconds each.
inline constexpr int mostLines = 10'000;

struct Result {
    std::unique_ptr<QTextDocument> document;
    MarkdownDecorations decorations;
};

/// `isCut` tells that the reply goes on behind its last block.
[[nodiscard]] Result write(const std::vector<MarkdownBlock>& blocks, bool isCut, MarkdownTextWriter& writer);

/// The format of a paragraph without indent.
[[nodiscard]] QTextBlockFormat textBlockFormat();

} // namespace MarkdownDocument
