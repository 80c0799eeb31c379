#pragma once

#include <QStringView>

/// Counts text as its reader does: by grapheme clusters. Offsets are in UTF-16 units.
namespace UserCharacters {

[[nodiscard]] qsizetype count(QStringView text);

/// Where the first `count` characters end; the end of the text when it has fewer. Looks at no more of a long text than
/// it must.
[[nodiscard]] qsizetype endOfFirst(QStringView text, qsizetype count);

/// `count` characters behind an offset, and before it; the ends of the text when it has fewer there.
[[nodiscard]] qsizetype after(QStringView text, qsizetype offset, qsizetype count);
[[nodiscard]] qsizetype before(QStringView text, qsizetype offset, qsizetype count);

} // namespace UserCharacters
