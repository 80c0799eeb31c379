#pragma once

#include "MTDisplay.h"

#include <cstdint>
#include <memory>
#include <vector>

/// A list, laid out: boxes side by side, in coordinates that begin at its own position.
class MTMathListDisplay final : public MTDisplay {
public:
    enum class LinePosition : std::uint8_t { regular, ssubscript, superscript };

    MTMathListDisplay(std::vector<std::unique_ptr<MTDisplay>> subDisplays, MTRange range);
    ~MTMathListDisplay() override;

    [[nodiscard]] LinePosition type() const { return m_type; }
    /// The place of the atom that the script belongs to; -1 for a list that is none.
    [[nodiscard]] int index() const { return m_index; }
    void setScript(LinePosition type, int index) {
        m_type = type;
        m_index = index;
    }

    [[nodiscard]] const std::vector<std::unique_ptr<MTDisplay>>& subDisplays() const { return m_subDisplays; }

    /// The smallest box around all of the list's boxes and the start of its baseline.
    void recomputeDimensions();

protected:
    void drawContent(QPainter& painter, QPointF origin) const override;
    void colorContent(const QColor& color) override;

private:
    std::vector<std::unique_ptr<MTDisplay>> m_subDisplays;
    LinePosition m_type = LinePosition::regular;
    int m_index = -1;
};
