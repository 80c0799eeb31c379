#pragma once

#include <QString>
#include <QTextFormat>

class QTextDocument;

/// Makes an HTML document one of paper.
namespace HtmlFormats {

/// Where a link leads, as the document says it. Qt's writer of PDFs looks for its own property and writes links that
/// break the file when an address has a parenthesis, so `prepare` moves them here.
inline constexpr int linkProperty = QTextFormat::UserProperty + 1;
/// The names by which links of the document find this place.
inline constexpr int namesProperty = QTextFormat::UserProperty + 2;

/// What the styles of a document are added to.
[[nodiscard]] QString defaultStyles();

/// Removes the backgrounds of the page and of its text, makes text dark that would vanish with them, lets wide lines
/// break. For a document that has just been read.
void prepare(QTextDocument& document);

} // namespace HtmlFormats
