#pragma once

#include <QString>

class QUrl;

/// The paths of local files. Empty for what is no local file.
namespace FilePath {

/// As it is written, without "." and "..". Asks no disk.
[[nodiscard]] QString absolute(const QUrl& url);
/// One path for all paths of a file, whether it exists or not. Any thread; waits for the disk.
[[nodiscard]] QString canonical(const QUrl& url);

} // namespace FilePath
