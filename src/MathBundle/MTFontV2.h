#pragma once

#include "MTFont.h"
#include "MathFont.h"

#include <memory>
#include <mutex>

class BundleManager;
class MTFontMathTableV2;

/// A math font at a size, whose files a `BundleManager` reads and keeps. The manager must outlive it. Its math table is
/// made at first use. Usable on any number of threads at once.
class MTFontV2 final : public MTFont {
public:
    /// `size` in points; the first takes the manager of the process. Throws what `BundleManager::ctFont` throws.
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
