#include "VisualOrder.h"

#include <QChar>

#include <algorithm>
#include <numeric>

namespace {

enum class Kind { left, right, number, neutral };

Kind kindOf(char32_t character) {
    switch (QChar::direction(character)) {
    case QChar::DirL:
        return Kind::left;
    case QChar::DirR:
    case QChar::DirAL:
        return Kind::right;
    case QChar::DirEN:
    case QChar::DirAN:
        return Kind::number;
    default:
        return Kind::neutral;
    }
}

bool joinsNumbers(char32_t character) {
    const QChar::Direction direction = QChar::direction(character);
    return direction == QChar::DirCS || direction == QChar::DirES;
}

/// The kinds with numbers as part of what they stand in, and marks as part of what they stand on.
std::vector<Kind> kindsOf(const std::vector<char32_t>& line, bool startsRight) {
    std::vector<Kind> kinds;
    Kind strong = startsRight ? Kind::right : Kind::left;
    for (const char32_t character : line) {
        Kind kind = kindOf(character);
        if (kind == Kind::number && strong == Kind::left)
            kind = Kind::left;
        else if (QChar::direction(character) == QChar::DirNSM && !kinds.empty())
            kind = kinds.back();
        if (kind == Kind::left || kind == Kind::right)
            strong = kind;
        kinds.push_back(kind);
    }
    for (std::size_t i = 1; i + 1 < kinds.size(); ++i)
        if (joinsNumbers(line[i]) && kinds[i - 1] == Kind::number && kinds[i + 1] == Kind::number)
            kinds[i] = Kind::number;
    return kinds;
}

/// 0 for what runs to the right in a line that does so, 1 for what runs to the left, 2 for what runs to the right in
/// that.
std::vector<int> levelsOf(const std::vector<Kind>& kinds, bool startsRight) {
    const auto levelOf = [startsRight](Kind kind) {
        return kind == Kind::right ? 1 : kind == Kind::number || startsRight ? 2 : 0;
    };
    const int base = startsRight ? 1 : 0;
    const auto isRight = [](Kind kind) { return kind != Kind::left; };
    std::vector<int> levels(kinds.size(), base);
    for (std::size_t i = 0; i < kinds.size();) {
        if (kinds[i] != Kind::neutral) {
            levels[i] = levelOf(kinds[i]);
            ++i;
            continue;
        }
        std::size_t end = i;
        while (end < kinds.size() && kinds[end] == Kind::neutral)
            ++end;
        // What stands between two of a kind is of that kind, too.
        const bool before = i == 0 ? startsRight : isRight(kinds[i - 1]);
        const bool after = end == kinds.size() ? startsRight : isRight(kinds[end]);
        const int level = before != after ? base : levelOf(before ? Kind::right : Kind::left);
        std::fill(levels.begin() + std::ptrdiff_t(i), levels.begin() + std::ptrdiff_t(end), level);
        i = end;
    }
    return levels;
}

} // namespace

std::vector<int> VisualOrder::of(const std::vector<char32_t>& line) {
    const auto isStrong = [](char32_t c) { return kindOf(c) == Kind::left || kindOf(c) == Kind::right; };
    if (std::none_of(line.begin(), line.end(), [](char32_t c) { return kindOf(c) == Kind::right; }))
        return {};
    const bool startsRight = kindOf(*std::find_if(line.begin(), line.end(), isStrong)) == Kind::right;
    const std::vector<int> levels = levelsOf(kindsOf(line, startsRight), startsRight);
    std::vector<int> order(line.size());
    std::iota(order.begin(), order.end(), 0);
    for (int level = 2; level > 0; --level) {
        const auto isInside = [&](int place) { return levels[std::size_t(place)] >= level; };
        for (auto begin = order.begin(); begin != order.end();) {
            begin = std::find_if(begin, order.end(), isInside);
            const auto end = std::find_if_not(begin, order.end(), isInside);
            std::reverse(begin, end);
            begin = end;
        }
    }
    return order;
}
