#pragma once

#include <QString>

/// Plain text, and Markdown as its source, as pages.
namespace TextPages {

/// Flows the text of the file `source` into US Letter pages and writes them as the PDF `destination`: a line that is
/// wider than its page goes on in the next one, and none is cut at a page's end. An empty file gives one blank page.
/// A file of any size takes little memory. False, with nothing left, when `source` can't be read or is no text, and
/// when `destination` can't be written. Needs a QGuiApplication; any thread.
[[nodiscard]] bool write(const QString& source, const QString& destination);

} // namespace TextPages
