#pragma once

#include <QUrl>

#include <optional>

/// Files that were dropped on a window. Usable on any thread.
namespace DroppedFile {

/// True for a file that a program has put somewhere for this drop only, and takes away again: its folder, right below a
/// temporary one or the user's cache, is closed to others and was made a moment ago.
[[nodiscard]] bool isMadeForDrop(const QUrl& url);

/// The file to open for a dropped one: itself, or a copy of one that was made for the drop, in a new folder of its own
/// below the temporary one and with its name. A copy goes when the program ends, unless somebody has saved to it. None
/// when the copy fails.
[[nodiscard]] std::optional<QUrl> keep(const QUrl& url);

} // namespace DroppedFile
