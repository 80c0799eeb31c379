#pragma once

#include "MTInnerListAtom.h"

/// A list under a line.
class MTOverLine : public MTInnerListAtom {
public:
    MTOverLine();

protected:
    MTOverLine(const MTOverLine&) = default;
    [[nodiscard]] std::shared_ptr<MTMathAtom> clone() const override;
};
