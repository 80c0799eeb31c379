#pragma once

#include <QUrl>

#include <optional>

/// Files that were dropped on a window. Usable on any thread.
namespace DroppedFile {

/// True for a file in one of the folders that programs empty again: the temporary ones, and the user's cache.
[[nodiscard]] bool isInTemporaryFolder(const QUrl& url);

/// The file to open for a dropped one. One from a temporary folder may be gone once the drop has ended, so it is copied
/// into a new folder of its own below the temporary one and keeps its name; any other stays where it is. None when the
/// copy fails.
[[nodiscard]] std::optional<QUrl> keep(const QUrl& url);

} // namespace DroppedFile
