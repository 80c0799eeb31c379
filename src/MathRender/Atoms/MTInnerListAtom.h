#pragma once

#include "MTMathAtom.h"

/// What the atoms that decorate one list have in common.
class MTInnerListAtom : public MTMathAtom {
public:
    std::shared_ptr<MTMathList> innerList;

protected:
    using MTMathAtom::MTMathAtom;
    MTInnerListAtom(const MTInnerListAtom&) = default;
    void unshare(ListTransform transform) override;
};
