#pragma once

#include <QString>

/// Books whose text has no pages of its own (EPUB), laid out on pages.
namespace BookPages {

/// Writes the book as a PDF of small pages, with its text, pictures and links. A chapter that can't be read is left
/// out. False, with nothing left, when the file is no such book, is protected, has nothing that can be read, or can't
/// be written. Any thread; takes a second or so for a novel, and what a hostile book asks for, so it belongs into a
/// process of its own.
[[nodiscard]] bool write(const QString& source, const QString& destination);

} // namespace BookPages
