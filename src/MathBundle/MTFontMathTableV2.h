#pragma once

#include "MTFontMathTable.h"
#include "MathFont.h"

class BundleManager;

/// The math table of a font that a `BundleManager` keeps, at the size of the font that it is made for.
class MTFontMathTableV2 final : public MTFontMathTable {
public:
    /// `font` outlives the table. Throws what `BundleManager::rawMathTable` throws.
    MTFontMathTableV2(MathFont mathFont, const MTFont& font, BundleManager& bundleManager);
    ~MTFontMathTableV2() override;

    [[nodiscard]] MathFont mathFont() const { return m_mathFont; }

private:
    MathFont m_mathFont;
};
