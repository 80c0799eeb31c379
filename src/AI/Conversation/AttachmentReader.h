#pragma once

#include <QString>
#include <QStringList>

/// Reads the text of a file that the user attaches to a question. Any thread; it may wait for a disk.
namespace AttachmentReader {

/// The first ten pages of a PDF, each with a newline behind it, or the whole of another file in UTF-8. Empty for what
/// can't be read, is no regular file, or is more text than there is memory to send it (64 MB).
[[nodiscard]] QString text(const QString& path);

/// What may be picked, as QFileDialog takes it.
[[nodiscard]] QStringList nameFilters();

} // namespace AttachmentReader
