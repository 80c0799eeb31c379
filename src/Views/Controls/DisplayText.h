#pragma once

#include <QString>
#include <QStringList>

/// Makes text from outside fit to be shown in a text document. Any thread.
namespace DisplayText {

/// Without control characters (tabs stay) and without marks that turn the direction of the text around them, which can
/// make a text read other than it is; no letter has more than a heap of 30 combining marks; line feeds become line
/// separators, so that the text stays one paragraph, and separators become blanks; what the text engine takes for its
/// own signs becomes U+FFFD.
[[nodiscard]] QString cleaned(const QString& text);

/// Cuts texts into pieces so that none has more than `longestUnbroken` code units without a blank between, counted over
/// all the calls: time to wrap a single word grows with the square of its length.
class WordBreaker {
public:
    static constexpr int longestUnbroken = 400;

    /// The pieces of `text`, in order; a place to break the line is wanted between each two.
    [[nodiscard]] QStringList pieces(const QString& text);

    /// Forgets what came before, at the start of a paragraph.
    void reset() { m_unbroken = 0; }

private:
    int m_unbroken = 0;
};

} // namespace DisplayText
