#include "UserCharacters.h"

#include <QTextBoundaryFinder>

#include <algorithm>

namespace {

/// A stretch that holds that many characters unless most are clusters.
constexpr qsizetype likelyLength(qsizetype count) {
    return 2 * count + 64;
}

} // namespace

qsizetype UserCharacters::count(QStringView text) {
    QTextBoundaryFinder finder(QTextBoundaryFinder::Grapheme, text);
    qsizetype found = 0;
    while (finder.toNextBoundary() > 0)
        ++found;
    return found;
}

qsizetype UserCharacters::endOfFirst(QStringView text, qsizetype count) {
    if (count >= text.size())
        return text.size();
    for (qsizetype length = likelyLength(count);; length *= 2) {
        const QStringView stretch = text.left(length);
        QTextBoundaryFinder finder(QTextBoundaryFinder::Grapheme, stretch);
        qsizetype end = 0;
        for (qsizetype i = 0; i < count && end >= 0; ++i)
            end = finder.toNextBoundary();
        if (end >= 0 && end < stretch.size())
            return end;
        if (stretch.size() == text.size()) // else the last cluster may go on behind the stretch
            return text.size();
    }
}

qsizetype UserCharacters::after(QStringView text, qsizetype offset, qsizetype count) {
    const qsizetype from = std::clamp(offset, qsizetype(0), text.size());
    return from + endOfFirst(text.mid(from), count);
}

qsizetype UserCharacters::before(QStringView text, qsizetype offset, qsizetype count) {
    const qsizetype from = std::clamp(offset, qsizetype(0), text.size());
    if (count >= from)
        return 0;
    for (qsizetype length = likelyLength(count);; length *= 2) {
        const qsizetype stretchStart = std::max(qsizetype(0), from - length);
        QTextBoundaryFinder finder(QTextBoundaryFinder::Grapheme, text.mid(stretchStart, from - stretchStart));
        finder.toEnd();
        qsizetype start = from - stretchStart;
        for (qsizetype i = 0; i < count && start > 0; ++i)
            start = finder.toPreviousBoundary();
        if (start > 0)
            return stretchStart + start;
        if (stretchStart == 0)
            return 0;
    }
}
