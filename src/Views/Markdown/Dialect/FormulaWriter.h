#pragma once

#include "MTMathAtomType.h"

#include <QString>

#include <optional>

/// A part of a formula in the engine's vocabulary. What stands in for a construct that the engine lacks may be spaced
/// by it as another kind of atom than what it stands for.
struct FormulaPiece {
    FormulaPiece(QString text, MTMathAtomType type) : FormulaPiece(std::move(text), type, type, type) {}
    FormulaPiece(QString text, MTMathAtomType meantType, MTMathAtomType leftType, MTMathAtomType rightType)
        : latex(std::move(text)), meant(meantType), left(leftType), right(rightType) {}

    QString latex;
    MTMathAtomType meant; ///< what TeX spaces it as
    MTMathAtomType left;  ///< as which the engine spaces it from what is before; `color` for no space at all
    MTMathAtomType right; ///< and from what is behind
};

/// Puts pieces side by side, with the space between them that TeX would set.
class FormulaWriter {
public:
    /// In scripts, most kinds of atoms stand close. `isBehindStyle`: the engine puts a style in front of the list.
    explicit FormulaWriter(bool isInScript, bool isBehindStyle = false)
        : m_isInScript(isInScript), m_isBehindUnspaced(isBehindStyle) {}

    void add(const FormulaPiece& piece);
    /// Something that leaves the space between its neighbours as it is.
    void addUnspaced(QStringView latex);
    /// A mark that makes one fraction of all that was written and all that will be.
    void addFractionMark(QStringView latex);

    /// True when a sign such as "−" that came now would be that of a number, and the engine would take it for an
    /// operation.
    [[nodiscard]] bool hidesSign() const;

    [[nodiscard]] bool isEmpty() const { return m_latex.isEmpty(); }
    [[nodiscard]] const QString& latex() const { return m_latex; }
    /// As which the engine spaces all of it; ordinary when there is nothing.
    [[nodiscard]] MTMathAtomType left() const { return m_left.value_or(MTMathAtomType::ordinary); }
    [[nodiscard]] MTMathAtomType right() const { return m_right.value_or(MTMathAtomType::ordinary); }

private:
    bool m_isInScript;
    /// The engine takes a sign behind a space or a style for an operation.
    bool m_isBehindUnspaced;
    QString m_latex;
    std::optional<MTMathAtomType> m_left;
    std::optional<MTMathAtomType> m_right;
    std::optional<MTMathAtomType> m_meant; ///< of the last piece
};
