#pragma once

#include <QString>

/// Words of a document, a file's name or a server, made fit for the places that show them: none of them is markup, a
/// key or a command there, and none is so long that it holds up the window. Lengths are in code units; what is longer
/// is cut where a character ends. Any thread.
namespace PlainText {

/// Combining marks that a letter keeps, as in the stream-safe text format of Unicode (UAX #15): time to shape them
/// grows with the square of their number.
constexpr int mostMarks = 30;

/// Whether a character changes how the text around it shows and isn't seen itself: a control character but for tab and
/// line feed, or a mark that turns the direction, with which a name can read other than it is.
[[nodiscard]] bool isHidden(QChar character);

/// The last place at or before `end` where a character ends, so that what is cut there is whole.
[[nodiscard]] qsizetype characterEnd(const QString& words, qsizetype end);

/// Ends with "…" where it is cut to at most `most` units, that sign included.
[[nodiscard]] QString shortened(const QString& words, qsizetype most);

/// One line: line ends and tabs become blanks, and hidden characters are left out.
[[nodiscard]] QString line(const QString& words);

/// A name within a sentence or a menu: a line, without its middle where it is too long for that.
[[nodiscard]] QString name(const QString& words);

/// What a dialog or a notice says: keeps its lines, without hidden characters, and a word that is too long for a line
/// may be broken.
[[nodiscard]] QString paragraphs(const QString& words);

/// For a tool tip, which takes what looks like markup for markup, reads the files it names, and can't be told not to:
/// `paragraphs`, shown to the letter.
[[nodiscard]] QString toolTip(const QString& words);

/// For the text of a menu entry, a tab or a button, where "&" would mark a key: a name.
[[nodiscard]] QString withoutMnemonics(const QString& words);

/// For the title of a window, where "[*]" would be the sign of unsaved changes: a line.
[[nodiscard]] QString windowTitle(const QString& words);

} // namespace PlainText
