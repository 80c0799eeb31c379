#pragma once

#include <QByteArray>

#include <optional>

/// The text that a page shows.
namespace VisibleText {

/// The drawing instructions of a page, as Qt has written them, without the text outside of its frame; none when there
/// is no such text. For a paragraph that goes on from the page before, Qt draws the last line from there as well: the
/// clipping hides it, but whoever searches or copies would find it twice.
[[nodiscard]] std::optional<QByteArray> only(const QByteArray& instructions);

} // namespace VisibleText
