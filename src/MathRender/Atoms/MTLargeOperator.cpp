#include "MTLargeOperator.h"

MTLargeOperator::MTLargeOperator(QString value, bool hasLimits)
    : MTMathAtom(MTMathAtomType::largeOperator, std::move(value)), limits(hasLimits) {}

std::shared_ptr<MTMathAtom> MTLargeOperator::clone() const {
    return cloneOf(*this);
}
