#include "FormulaWriter.h"

#include "DialectSpaces.h"

#include <array>

namespace {

using enum MTMathAtomType;

/// Spaces in mu; those below zero are set in display and text style only (TeXbook, chapter 18).
// clang-format off
constexpr std::array<std::array<int, 8>, 8> spaces{{
    // ord  op  bin  rel open close punct inner
    {  0,   3,  -4,  -5,   0,   0,   0,  -3},  // ord
    {  3,   3,   3,  -5,   0,   0,   0,  -3},  // op
    { -4,  -4,  -4,   0,  -4,   0,   0,  -4},  // bin
    { -5,  -5,  -5,   0,  -5,   0,   0,  -5},  // rel
    {  0,   0,   0,   0,   0,   0,   0,   0},  // open
    {  0,   3,  -4,  -5,   0,   0,   0,  -3},  // close
    { -3,  -3,  -3,  -3,  -3,  -3,  -3,  -3},  // punct
    { -3,   3,  -4,  -5,  -3,   0,  -3,  -3},  // inner
}};
// clang-format on

std::size_t indexOf(MTMathAtomType type) {
    switch (type) {
    case largeOperator:
        return 1;
    case binaryOperator:
        return 2;
    case relation:
        return 3;
    case open:
        return 4;
    case close:
        return 5;
    case punctuation:
        return 6;
    case fraction:
    case inner:
        return 7;
    default:
        return 0;
    }
}

int spaceBetween(MTMathAtomType left, MTMathAtomType right, bool isInScript) {
    if (right == color)
        return 0;
    const int space = spaces[indexOf(left)][indexOf(right)];
    return space < 0 ? (isInScript ? 0 : -space) : space;
}

/// Whether an operation behind it has nothing on its left to work on.
bool leavesNoOperand(MTMathAtomType type) {
    return type == binaryOperator || type == relation || type == open || type == punctuation || type == largeOperator;
}

} // namespace

void FormulaWriter::add(const FormulaPiece& piece) {
    if (m_right) {
        const int wanted = spaceBetween(*m_meant, piece.meant, m_isInScript);
        m_latex += DialectSpaces::latex(wanted - spaceBetween(*m_right, piece.left, m_isInScript));
    } else {
        m_left = piece.left;
    }
    m_latex += piece.latex;
    m_meant = piece.meant;
    m_right = piece.right;
    m_isBehindUnspaced = false;
}

void FormulaWriter::addUnspaced(QStringView latex) {
    m_latex += latex;
    m_isBehindUnspaced = m_isBehindUnspaced || !latex.isEmpty();
}

void FormulaWriter::addFractionMark(QStringView latex) {
    m_latex += latex;
    m_left = fraction;
    m_right.reset();
    m_meant.reset();
    m_isBehindUnspaced = false;
}

bool FormulaWriter::hidesSign() const {
    const bool isSign = !m_meant || leavesNoOperand(*m_meant);
    return isSign && (m_isBehindUnspaced || (m_right && !leavesNoOperand(*m_right)));
}
