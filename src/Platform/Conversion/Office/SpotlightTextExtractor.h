#pragma once

#include <QString>

#include <optional>
#include <stop_token>

class PDFSource;

/// The words of a file that isn't opened for them.
namespace SpotlightTextExtractor {

/// As the desktop's search service has indexed it, if there is one on the session bus; it isn't started for this. None
/// when there is none, when the file isn't indexed, or when the answer takes longer than some seconds. Trimmed, and not
/// empty. Any thread but the main one.
[[nodiscard]] std::optional<QString> indexedText(const QString& path);

/// What stands on the pages of a preview, for files that no index knows. None when that is nothing but blanks; after a
/// stop some may be missing. Trimmed. Any thread but the main one.
[[nodiscard]] std::optional<QString> textOfPages(const PDFSource& pages, const std::stop_token& stop);

} // namespace SpotlightTextExtractor
