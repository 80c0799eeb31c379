#include "FlowingText.h"

#include "PageText.h"

#include <QSet>

#include <algorithm>
#include <array>
#include <optional>

namespace {

enum class LineEnd { stays, joins, joinsWithoutHyphen };

constexpr char16_t softHyphen = 0xAD;

bool isHyphen(QChar c) {
    return c == u'-' || c == QChar(0x2010) || c == QChar(softHyphen);
}

bool isPartOfWord(QChar c) {
    return c.isLetterOrNumber() || c.isMark() || c.isSurrogate() || isHyphen(c);
}

/// The words of a page that are written with a hyphen within a line.
class Compounds {
public:
    explicit Compounds(const QString& text) : m_text(text) {}

    [[nodiscard]] bool contains(const QString& word) {
        if (!m_words)
            collect();
        return m_words->contains(word.toLower());
    }

private:
    void collect() {
        m_words.emplace();
        qsizetype begin = 0;
        bool hasHyphen = false;
        for (qsizetype i = 0; i <= m_text.size(); ++i) {
            if (i < m_text.size() && isPartOfWord(m_text.at(i))) {
                hasHyphen = hasHyphen || isHyphen(m_text.at(i));
                continue;
            }
            if (hasHyphen)
                m_words->insert(m_text.mid(begin, i - begin).toLower().replace(QChar(0x2010), QLatin1Char('-')));
            begin = i + 1;
            hasHyphen = false;
        }
    }

    const QString& m_text;
    std::optional<QSet<QString>> m_words; // most pages are never asked
};

/// Words between the halves of a pair that share their end, as in "pre- and postwar".
bool joinsPairs(QStringView word) {
    static constexpr std::array<QStringView, 12> words{u"and", u"or", u"to", u"und", u"oder", u"bis",
                                                       u"et",  u"ou", u"y",  u"o",   u"e",    u"en"};
    return std::find(words.begin(), words.end(), word) != words.end();
}

/// What happens at the end of a line that ends in the hyphen at `hyphen` and goes on at `next`.
LineEnd lineEnd(const PageText& page, Compounds& compounds, int hyphen, int next) {
    const QString& text = page.string;
    const std::uint16_t font = page.glyphs[std::size_t(hyphen)].font;
    if (hyphen == 0 || !text.at(hyphen - 1).isLetter() || !text.at(next).isLower() ||
        (font < page.fonts.size() && page.fonts[font].monospaced))
        return LineEnd::stays;
    int begin = hyphen;
    while (begin > 0 && !text.at(begin - 1).isSpace())
        --begin;
    int end = next;
    while (end < text.size() && !text.at(end).isSpace())
        ++end;
    QStringView first = QStringView(text).mid(begin, hyphen - begin);
    QStringView second = QStringView(text).mid(next, end - next);
    const auto isOutside = [](QChar c) { return !isPartOfWord(c); };
    while (!first.isEmpty() && isOutside(first.front()))
        first = first.mid(1);
    while (!second.isEmpty() && isOutside(second.back()))
        second.chop(1);
    if (joinsPairs(second))
        return LineEnd::stays;
    if (text.at(hyphen) == QChar(softHyphen))
        return LineEnd::joinsWithoutHyphen;
    const auto isPlain = [](QStringView part) {
        return std::all_of(part.begin(), part.end(), [](QChar c) { return c.isLetter() || c.isMark(); });
    };
    if (!isPlain(first)) // several hyphens, numbers, an address
        return LineEnd::joins;
    return compounds.contains(first.toString() + QLatin1Char('-') + second.toString()) ? LineEnd::joins
                                                                                       : LineEnd::joinsWithoutHyphen;
}

} // namespace

FlowingText::FlowingText(const PageText& page) : FlowingText(page, 0, int(page.string.size())) {}

FlowingText::FlowingText(const PageText& page, int start, int end) {
    const QString& text = page.string;
    end = std::clamp(end, 0, int(text.size()));
    m_start = std::clamp(start, 0, end);
    Compounds compounds(text);
    int from = m_start;
    for (std::size_t i = std::size_t(std::max(0, page.lineAt(m_start))); i + 1 < page.lines.size(); ++i) {
        const PageText::Line& line = page.lines[i];
        const PageText::Line& following = page.lines[i + 1];
        int hyphen = line.end - 1;
        while (hyphen >= line.start && text.at(hyphen).isSpace())
            --hyphen;
        int next = following.start;
        while (next < following.end && text.at(next).isSpace())
            ++next;
        if (next >= end)
            break;
        if (hyphen < std::max(line.start, from) || !isHyphen(text.at(hyphen)) || next >= following.end ||
            QPointF::dotProduct(line.direction, following.direction) < 0.999)
            continue;
        const LineEnd kind = lineEnd(page, compounds, hyphen, next);
        if (kind == LineEnd::stays)
            continue;
        const int gap = kind == LineEnd::joins ? hyphen + 1 : hyphen;
        m_string += QStringView(text).mid(from, gap - from);
        m_gaps.push_back({gap, next});
        from = next;
    }
    m_string += QStringView(text).mid(from, end - from);
}

int FlowingText::pageOffset(int offset) const {
    int at = m_start + offset;
    for (const Gap& gap : m_gaps) {
        if (at < gap.start)
            break;
        at += gap.end - gap.start;
    }
    return at;
}

int FlowingText::offsetOf(int pageOffset) const {
    int leftOut = 0;
    for (const Gap& gap : m_gaps) {
        if (pageOffset < gap.start)
            break;
        leftOut += std::min(pageOffset, gap.end) - gap.start;
    }
    return std::clamp(pageOffset - m_start - leftOut, 0, int(m_string.size()));
}
