#include "MTAccent.h"

MTAccent::MTAccent(QString value) : MTInnerListAtom(MTMathAtomType::accent, std::move(value)) {}

std::shared_ptr<MTMathAtom> MTAccent::clone() const {
    return cloneOf(*this);
}
