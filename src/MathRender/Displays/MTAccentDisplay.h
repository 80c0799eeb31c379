#pragma once

#include "MTDisplay.h"

#include <memory>

class MTGlyphDisplay;
class MTMathListDisplay;

/// A list under an accent, in coordinates that begin at its own position. The accent adds nothing to the width.
class MTAccentDisplay final : public MTDisplay {
public:
    /// `height` is the room above the baseline that the accent asks for.
    MTAccentDisplay(std::unique_ptr<MTGlyphDisplay> accent, std::unique_ptr<MTMathListDisplay> accentee, double height,
                    QPointF position, MTRange range);
    ~MTAccentDisplay() override;

    [[nodiscard]] const MTMathListDisplay& accentee() const { return *m_accentee; }
    [[nodiscard]] const MTGlyphDisplay& accent() const { return *m_accent; }

protected:
    void drawContent(QPainter& painter, QPointF origin) const override;
    void colorContent(const QColor& color) override;

private:
    std::unique_ptr<MTGlyphDisplay> m_accent;
    std::unique_ptr<MTMathListDisplay> m_accentee;
};
