// Lists in a colour or on one.

#include "MTColor.h"
#include "MTMathColor.h"
#include "MTMathList.h"
#include "MTTypesetter.h"

#include <utility>

namespace {

/// As what the first atom of a list counts for the space in front of it; none for a list that shows nothing.
std::optional<MTMathAtomType> leadingType(const MTMathList& list) {
    for (const auto& atom : list.atoms()) {
        switch (atom->type) {
        case MTMathAtomType::space:
        case MTMathAtomType::style:
            continue;
        case MTMathAtomType::radical:
        case MTMathAtomType::underline:
        case MTMathAtomType::overline:
        case MTMathAtomType::accent:
            return MTMathAtomType::ordinary;
        case MTMathAtomType::table:
            return MTMathAtomType::inner;
        default:
            return atom->type;
        }
    }
    return std::nullopt;
}

} // namespace

void MTTypesetter::addColored(const MTColoredAtom& atom) {
    ListDisplay display = layOut(atom.innerList, m_style, false);
    const std::optional<QColor> color = MTColor::fromHexString(atom.colorString);
    if (atom.type == MTMathAtomType::colorBox)
        display->setLocalBackgroundColor(color);
    else if (color)
        display->setLocalTextColor(*color);
    // \textcolor is spaced as its text would be without it; the others stand apart.
    if (atom.type == MTMathAtomType::textcolor && m_lastType && atom.innerList) {
        if (const auto leading = leadingType(*atom.innerList))
            m_currentPosition.rx() += getInterElementSpace(*m_lastType, *leading);
    }
    display->setPosition(m_currentPosition);
    addDisplay(std::move(display));
    m_lastType = atom.type;
}
