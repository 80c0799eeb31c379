#include "PageLinks.h"

#include <QRegularExpression>
#include <QUrl>

#include <initializer_list>
#include <utility>

static constexpr QLatin1String scheme("page");

namespace {

struct Number {
    int value;
    qsizetype start;
    qsizetype end;
};

/// Reads the numbers behind one word for pages.
class NumberReader {
public:
    NumberReader(QStringView text, qsizetype position, bool isPlural)
        : m_text(text), m_position(position), m_isPlural(isPlural) {}

    /// The next number that the text goes on with, past what may stand between two. What follows a dash and is smaller
    /// than the number before it, as in "123–5", has a value of 0.
    std::optional<Number> next() {
        qsizetype start = m_position;
        const bool isRange = m_former && skipDash(start);
        if (m_former && !isRange && !(m_isPlural && skipListSeparator(start)))
            return std::nullopt;
        std::optional<Number> number = numberAt(start);
        if (!number)
            return std::nullopt;
        const int former = std::exchange(m_former, number->value).value_or(0);
        m_position = number->end;
        if (isRange && number->value <= former)
            number->value = 0;
        return number;
    }

private:
    [[nodiscard]] QChar at(qsizetype position) const {
        return position < m_text.size() ? m_text[position] : QChar(u'\n');
    }
    [[nodiscard]] bool isDigit(qsizetype position) const { return at(position) >= u'0' && at(position) <= u'9'; }
    void skipBlanks(qsizetype& position) const {
        while (at(position) == u' ' || at(position) == u'\u00A0' || at(position) == u'\u202F')
            ++position;
    }
    bool skip(qsizetype& position, std::initializer_list<QLatin1String> words) const {
        for (const QLatin1String word : words) {
            if (!m_text.sliced(position).startsWith(word, Qt::CaseInsensitive))
                continue;
            position += word.size();
            return true;
        }
        return false;
    }

    /// "3-5"; where the word is in the plural also "3 – 5" and "3 to 5".
    bool skipDash(qsizetype& position) const {
        qsizetype end = position;
        if (m_isPlural)
            skipBlanks(end);
        if (m_isPlural && end > position && skip(end, {QLatin1String("to "), QLatin1String("through ")})) {
            position = end;
            return true;
        }
        constexpr QStringView dashes = u"-\u2010\u2011\u2012\u2013\u2212";
        if (!dashes.contains(at(end)) && !(m_isPlural && at(end) == u'\u2014'))
            return false;
        ++end;
        if (m_isPlural)
            skipBlanks(end);
        position = end;
        return true;
    }

    /// "3, 5", "3 and 5", "3, or 5".
    bool skipListSeparator(qsizetype& position) const {
        const qsizetype start = position;
        if (at(position) == u',')
            ++position;
        skipBlanks(position);
        if (position > start && skip(position, {QLatin1String("and "), QLatin1String("or "), QLatin1String("& ")}))
            return true;
        return at(start) == u',';
    }

    /// None where it is the part of another number or word, such as "3.5", "1,000", "2nd" or "10%".
    [[nodiscard]] std::optional<Number> numberAt(qsizetype start) const {
        constexpr int mostDigits = 9;
        skipBlanks(start);
        qsizetype end = start;
        int value = 0;
        while (isDigit(end) && end - start < mostDigits)
            value = value * 10 + (m_text[end++].unicode() - u'0');
        if (end == start || at(end).isLetterOrNumber() || at(end) == u'_' || at(end) == u'%')
            return std::nullopt;
        const bool goesOn = isDigit(end + 1);
        const bool isThousands = goesOn && isDigit(end + 2) && isDigit(end + 3) && !isDigit(end + 4);
        if (at(end) == u'.' && goesOn)
            return std::nullopt;
        if (at(end) == u',' && goesOn && (!m_isPlural || isThousands))
            return std::nullopt;
        return Number{value, start, end};
    }

    QStringView m_text;
    qsizetype m_position;
    bool m_isPlural;
    std::optional<int> m_former;
};

} // namespace

std::vector<PageLinks::Mention> PageLinks::find(QStringView text, int pageCount) {
    // A word of its own, that is no part of a path or an address either.
    static const QRegularExpression word(
        QStringLiteral("(?<![\\p{L}\\p{N}_./@#&-])(?:(pages(?=\\s)|pp\\.|pgs\\.)|page(?=\\s)|p\\.|pg\\.)"),
        QRegularExpression::CaseInsensitiveOption | QRegularExpression::UseUnicodePropertiesOption);
    std::vector<Mention> mentions;
    if (pageCount <= 0)
        return mentions;
    for (auto words = word.globalMatch(text); words.hasNext();) {
        const QRegularExpressionMatch match = words.next();
        NumberReader reader(text, match.capturedEnd(), match.hasCaptured(1));
        bool isFirst = true; // and takes the word along
        while (const auto number = reader.next()) {
            if (number->value > 0 && number->value <= pageCount)
                mentions.push_back({isFirst ? match.capturedStart() : number->start, number->end, number->value});
            isFirst = false;
        }
    }
    return mentions;
}

QString PageLinks::address(int page) {
    return QStringLiteral("%1:%2").arg(scheme).arg(page);
}

std::optional<int> PageLinks::page(const QUrl& address) {
    bool isNumber = false;
    const int page = address.scheme() == scheme ? address.path().toInt(&isNumber) : 0;
    return isNumber && page > 0 ? std::optional(page) : std::nullopt;
}
