#pragma once

#include <QByteArray>

/// What readers have put onto the pages of a file, as opposed to what the pages themselves say.
namespace PDFMarkup {

/// The file without its annotations; the fields of its form stay. `pdf` isn't protected. Any thread; throws `PDFError`.
[[nodiscard]] QByteArray removed(const QByteArray& pdf);

} // namespace PDFMarkup
