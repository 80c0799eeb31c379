#pragma once

#include "MTFont.h"
#include "MathFont.h"

#include <memory>
#include <mutex>

class BundleManager;
class MTFontMathTableV2;

/// A math font at a size out of a `BundleManager`, which must outlive it. Its math table is made at first use.
class MTFontV2 final : public MTFont {
public:
    /// Throws as `BundleManager`.
    MTFontV2(MathFont font, double size);
    MTFontV2(MathFont font, double size, BundleManager& bundleManager);
    ~MTFontV2() override;

    [[nodiscard]] MathFont font() const { return m_font; }
    [[nodiscard]] double size() const { return fontSize(); }
    [[nodiscard]] int unitsPerEm() const { return defaultCGFont()->unitsPerEm(); }

    [[nodiscard]] std::shared_ptr<MTFont> copy(double size) const override;
    [[nodiscard]] const MTFontMathTable& mathTable() const override;
    [[nodiscard]] std::shared_ptr<const MTRawMathTable> rawMathTable() const override;

private:
    MathFont m_font;
    BundleManager& m_bundleManager;
    mutable std::once_flag m_lockOnMathTable;
    mutable std::unique_ptr<const MTFontMathTableV2> m_mathTab;
};
