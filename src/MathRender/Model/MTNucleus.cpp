#include "MTNucleus.h"

#include "GraphemeClusters.h"

namespace {

/// Every character of the mathematical alphabets beyond the first plane begins with this unit, and none joins others.
constexpr char16_t mathematicalAlphabets = 0xD835;

} // namespace

char32_t MTNucleus::scalarAt(QStringView text, qsizetype& index) {
    const QChar unit = text[index++];
    if (unit.isHighSurrogate() && index < text.size() && text[index].isLowSurrogate())
        return QChar::surrogateToUcs4(unit, text[index++]);
    return unit.unicode();
}

QStringView MTNucleus::lastCharacter(QStringView nucleus) {
    const qsizetype size = nucleus.size();
    if (size <= 1)
        return nucleus;
    if (nucleus[size - 2] == mathematicalAlphabets)
        return nucleus.last(2);
    QStringView last = nucleus;
    for (GraphemeClusters::Reader reader(nucleus); reader.hasCharacters();)
        last = reader.next();
    return last;
}

bool MTNucleus::isOneCharacter(QStringView nucleus) {
    return !nucleus.isEmpty() && lastCharacter(nucleus).size() == nucleus.size();
}
