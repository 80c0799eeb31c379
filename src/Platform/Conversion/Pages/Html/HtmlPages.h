#pragma once

#include <QString>

/// HTML as pages.
namespace HtmlPages {

/// Lays the HTML file `source` out on US Letter pages and writes them as the PDF `destination`, with its styles,
/// tables, lists, links and title, but without the background of the page. Pictures and style sheets come from `data:`
/// addresses and from files in the folder of `source` and beneath it; nothing else is read, nothing is loaded from the
/// network, no script runs. False, with nothing left, when `source` can't be read or is no text, and when `destination`
/// can't be written. Needs a QGuiApplication; any thread.
[[nodiscard]] bool write(const QString& source, const QString& destination);

} // namespace HtmlPages
