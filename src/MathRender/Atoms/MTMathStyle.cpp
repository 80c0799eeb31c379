#include "MTMathStyle.h"

MTMathStyle::MTMathStyle(MTLineStyle lineStyle) : MTMathAtom(MTMathAtomType::style), style(lineStyle) {}

std::shared_ptr<MTMathAtom> MTMathStyle::clone() const {
    return cloneOf(*this);
}
