#pragma once

#include "MTMathAtom.h"

/// A gap between the neighbours, or an overlap when negative.
class MTMathSpace : public MTMathAtom {
public:
    explicit MTMathSpace(double width = 0);

    double space; ///< in mu, eighteenths of an em

protected:
    MTMathSpace(const MTMathSpace&) = default;
    [[nodiscard]] std::shared_ptr<MTMathAtom> clone() const override;
};
