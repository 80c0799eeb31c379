#include "GraphemeClusters.h"

#include <QTextBoundaryFinder>

static constexpr char16_t firstCombiningMark = 0x0300;
static constexpr qsizetype longestCodePoint = 2; // code units

static bool joinsNothing(QStringView text, qsizetype index) {
    return index < 0 || index >= text.size() || text[index].unicode() < firstCombiningMark;
}

bool GraphemeClusters::standsAlone(QStringView text, qsizetype index) {
    if (joinsNothing(text, index - 1) && joinsNothing(text, index) && joinsNothing(text, index + 1))
        return true;
    const qsizetype start = qMax<qsizetype>(0, index - longestCodePoint);
    const QStringView around = text.sliced(start, qMin(index + 1 + longestCodePoint, text.size()) - start);
    QTextBoundaryFinder finder(QTextBoundaryFinder::Grapheme, around.data(), around.size());
    finder.setPosition(index - start);
    return finder.isAtBoundary() && finder.toNextBoundary() == index + 1 - start;
}
