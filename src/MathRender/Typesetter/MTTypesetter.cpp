// The typesetter's way through a list; the constructions are in the other files.

#include "MTTypesetter.h"

#include "MTAccent.h"
#include "MTException.h"
#include "MTFont.h"
#include "MTFraction.h"
#include "MTInner.h"
#include "MTInterElementSpace.h"
#include "MTLargeOperator.h"
#include "MTMathAlphabets.h"
#include "MTMathColor.h"
#include "MTMathList.h"
#include "MTMathSpace.h"
#include "MTMathStyle.h"
#include "MTMathTable.h"
#include "MTNucleus.h"
#include "MTRadical.h"

#include <algorithm>
#include <utility>

namespace {

/// The atom as the class that its type belongs to.
template <typename Atom>
Atom& as(MTMathAtom& atom) {
    auto* const result = dynamic_cast<Atom*>(&atom);
    if (!result)
        throw MTException(QLatin1String("An atom is not of the class of its type ") + description(atom.type));
    return *result;
}

/// A letter, digit or sign as an ordinary atom in the characters that it is set in; any other atom as it is. Shares
/// the scripts of `atom`.
std::shared_ptr<MTMathAtom> asOrdinary(const std::shared_ptr<MTMathAtom>& atom) {
    if (atom->type != MTMathAtomType::variable && atom->type != MTMathAtomType::number &&
        atom->type != MTMathAtomType::unaryOperator)
        return atom;
    auto ordinary = std::make_shared<MTMathAtom>(MTMathAtomType::ordinary, MTMathAlphabets::styledNucleus(*atom));
    ordinary->fontStyle = atom->fontStyle;
    ordinary->indexRange = atom->indexRange;
    ordinary->fusedAtoms = atom->fusedAtoms;
    ordinary->setSubScript(atom->subScript());
    ordinary->setSuperScript(atom->superScript());
    return ordinary;
}

} // namespace

MTTypesetter::ListDisplay MTTypesetter::createLineForMathList(const MTMathList& list,
                                                              std::shared_ptr<const MTFont> font, MTLineStyle style,
                                                              bool cramped, bool spaced) {
    // All lists in a finalized list are final as well, so this is done once and for all.
    const ListPointer finalized = list.finalized();
    MTStyleFonts fonts(std::move(font));
    return layOut(fonts, finalized.get(), style, cramped, spaced);
}

MTTypesetter::ListDisplay MTTypesetter::layOut(MTStyleFonts& fonts, const MTMathList* list, MTLineStyle style,
                                               bool cramped, bool spaced) {
    if (!list || list->isEmpty())
        return std::make_unique<MTMathListDisplay>(std::vector<std::unique_ptr<MTDisplay>>(), MTRange{});
    MTTypesetter typesetter(fonts, style, cramped, spaced);
    typesetter.createDisplayAtoms(preprocessMathList(*list));
    return typesetter.takeList(*list);
}

MTTypesetter::ListDisplay MTTypesetter::takeList(const MTMathList& list) {
    const MTRange range{0, list.atoms().back()->indexRange.end()};
    return std::make_unique<MTMathListDisplay>(std::move(m_displayAtoms), range);
}

MTTypesetter::MTTypesetter(MTStyleFonts& fonts, MTLineStyle style, bool cramped, bool spaced)
    : m_fonts(fonts), m_cramped(cramped), m_spaced(spaced) {
    setStyle(style);
}

MTTypesetter::~MTTypesetter() = default;

std::vector<MTTypesetter::AtomPointer> MTTypesetter::preprocessMathList(const MTMathList& list) {
    std::vector<AtomPointer> preprocessed;
    preprocessed.reserve(list.atoms().size());
    const MTMathAtom* own = nullptr; // the latest atom that is not one of the list's
    for (const AtomPointer& atom : list.atoms()) {
        AtomPointer next = asOrdinary(atom);
        if (next->type == MTMathAtomType::ordinary && !preprocessed.empty()) {
            AtomPointer& prev = preprocessed.back();
            if (prev->type == MTMathAtomType::ordinary && !hasScripts(*prev)) {
                if (prev.get() != own) {
                    prev = prev->copy();
                    own = prev.get();
                }
                prev->fuse(next);
                continue;
            }
        }
        if (next != atom)
            own = next.get();
        preprocessed.push_back(std::move(next));
    }
    return preprocessed;
}

void MTTypesetter::setStyle(MTLineStyle style) {
    m_style = style;
    m_styleFont = m_fonts.fontForStyle(style);
}

const MTFontMathTable& MTTypesetter::styleMetrics() const {
    return m_styleFont->mathTable();
}

MTLineStyle MTTypesetter::scriptStyle() const {
    return m_style <= MTLineStyle::text ? MTLineStyle::script : MTLineStyle::scriptOfScript;
}

