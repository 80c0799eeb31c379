#pragma once

#include "MTDisplay.h"
#include "MTTextRun.h"

#include <memory>
#include <vector>

class MTFont;
class MTMathAtom;

/// A run of text on one baseline. It may be empty, as what a script stands on.
class MTCTLineDisplay final : public MTDisplay {
public:
    MTCTLineDisplay(MTTextRun line, std::shared_ptr<const MTFont> font, std::vector<std::shared_ptr<MTMathAtom>> atoms,
                    QPointF position, MTRange range);

    [[nodiscard]] const MTTextRun& line() const { return m_line; }
    [[nodiscard]] const std::shared_ptr<const MTFont>& font() const { return m_font; }
    /// What the run is made of, one by one where atoms were fused.
    [[nodiscard]] const std::vector<std::shared_ptr<MTMathAtom>>& atoms() const { return m_atoms; }

protected:
    void drawContent(QPainter& painter, QPointF origin) const override;
    /// The whole run loses the colours of its own.
    void colorContent(const QColor& color) override;

private:
    MTTextRun m_line;
    std::shared_ptr<const MTFont> m_font;
    std::vector<std::shared_ptr<MTMathAtom>> m_atoms;
};
