#include "MTMathSpace.h"

MTMathSpace::MTMathSpace(double width) : MTMathAtom(MTMathAtomType::space), space(width) {}

std::shared_ptr<MTMathAtom> MTMathSpace::clone() const {
    return cloneOf(*this);
}
