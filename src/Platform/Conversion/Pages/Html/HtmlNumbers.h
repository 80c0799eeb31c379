#pragma once

#include <QHash>
#include <QList>
#include <QString>
#include <QTextBlock>

class QPainter;
class QTextDocument;

/// The numbers of ordered lists that don't count from one, of which Qt knows nothing.
namespace HtmlNumbers {

/// What stands before the text of a list's item in HTML and says its number.
[[nodiscard]] QString marker(int number);

/// Takes the markers out of a document that has been read, and the numbers from the lists that have some: these are
/// drawn by `draw`.
void prepare(QTextDocument& document);

/// The blocks with such a number by the pages, of that height, on which their first lines are. The document is laid
/// out.
[[nodiscard]] QHash<int, QList<QTextBlock>> byPage(const QTextDocument& document, qreal pageHeight);

/// Draws the number of a block, if it has one, beside its first line. The painter is in the document's coordinates.
void draw(const QTextDocument& document, const QTextBlock& block, QPainter& painter);

} // namespace HtmlNumbers
