#pragma once

#include "MTMathAtom.h"

/// The base of the atoms that hold one list and put something on it: an accent, a line, a colour, delimiters.
class MTInnerListAtom : public MTMathAtom {
public:
    std::shared_ptr<MTMathList> innerList;

protected:
    using MTMathAtom::MTMathAtom;
    MTInnerListAtom(const MTInnerListAtom&) = default;
    void unshare(ListTransform transform) override;
};
