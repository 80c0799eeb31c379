#include "MathSegmentSplitter.h"

#include "GraphemeClusters.h"

static const QLatin1String dollar("$");
static const QLatin1String twoDollars("$$");

namespace {

class Splitter {
public:
    explicit Splitter(QStringView text) : m_text(text) {}

    std::vector<MathSegment> split() {
        while (m_position < m_text.size()) {
            if (!takeFormula())
                ++m_position;
        }
        flushWords();
        return std::move(m_segments);
    }

private:
    bool takeFormula() {
        const QChar character = m_text[m_position];
        if (character == u'$' && m_position + 1 < m_text.size() && standAt(m_position, dollar))
            return (standAt(m_position, twoDollars) && take(twoDollars, twoDollars, true)) ||
                   take(dollar, dollar, false);
        if (character != u'\\')
            return false;
        if (standAt(m_position, QLatin1String("\\(")))
            return !m_noMoreRoundBrackets &&
                   takeOrRemember(QLatin1String("\\("), QLatin1String("\\)"), false, m_noMoreRoundBrackets);
        if (standAt(m_position, QLatin1String("\\[")))
            return !m_noMoreSquareBrackets &&
                   takeOrRemember(QLatin1String("\\["), QLatin1String("\\]"), true, m_noMoreSquareBrackets);
        return false;
    }

    /// A bracket that isn't found from here isn't found from further on either; without this, a text of nothing but
    /// opening brackets would be searched to its end at each.
    bool takeOrRemember(QLatin1String opening, QLatin1String closing, bool display, bool& noMore) {
        const bool taken = take(opening, closing, display);
        noMore = !taken;
        return taken;
    }

    bool take(QLatin1String opening, QLatin1String closing, bool display) {
        const qsizetype start = m_position + opening.size();
        const qsizetype end = findSequence(start, closing);
        if (end < 0)
            return false;
        flushWords();
        m_segments.push_back({MathSegment::Math{m_text.sliced(start, end - start).toString(), display}});
        m_position = end + closing.size();
        m_wordsStart = m_position;
        return true;
    }

    [[nodiscard]] bool standAt(qsizetype position, QLatin1String sequence) const {
        if (!m_text.sliced(position).startsWith(sequence))
            return false;
        for (qsizetype i = 0; i < sequence.size(); ++i) {
            if (!GraphemeClusters::standsAlone(m_text, position + i))
                return false;
        }
        return true;
    }

    [[nodiscard]] qsizetype findSequence(qsizetype start, QLatin1String sequence) const {
        qsizetype found = m_text.indexOf(sequence, start);
        while (found >= 0 && !standAt(found, sequence))
            found = m_text.indexOf(sequence, found + 1);
        return found;
    }

    void flushWords() {
        if (m_position > m_wordsStart)
            m_segments.push_back(
                {MathSegment::Text{m_text.sliced(m_wordsStart, m_position - m_wordsStart).toString()}});
    }

    QStringView m_text;
    qsizetype m_position = 0;
    qsizetype m_wordsStart = 0;
    bool m_noMoreRoundBrackets = false;
    bool m_noMoreSquareBrackets = false;
    std::vector<MathSegment> m_segments;
};

} // namespace

std::vector<MathSegment> MathSegmentSplitter::split(QStringView text) {
    return Splitter(text).split();
}

std::optional<QString> MathSegmentSplitter::soleDisplayEquation(QStringView text) {
    const std::vector<MathSegment> segments = split(text.trimmed());
    if (segments.size() != 1)
        return std::nullopt;
    const auto* math = std::get_if<MathSegment::Math>(&segments.front().content);
    return math && math->display ? std::optional(math->latex) : std::nullopt;
}
