#pragma once

#include <QString>

class MTMathAtom;
class MTMathList;

/// Writes formulas as LaTeX source.
namespace MTMathListWriter {

[[nodiscard]] QString string(const MTMathList& list);
[[nodiscard]] QString string(const MTMathAtom& atom);

/// What stands behind \left or \right for a boundary: "(", "\lceil". Empty for a character that is no delimiter.
[[nodiscard]] QString delimiterString(const MTMathAtom& boundary);

} // namespace MTMathListWriter
