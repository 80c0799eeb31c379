#pragma once

#include "MTFontMathTable.h"
#include "MathFont.h"

class BundleManager;

/// The math table of a font out of a `BundleManager`.
class MTFontMathTableV2 final : public MTFontMathTable {
public:
    /// Throws as `BundleManager`.
    MTFontMathTableV2(MathFont mathFont, const MTFont& font, BundleManager& bundleManager);
    ~MTFontMathTableV2() override;

    [[nodiscard]] MathFont mathFont() const { return m_mathFont; }

private:
    MathFont m_mathFont;
};
