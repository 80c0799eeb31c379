#include "FieldText.h"

#include <algorithm>

namespace {

// Of Helvetica, and near enough for others; in parts of the font size.
constexpr double ascent = 0.718;
constexpr double descent = 0.207;
constexpr double leading = 1.15;
constexpr double smallestSize = 4;
constexpr double usualSize = 12;
constexpr double largestSize = 144;

/// Rows and lines past it don't show in any field, but would take long.
constexpr qsizetype mostLines = 5000;
/// So does what lies past this in a line; a text of several lines may have more.
constexpr qsizetype longestLine = 5000;
constexpr qsizetype longestText = 100000;

/// How many characters of the word, one at least, are no wider than `room` (parts of the font size).
qsizetype fittingLength(const QString& word, const FieldText::Width& width, double room) {
    qsizetype low = 1;
    qsizetype high = word.size();
    while (low < high) {
        const qsizetype middle = (low + high + 1) / 2;
        if (width(word.left(middle)) <= room)
            low = middle;
        else
            high = middle - 1;
    }
    return low < word.size() && word.at(low - 1).isHighSurrogate() ? low + 1 : low;
}

/// Breaks at blanks, and within words that are wider than a line. `room` is in parts of the font size.
QStringList wrapped(const QString& text, const FieldText::Width& width, double room) {
    QStringList lines;
    const double blank = width(QStringLiteral(" "));
    for (const QString& paragraph : text.split(QLatin1Char('\n'))) {
        QString line;
        double reached = 0;
        bool isFirst = true;
        for (QString word : paragraph.split(QLatin1Char(' '))) {
            double wordWidth = width(word);
            if (!isFirst && reached + blank + wordWidth > room && !line.isEmpty()) {
                lines += std::exchange(line, QString());
                isFirst = true;
            }
            while (isFirst && wordWidth > room && word.size() > 1 && lines.size() < mostLines) {
                const qsizetype length = fittingLength(word, width, room);
                lines += word.left(length);
                word.remove(0, length);
                wordWidth = width(word);
            }
            line += isFirst ? word : QLatin1Char(' ') + word;
            reached = isFirst ? wordWidth : reached + blank + wordWidth;
            isFirst = false;
            if (lines.size() >= mostLines)
                break;
        }
        lines += line;
        if (lines.size() >= mostLines)
            break;
    }
    return lines;
}

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
    QString line = text.left(longestLine);
    line.replace(QLatin1Char('\n'), QLatin1Char(' '));
    const double room = std::max(1.0, box.width() - 2 * inset(*this));
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
    result.size = size > 0 ? size : usualSize;
    const QString shown = text.left(longestText);
    QStringList lines = wrapped(shown, width, room / result.size);
    while (size <= 0 && result.size > smallestSize && double(lines.size()) * result.size * leading > height) {
        result.size -= 0.5;
        lines = wrapped(shown, width, room / result.size);
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
