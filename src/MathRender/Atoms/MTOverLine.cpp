#include "MTOverLine.h"

MTOverLine::MTOverLine() : MTInnerListAtom(MTMathAtomType::overline) {}

std::shared_ptr<MTMathAtom> MTOverLine::clone() const {
    return cloneOf(*this);
}
