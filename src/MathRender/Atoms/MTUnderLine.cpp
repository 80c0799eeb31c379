#include "MTUnderLine.h"

MTUnderLine::MTUnderLine() : MTInnerListAtom(MTMathAtomType::underline) {}

std::shared_ptr<MTMathAtom> MTUnderLine::clone() const {
    return cloneOf(*this);
}
