#pragma once

#include "HtmlFormats.h"

#include <QTextDocument>

class LetterPages;

/// The links of an HTML document that is laid out.
namespace HtmlLinks {

/// Adds the links to `pages`: one for each line that a link covers. `pageHeight` is in the document's pixels, of which
/// `scale` gives those of the pages.
void add(const QTextDocument& document, const HtmlFormats::Names& names, qreal pageHeight, qreal scale,
         LetterPages& pages);

} // namespace HtmlLinks
