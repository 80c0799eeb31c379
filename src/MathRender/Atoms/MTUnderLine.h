#pragma once

#include "MTInnerListAtom.h"

/// A list over a line.
class MTUnderLine : public MTInnerListAtom {
public:
    MTUnderLine();

protected:
    MTUnderLine(const MTUnderLine&) = default;
    [[nodiscard]] std::shared_ptr<MTMathAtom> clone() const override;
};
