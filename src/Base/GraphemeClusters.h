#pragma once

#include <QStringView>
#include <QTextBoundaryFinder>

#include <optional>

/// Text by characters as its reader perceives them: by grapheme clusters. Offsets and lengths are in UTF-16 units, and
/// counts in clusters. Usable on any thread.
namespace GraphemeClusters {

[[nodiscard]] qsizetype count(QStringView text);

/// Where the first `count` characters end; the end of the text when it has fewer. Looks at no more of a long text than
/// it must.
[[nodiscard]] qsizetype endOfFirst(QStringView text, qsizetype count);

/// The offset `count` characters behind `offset`, or before it; the end, or the start, of a text that has fewer there.
[[nodiscard]] qsizetype after(QStringView text, qsizetype offset, qsizetype count);
[[nodiscard]] qsizetype before(QStringView text, qsizetype offset, qsizetype count);

/// True when the code unit at `index` is a whole character: nothing before or behind it, such as a combining mark,
/// belongs to the same one. Looks at the neighbours only.
[[nodiscard]] bool standsAlone(QStringView text, qsizetype index);

/// Reads a text character by character, in place and in one pass. The text must outlive the reader.
class Reader {
public:
    explicit Reader(QStringView text) : m_text(text) {}

    [[nodiscard]] QStringView text() const { return m_text; }
    /// The reading position.
    [[nodiscard]] qsizetype index() const { return m_index; }
    [[nodiscard]] bool hasCharacters() const { return m_index < m_text.size(); }

    /// The next character, which is then behind the position. There must be one.
    QStringView next();

    /// Undoes the latest `next`; once for each.
    void stepBack() { m_index = m_previousIndex; }

private:
    QStringView m_text;
    qsizetype m_index = 0;
    qsizetype m_previousIndex = 0;
    std::optional<QTextBoundaryFinder> m_clusters; ///< made when the text turns out to need it
};

} // namespace GraphemeClusters
