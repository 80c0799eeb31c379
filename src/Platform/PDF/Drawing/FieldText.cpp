#include "FieldText.h"

#include <QHash>

#include <algorithm>
#include <array>
#include <utility>

namespace {

// Measures of Helvetica, near enough for other fonts; in parts of the font size.
constexpr double ascent = 0.718;
constexpr double descent = 0.207;
constexpr double leading = 1.15;
constexpr double smallestSize = 4;
constexpr double usualSize = 12;
constexpr double largestSize = 144;

/// What no field has room for needn't be measured, however long a text a file gives. Hardly a letter is narrower than
/// that, in parts of the font size.
constexpr double narrowest = 0.1;
constexpr qsizetype longestLine = 5000;
constexpr qsizetype longestText = 100000; // of several lines
constexpr int mostLines = 5000;

/// How many characters may show in a line of that width, which is in parts of the font size.
qsizetype lengthThatShows(double room) {
    return qsizetype(std::clamp(room / narrowest, 1.0, double(longestLine)));
}

/// Breaks a text into lines, at blanks, and within words that are wider than a line. May be asked for several sizes.
class LineBreaker {
public:
    LineBreaker(const QString& text, const FieldText::Width& width)
        : m_paragraphs(text.split(QLatin1Char('\n'))), m_width(width), m_blank(width(QStringLiteral(" "))) {
        m_plain.fill(-1);
    }

    /// `room` is in parts of the font size. At most `most` lines.
    QStringList lines(double room, int most) {
        m_room = room;
        m_most = most;
        m_lines.clear();
        for (const QString& paragraph : m_paragraphs) {
            if (m_lines.size() >= m_most)
                break;
            addParagraph(paragraph);
        }
        return std::exchange(m_lines, {});
    }

private:
    void addParagraph(const QString& paragraph) {
        QString line;
        double reached = 0;
        bool isFirst = true;
        qsizetype start = 0;
        while (start <= paragraph.size()) {
            const qsizetype blank = paragraph.indexOf(QLatin1Char(' '), start);
            const qsizetype end = blank < 0 ? paragraph.size() : blank;
            QStringView word = QStringView(paragraph).sliced(start, end - start);
            start = end + 1;
            double wordWidth = widthOf(word);
            if (!isFirst && reached + m_blank + wordWidth > m_room && !line.isEmpty()) {
                m_lines += std::exchange(line, QString());
                isFirst = true;
            }
            while (isFirst && wordWidth > m_room && word.size() > 1 && m_lines.size() < m_most) {
                const qsizetype length = fittingLength(word);
                if (length == word.size())
                    break; // wider only by what its letters do to each other
                m_lines += word.first(length).toString();
                word = word.sliced(length);
                wordWidth = widthOf(word);
            }
            if (m_lines.size() >= m_most)
                return;
            if (!isFirst)
                line += QLatin1Char(' ');
            line += word;
            reached = isFirst ? wordWidth : reached + m_blank + wordWidth;
            isFirst = false;
        }
        m_lines += line;
    }

    /// The width of the word, or of as much of it as a line may show.
    double widthOf(QStringView word) {
        const QString measured = word.first(std::min(word.size(), lengthThatShows(m_room) + 1)).toString();
        const auto known = m_widths.constFind(measured);
        return known != m_widths.cend() ? *known : *m_widths.insert(measured, m_width(measured));
    }

    double characterWidth(QStringView character) {
        if (character.size() > 1 || character[0].unicode() >= m_plain.size())
            return widthOf(character);
        double& known = m_plain.at(character[0].unicode());
        if (known < 0)
            known = m_width(character.toString());
        return known;
    }

    /// How many characters of a word, one at least, are no wider than a line, each by itself.
    qsizetype fittingLength(QStringView word) {
        double reached = 0;
        qsizetype length = 0;
        while (length < word.size()) {
            const qsizetype next = word[length].isHighSurrogate() && length + 1 < word.size() ? length + 2 : length + 1;
            reached += characterWidth(word.sliced(length, next - length));
            if (length > 0 && reached > m_room)
                break;
            length = next;
        }
        return length;
    }

    QStringList m_paragraphs;
    const FieldText::Width& m_width;
    double m_blank;
    double m_room = 0;
    int m_most = 0;
    QStringList m_lines;
    QHash<QString, double> m_widths;
    std::array<double, 128> m_plain; // of single characters; negative before they are asked for
};

double slackShare(int alignment) {
    return alignment == 1 ? 0.5 : alignment == 2 ? 1.0 : 0.0;
}

double inset(const FieldText& text) {
    return text.border + std::max(1.0, text.border);
}

} // namespace

