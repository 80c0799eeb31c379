#include "PageLabels.h"

#include <algorithm>
#include <iterator>
#include <limits>
#include <utility>

namespace {

constexpr int letters = 26;
constexpr int longestRoman = 9999; // nine M, and what follows
constexpr int mostRepeated = 40;   // of one letter

QString roman(int number) {
    static constexpr std::pair<int, const char*> steps[] = {
        {1000, "m"}, {900, "cm"}, {500, "d"}, {400, "cd"}, {100, "c"}, {90, "xc"}, {50, "l"},
        {40, "xl"},  {10, "x"},   {9, "ix"},  {5, "v"},    {4, "iv"},  {1, "i"}};
    QString text;
    for (const auto& [value, sign] : steps)
        for (; number >= value; number -= value)
            text += QLatin1String(sign);
    return text;
}

/// a to z, then aa to zz.
QString repeatedLetter(int number) {
    return {(number - 1) / letters + 1, QLatin1Char(char('a' + (number - 1) % letters))};
}

} // namespace

QString PageLabels::Label::text() const {
    if (style == Style::none)
        return prefix;
    const bool isRoman = style == Style::upperRoman || style == Style::lowerRoman;
    const bool isLetter = style == Style::upperLetters || style == Style::lowerLetters;
    QString shown;
    if (isRoman && number <= longestRoman)
        shown = roman(number);
    else if (isLetter && number <= letters * mostRepeated)
        shown = repeatedLetter(number);
    else
        shown = QString::number(number);
    return prefix + (style == Style::upperRoman || style == Style::upperLetters ? shown.toUpper() : shown);
}

PageLabels::PageLabels(std::vector<Range> ranges) : m_ranges(std::move(ranges)) {
    std::stable_sort(m_ranges.begin(), m_ranges.end(),
                     [](const Range& a, const Range& b) { return a.firstPage < b.firstPage; });
}

std::optional<PageLabels::Label> PageLabels::of(int page) const {
    const auto after = std::upper_bound(m_ranges.begin(), m_ranges.end(), page,
                                        [](int number, const Range& range) { return number < range.firstPage; });
    if (after == m_ranges.begin())
        return std::nullopt;
    const Range& range = *std::prev(after);
    Label label = range.first;
    const int further = page - range.firstPage;
    if (label.style != Style::none)
        label.number += std::min(further, std::numeric_limits<int>::max() - label.number);
    return label;
}
