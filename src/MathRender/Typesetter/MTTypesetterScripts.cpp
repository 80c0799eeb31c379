// Superscripts and subscripts (TeXbook, appendix G, rule 18).

#include "MTCTLineDisplay.h"
#include "MTFont.h"
#include "MTMathAtom.h"
#include "MTTypesetter.h"

#include <algorithm>
#include <utility>

bool MTTypesetter::hasScripts(const MTMathAtom& atom) {
    return atom.subScript() || atom.superScript();
}

MTTypesetter::ListDisplay MTTypesetter::makeSubscript(const MTMathAtom& atom, int index) {
    ListDisplay subscript = layOut(atom.subScript(), scriptStyle(), true);
    subscript->setScript(MTMathListDisplay::LinePosition::ssubscript, index);
    return subscript;
}

MTTypesetter::ListDisplay MTTypesetter::makeSuperscript(const MTMathAtom& atom, int index) {
    ListDisplay superscript = layOut(atom.superScript(), scriptStyle(), m_cramped);
    superscript->setScript(MTMathListDisplay::LinePosition::superscript, index);
    return superscript;
}

double MTTypesetter::superScriptShiftUp() const {
    return m_cramped ? styleMetrics().superscriptShiftUpCramped() : styleMetrics().superscriptShiftUp();
}

void MTTypesetter::makeScripts(const MTMathAtom& atom, MTDisplay& display, int index, double delta) {
    display.setHasScript(true);
    const MTFontMathTable& metrics = styleMetrics();
    double up = 0;
    double down = 0;
    // Rule 18a: scripts go with the height of a box, but not of characters.
    if (!dynamic_cast<const MTCTLineDisplay*>(&display)) {
        const MTFontMathTable& scriptMetrics = m_fonts.fontForStyle(scriptStyle())->mathTable();
        up = display.ascent() - scriptMetrics.superscriptBaselineDropMax();
        down = display.descent() + scriptMetrics.subscriptBaselineDropMin();
    }

    ListDisplay superscript;
    if (atom.superScript()) {
        superscript = makeSuperscript(atom, index);
        up = std::max({up, superScriptShiftUp(), superscript->descent() + metrics.superscriptBottomMin()}); // 18c
    }
    ListDisplay subscript;
    if (atom.subScript()) {
        subscript = makeSubscript(atom, index);
        down = std::max(down, metrics.subscriptShiftDown());
        if (!superscript)
            down = std::max(down, subscript->ascent() - metrics.subscriptTopMax()); // 18b
    }

    double width = 0;
    if (superscript && subscript) {
        const double gap = (up - superscript->descent()) + (down - subscript->ascent());
        if (gap < metrics.subSuperscriptGapMin()) { // 18e
            down += metrics.subSuperscriptGapMin() - gap;
            const double raise = metrics.superscriptBottomMaxWithSubscript() - (up - superscript->descent());
            if (raise > 0) {
                up += raise;
                down -= raise;
            }
        }
        width = std::max(superscript->width() + delta, subscript->width()); // 18f
    } else {
        delta = 0; // for a superscript alone it was part of the way here
        width = superscript ? superscript->width() : subscript->width();
    }

    if (superscript) {
        superscript->setPosition(m_currentPosition + QPointF(delta, up));
        m_displayAtoms.push_back(std::move(superscript));
    }
    if (subscript) {
        subscript->setPosition(m_currentPosition - QPointF(0, down));
        m_displayAtoms.push_back(std::move(subscript));
    }
    m_currentPosition.rx() += width + metrics.spaceAfterScript();
}
