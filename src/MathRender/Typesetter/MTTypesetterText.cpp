// Runs of text: the atoms that are nothing but characters.

#include "MTCTLineDisplay.h"
#include "MTFont.h"
#include "MTMathAtom.h"
#include "MTNucleus.h"
#include "MTTypesetter.h"

#include <utility>

void MTTypesetter::addText(const AtomPointer& atom) {
    if (m_lastType) {
        const double space = getInterElementSpace(*m_lastType, atom->type);
        if (!m_currentLine.isEmpty())
            m_currentLine.kern(space);
        else
            m_currentPosition.rx() += space;
    }
    if (atom->type == MTMathAtomType::placeholder)
        m_currentLine.append(*m_styleFont, atom->nucleus, Qt::blue);
    else
        m_currentLine.append(*m_styleFont, atom->nucleus);

    if (m_currentLineIndexRange)
        m_currentLineIndexRange->length += atom->indexRange.length;
    else
        m_currentLineIndexRange = atom->indexRange;
    if (atom->fusedAtoms.empty())
        m_currentAtoms.push_back(atom);
    else
        m_currentAtoms.insert(m_currentAtoms.end(), atom->fusedAtoms.begin(), atom->fusedAtoms.end());

    if (hasScripts(*atom)) {
        // Even without text: scripts may stand on nothing.
        MTDisplay& line = addDisplayLine();
        // Rules 17 and 18: a superscript alone goes behind the italic correction, as the nucleus leans into it.
        double delta = 0;
        if (const auto glyph = findGlyphForLastCharacter(atom->nucleus))
            delta = styleMetrics().getItalicCorrection(*glyph);
        if (delta > 0 && !atom->subScript())
            m_currentPosition.rx() += delta;
        makeScripts(*atom, line, atom->indexRange.end() - 1, delta);
    }
    m_lastType = atom->type;
}

MTDisplay& MTTypesetter::addDisplayLine() {
    const MTRange range = m_currentLineIndexRange.value_or(MTDisplay::notFound);
    addDisplay(std::make_unique<MTCTLineDisplay>(std::exchange(m_currentLine, {}), m_styleFont,
                                                 std::exchange(m_currentAtoms, {}), m_currentPosition, range));
    m_currentLineIndexRange.reset();
    return *m_displayAtoms.back();
}

void MTTypesetter::flushLine() {
    if (!m_currentLine.isEmpty())
        addDisplayLine();
}

std::optional<CGGlyph> MTTypesetter::findGlyphForLastCharacter(QStringView text) const {
    const QStringView character = MTNucleus::lastCharacter(text);
    if (character.isEmpty())
        return std::nullopt;
    qsizetype index = 0;
    return m_styleFont->ctFont()->glyph(MTNucleus::scalarAt(character, index));
}