MTLineStyle MTTypesetter::fractionStyle() const {
    return m_style == MTLineStyle::scriptOfScript ? m_style : inc(m_style);
}

double MTTypesetter::getInterElementSpace(MTMathAtomType left, MTMathAtomType right) const {
    const int mu = MTInterElementSpace::spacingInMu(MTInterElementSpace::between(left, right), m_style);
    return mu > 0 ? mu * styleMetrics().muUnit() : 0;
}

void MTTypesetter::addLeftSpace(MTMathAtomType type) {
    if (m_lastType)
        m_currentPosition.rx() += getInterElementSpace(*m_lastType, type);
    else if (m_spaced)
        m_currentPosition.rx() += getInterElementSpace(MTMathAtomType::open, type);
}

void MTTypesetter::addDisplay(std::unique_ptr<MTDisplay> display) {
    m_currentPosition.rx() += display->width();
    m_displayAtoms.push_back(std::move(display));
}

void MTTypesetter::addBox(std::unique_ptr<MTDisplay> display, const MTMathAtom& atom, MTMathAtomType type) {
    MTDisplay& added = *display;
    addDisplay(std::move(display));
    if (hasScripts(atom))
        makeScripts(atom, added, atom.indexRange.location, 0);
    m_lastType = type;
}

void MTTypesetter::createDisplayAtoms(const std::vector<AtomPointer>& preprocessed) {
    m_displayAtoms.reserve(preprocessed.size());
    for (const AtomPointer& atom : preprocessed)
        createDisplayAtom(atom);
    flushLine();
    if (m_spaced && m_lastType && !m_displayAtoms.empty()) {
        MTDisplay& last = *m_displayAtoms.back();
        last.setWidth(last.width() + getInterElementSpace(*m_lastType, MTMathAtomType::close));
    }
}

void MTTypesetter::createDisplayAtom(const AtomPointer& atom) {
    switch (atom->type) {
    case MTMathAtomType::ordinary:
    case MTMathAtomType::binaryOperator:
    case MTMathAtomType::relation:
    case MTMathAtomType::open:
    case MTMathAtomType::close:
    case MTMathAtomType::punctuation:
    case MTMathAtomType::placeholder:
        addText(atom);
        return;
    // The first three became ordinary, and boundaries are in no list.
    case MTMathAtomType::number:
    case MTMathAtomType::variable:
    case MTMathAtomType::unaryOperator:
    case MTMathAtomType::boundary:
        return;
    default:
        break;
    }

    flushLine();
    switch (atom->type) {
    // These two leave the space between their neighbours as it is.
    case MTMathAtomType::space:
        m_currentPosition.rx() += as<MTMathSpace>(*atom).space * styleMetrics().muUnit();
        break;
    case MTMathAtomType::style:
        setStyle(as<MTMathStyle>(*atom).style);
        break;
    case MTMathAtomType::color:
    case MTMathAtomType::textcolor:
    case MTMathAtomType::colorBox:
        addColored(as<MTColoredAtom>(*atom));
        break;
    case MTMathAtomType::radical:
        // On its left a radical counts as ordinary.
        addLeftSpace(MTMathAtomType::ordinary);
        addBox(makeRadical(as<MTRadical>(*atom)), *atom, MTMathAtomType::radical);
        break;
    case MTMathAtomType::fraction:
        addLeftSpace(MTMathAtomType::fraction);
        addBox(makeFraction(as<MTFraction>(*atom)), *atom, MTMathAtomType::fraction);
        break;
    case MTMathAtomType::largeOperator:
        addLeftSpace(MTMathAtomType::largeOperator);
        makeLargeOp(as<MTLargeOperator>(*atom), atom);
        m_lastType = MTMathAtomType::largeOperator;
        break;
    case MTMathAtomType::inner:
        addLeftSpace(MTMathAtomType::inner);
        addBox(makeInner(as<MTInner>(*atom)), *atom, MTMathAtomType::inner);
        break;
    case MTMathAtomType::underline:
        addLeftSpace(MTMathAtomType::ordinary);
        addBox(makeUnderline(as<MTInnerListAtom>(*atom)), *atom, MTMathAtomType::ordinary);
        break;
    case MTMathAtomType::overline:
        addLeftSpace(MTMathAtomType::ordinary);
        addBox(makeOverline(as<MTInnerListAtom>(*atom)), *atom, MTMathAtomType::ordinary);
        break;
    case MTMathAtomType::accent:
        addAccent(as<MTAccent>(*atom));
        break;
    case MTMathAtomType::table:
        addLeftSpace(MTMathAtomType::inner);
        addBox(makeTable(as<MTMathTable>(*atom)), *atom, MTMathAtomType::inner);
        break;
    default:
        break;
    }
}
