#pragma once

#include "InlineRun.h"

#include <QStringView>

#include <optional>
#include <vector>

/// Reads the inline marks of CommonMark and "~~": strong, emphasis, code, strikethrough, links. White space and line
/// feeds stay as they are; other control characters are left out. HTML is text. A picture becomes a link to it, named
/// by its description: nothing is ever loaded. Any thread.
namespace InlineMarkdownParser {

/// Longer texts aren't read: the time for some of them grows faster than their length. In UTF-16 code units.
inline constexpr qsizetype longestText = 65'536;

/// None when the text is too long or can't be read; it is plain text then.
[[nodiscard]] std::optional<std::vector<InlineRun>> parse(QStringView text);

} // namespace InlineMarkdownParser
