#include "GraphemeClusters.h"

#include <algorithm>

namespace {

/// The first unit that can join another one into a cluster, but for a line feed behind a carriage return.
constexpr char16_t firstJoiningUnit = 0x0300;
constexpr qsizetype longestCodePoint = 2;

bool joinsNothing(QStringView text, qsizetype index) {
    return index < 0 || index >= text.size() || text[index].unicode() < firstJoiningUnit;
}

/// A stretch that holds that many characters unless most are clusters.
constexpr qsizetype likelyLength(qsizetype count) {
    return 2 * count + 64;
}

} // namespace

qsizetype GraphemeClusters::count(QStringView text) {
    QTextBoundaryFinder finder(QTextBoundaryFinder::Grapheme, text);
    qsizetype found = 0;
    while (finder.toNextBoundary() > 0)
        ++found;
    return found;
}

qsizetype GraphemeClusters::endOfFirst(QStringView text, qsizetype count) {
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

qsizetype GraphemeClusters::after(QStringView text, qsizetype offset, qsizetype count) {
    const qsizetype from = std::clamp(offset, qsizetype(0), text.size());
    return from + endOfFirst(text.mid(from), count);
}

qsizetype GraphemeClusters::before(QStringView text, qsizetype offset, qsizetype count) {
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

bool GraphemeClusters::standsAlone(QStringView text, qsizetype index) {
    if (joinsNothing(text, index - 1) && joinsNothing(text, index) && joinsNothing(text, index + 1))
        return true;
    const qsizetype start = std::max(qsizetype(0), index - longestCodePoint);
    const QStringView around = text.sliced(start, std::min(index + 1 + longestCodePoint, text.size()) - start);
    QTextBoundaryFinder finder(QTextBoundaryFinder::Grapheme, around.data(), around.size());
    finder.setPosition(index - start);
    return finder.isAtBoundary() && finder.toNextBoundary() == index + 1 - start;
}

QStringView GraphemeClusters::Reader::next() {
    m_previousIndex = m_index;
    if (joinsNothing(m_text, m_index) && joinsNothing(m_text, m_index + 1) && m_text[m_index] != u'\r') {
        ++m_index;
    } else {
        if (!m_clusters)
            m_clusters.emplace(QTextBoundaryFinder::Grapheme, m_text);
        m_clusters->setPosition(m_index);
        const qsizetype boundary = m_clusters->toNextBoundary();
        m_index = boundary > m_index ? boundary : m_text.size();
    }
    return m_text.sliced(m_previousIndex, m_index - m_previousIndex);
}
