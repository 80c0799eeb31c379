#pragma once

#include "MTMathAtom.h"

/// One list over another, with a rule between them or without, and delimiters around them where set.
class MTFraction : public MTMathAtom {
public:
    explicit MTFraction(bool rule = true);

    bool hasRule;
    /// Delimiter characters; empty when not set.
    QString leftDelimiter;
    QString rightDelimiter;
    std::shared_ptr<MTMathList> numerator;
    std::shared_ptr<MTMathList> denominator;

    [[nodiscard]] QString description() const override;

protected:
    MTFraction(const MTFraction&) = default;
    [[nodiscard]] std::shared_ptr<MTMathAtom> clone() const override;
    void unshare(ListTransform transform) override;
};
