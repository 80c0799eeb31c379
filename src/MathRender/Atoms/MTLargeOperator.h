#pragma once

#include "MTMathAtom.h"

/// An operator such as a sum or "lim". The nucleus is its character or its name.
class MTLargeOperator : public MTMathAtom {
public:
    explicit MTLargeOperator(QString value, bool hasLimits = false);

    /// Whether scripts go above and below in display style, instead of beside.
    bool limits;

protected:
    MTLargeOperator(const MTLargeOperator&) = default;
    [[nodiscard]] std::shared_ptr<MTMathAtom> clone() const override;
};
