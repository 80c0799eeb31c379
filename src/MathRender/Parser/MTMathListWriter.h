#pragma once

#include <QString>

class MTMathAtom;

/// Writes formulas as LaTeX source. What writes a whole list and an atom is declared with them: MTMathList::string()
/// and MTMathAtom::string().
namespace MTMathListWriter {

/// What stands behind \left or \right for a boundary: "(", "\lceil". Empty for a character that is no delimiter.
[[nodiscard]] QString delimiterString(const MTMathAtom& boundary);

} // namespace MTMathListWriter