QRectF FieldText::clip() const {
    const double edge = std::min({std::max(1.0, border), box.width() / 2, box.height() / 2});
    return QRectF(QPointF(), box).adjusted(edge, edge, -edge, -edge);
}

FieldText::Layout FieldText::layout(const Width& width) const {
    if (kind == Kind::wrapped)
        return wrappedLayout(width);
    if (kind == Kind::rows)
        return rowLayout();

    Layout result;
    const double room = std::max(1.0, box.width() - 2 * inset(*this));
    const qsizetype most = lengthThatShows(room / (size > 0 ? size : smallestSize));
    QString line = text.left(kind == Kind::comb && cells > 0 ? cells : most);
    line.replace(QLatin1Char('\n'), QLatin1Char(' '));
    const double cell = kind == Kind::comb && cells > 0 ? box.width() / cells : 0;
    const double natural = width(line);
    result.size = size;
    if (size <= 0) {
        result.size = std::clamp((box.height() - 2 * border) / leading, smallestSize, largestSize);
        if (cell > 0)
            result.size = std::clamp(cell, smallestSize, result.size);
        else if (natural * result.size > room)
            result.size = std::max(smallestSize, room / natural);
    }
    const double y = (box.height() - (ascent + descent) * result.size) / 2 + descent * result.size;
    if (cell <= 0) {
        const double slack = std::max(0.0, room - natural * result.size);
        result.lines.push_back({line, {inset(*this) + slack * slackShare(alignment), y}});
        return result;
    }
    const auto shown = int(std::min<qsizetype>(line.size(), cells));
    const int first = alignment == 1 ? (cells - shown) / 2 : alignment == 2 ? cells - shown : 0;
    for (int i = 0; i < shown; ++i) {
        const QString character = line.mid(i, 1);
        result.lines.push_back({character, {cell * (first + i + 0.5) - width(character) * result.size / 2, y}});
    }
    return result;
}

FieldText::Layout FieldText::wrappedLayout(const Width& width) const {
    Layout result;
    const double room = std::max(1.0, box.width() - 2 * inset(*this));
    const double height = std::max(1.0, box.height() - 2 * inset(*this));
    const double smallest = size > 0 ? size : smallestSize;
    const auto linesThatShow = [&](double letters) {
        return int(std::clamp(box.height() / (leading * letters), 0.0, double(mostLines))) + 2;
    };
    const qsizetype most = std::min(longestText, linesThatShow(smallest) * lengthThatShows(room / smallest));
    const QString shown = text.left(most);
    LineBreaker breaker(shown, width);
    result.size = size > 0 ? size : usualSize;
    QStringList lines = breaker.lines(room / result.size, linesThatShow(result.size));
    if (size <= 0 && double(lines.size()) * result.size * leading > height) {
        // The largest size at which all fits, in steps; the smallest where none is small enough.
        constexpr double step = 0.5;
        int low = 0;
        int high = int((usualSize - smallestSize) / step);
        while (low < high) {
            const int middle = (low + high + 1) / 2;
            const double tried = smallestSize + middle * step;
            const qsizetype count = breaker.lines(room / tried, linesThatShow(tried)).size();
            if (double(count) * tried * leading > height)
                high = middle - 1;
            else
                low = middle;
        }
        result.size = smallestSize + low * step;
        lines = breaker.lines(room / result.size, linesThatShow(result.size));
    }
    double y = box.height() - inset(*this) - ascent * result.size;
    for (const QString& line : lines) {
        const double slack = std::max(0.0, room - width(line) * result.size);
        result.lines.push_back({line, {inset(*this) + slack * slackShare(alignment), y}});
        y -= leading * result.size;
        if (y < -leading * result.size)
            break; // below the box
    }
    return result;
}

FieldText::Layout FieldText::rowLayout() const {
    Layout result;
    result.size = size > 0 ? size : usualSize;
    const double height = leading * result.size;
    const double baseline = (height - (ascent + descent) * result.size) / 2 + descent * result.size;
    double y = box.height() - std::max(1.0, border) - height;
    for (qsizetype i = 0; i < rows.size() && y > -height; ++i, y -= height) {
        const double edge = std::max(1.0, border);
        if (std::binary_search(chosen.begin(), chosen.end(), i))
            result.highlights.emplace_back(edge, y, std::max(0.0, box.width() - 2 * edge), height);
        result.lines.push_back({rows[i], {inset(*this), y + baseline}});
    }
    return result;
}
