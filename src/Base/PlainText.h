#pragma once

#include <QString>

/// Words of a document, a file's name or a server, for places that would read markup in them. Any thread.
namespace PlainText {

/// For a tool tip, which takes what looks like markup for markup, reads the files it names, and can't be told not to:
/// the same words, shown to the letter. Words that can't be taken for markup come back as they are.
[[nodiscard]] QString toolTip(const QString& words);

/// For the text of a menu entry, a tab or a button, where "&" would mark a key.
[[nodiscard]] QString withoutMnemonics(const QString& words);

} // namespace PlainText
