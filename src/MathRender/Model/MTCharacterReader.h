#pragma once

#include <QStringView>
#include <QTextBoundaryFinder>

#include <optional>

/// Reads a text character by character, a character being what a person perceives as one (a grapheme cluster), in place
/// and in one pass. The text must outlive the reader.
class MTCharacterReader {
public:
    explicit MTCharacterReader(QStringView text) : m_text(text) {}

    [[nodiscard]] QStringView text() const { return m_text; }
    /// The reading position, in UTF-16 units.
    [[nodiscard]] qsizetype index() const { return m_index; }
    [[nodiscard]] bool hasCharacters() const { return m_index < m_text.size(); }

    /// The next character, which is then behind the position. There must be one.
    QStringView next();

    /// Undoes the latest `next`; once for each.
    void stepBack() { m_index = m_previousIndex; }

    /// Whether a character is one of ASCII's from "!" to "~". All others count as blanks in a formula.
    [[nodiscard]] static bool isVisibleAscii(QStringView character) {
        return character.size() == 1 && character.front() >= u'!' && character.front() <= u'~';
    }

private:
    QStringView m_text;
    qsizetype m_index = 0;
    qsizetype m_previousIndex = 0;
    std::optional<QTextBoundaryFinder> m_clusters; ///< made when the text turns out to need it
};
