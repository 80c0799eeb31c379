#pragma once

#include "MTLineStyle.h"

#include <memory>

class MTFont;

/// A font at the sizes that the styles of a formula need, each made when it is first asked for. For one thread.
class MTStyleFonts {
public:
    explicit MTStyleFonts(std::shared_ptr<const MTFont> font);

    [[nodiscard]] const std::shared_ptr<const MTFont>& fontForStyle(MTLineStyle style);

    /// The size in points at which `style` is set in a formula whose text style has `font`.
    [[nodiscard]] static double getStyleSize(MTLineStyle style, const MTFont& font);

private:
    std::shared_ptr<const MTFont> m_font;
    std::shared_ptr<const MTFont> m_scriptFont;
    std::shared_ptr<const MTFont> m_scriptOfScriptFont;
};
