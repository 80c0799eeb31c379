#pragma once

#include <QString>

/// Rich text documents, made ready for LibreOffice Writer.
namespace RichText {

/// Writes the document `source`, a file or a folder with its text and the pictures that this names, as one file with
/// the pictures inside. Other attachments, and pictures that are missing or too large, leave nothing in their place.
/// Links get the style without which Writer leaves them out of its pages. False when there is no text, or the file
/// can't be written. Any thread.
[[nodiscard]] bool write(const QString& source, const QString& destination);

} // namespace RichText
