#pragma once

#include "MTDisplay.h"

#include <memory>

class MTMathListDisplay;

/// A large operator with limits above and below, all centred.
class MTLargeOpLimitsDisplay final : public MTDisplay {
public:
    struct Limits {
        std::unique_ptr<MTMathListDisplay> upper; ///< null for none
        std::unique_ptr<MTMathListDisplay> lower; ///< null for none
        double upperGap;                          ///< between the outlines of the operator and the limit
        double lowerGap;
        double shift;        ///< how far the upper limit is moved to the right, and the lower one to the left
        double extraPadding; ///< room beyond the limits
    };

    MTLargeOpLimitsDisplay(std::unique_ptr<MTDisplay> nucleus, Limits limits, QPointF position, MTRange range);
    ~MTLargeOpLimitsDisplay() override;

    [[nodiscard]] const MTDisplay& nucleus() const { return *m_nucleus; }
    [[nodiscard]] const MTMathListDisplay* upperLimit() const { return m_limits.upper.get(); }
    [[nodiscard]] const MTMathListDisplay* lowerLimit() const { return m_limits.lower.get(); }
    [[nodiscard]] double upperLimitGap() const { return m_limits.upperGap; }
    [[nodiscard]] double lowerLimitGap() const { return m_limits.lowerGap; }
    [[nodiscard]] double limitShift() const { return m_limits.shift; }
    [[nodiscard]] double extraPadding() const { return m_limits.extraPadding; }

protected:
    void drawContent(QPainter& painter, QPointF origin) const override;
    void updatePositions() override;
    void colorContent(const QColor& color) override;

private:
    std::unique_ptr<MTDisplay> m_nucleus;
    Limits m_limits;
};
