#pragma once

#include <QHash>
#include <QString>
#include <QTextFormat>

class QTextDocument;

/// Makes an HTML document one of paper.
namespace HtmlFormats {

/// Where a link leads, as the document says it. Qt's writer of PDFs looks for its own property and writes links that
/// break the file when an address has a parenthesis, so `prepare` moves them here.
inline constexpr int linkProperty = QTextFormat::UserProperty + 1;
/// The number beside a block that is an item of a list, as text.
inline constexpr int labelProperty = QTextFormat::UserProperty + 2;

/// Positions in the document by the names by which its links find them.
using Names = QHash<QString, int>;

/// What the styles of a document are added to.
[[nodiscard]] QString defaultStyles();

/// Removes the backgrounds of the page and of its text, makes text dark that would vanish with them, lets wide lines
/// break, puts the text in the place of pictures that can't be shown. Takes the names of places away, since a letter
/// with a name of its own would be drawn without the others of its word. For a document that has just been read.
[[nodiscard]] Names prepare(QTextDocument& document);

} // namespace HtmlFormats
