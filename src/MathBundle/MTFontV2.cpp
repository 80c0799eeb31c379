#include "MTFontV2.h"

#include "BundleManager.h"
#include "MTFontMathTableV2.h"

MTFontV2::MTFontV2(MathFont font, double size) : MTFontV2(font, size, BundleManager::manager()) {}

MTFontV2::MTFontV2(MathFont font, double size, BundleManager& bundleManager)
    : MTFont(bundleManager.ctFont(font, size)), m_font(font), m_bundleManager(bundleManager) {}

MTFontV2::~MTFontV2() = default;

std::shared_ptr<MTFont> MTFontV2::copy(double size) const {
    return std::make_shared<MTFontV2>(m_font, size, m_bundleManager);
}

const MTFontMathTable& MTFontV2::mathTable() const {
    std::call_once(m_lockOnMathTable,
                   [this] { m_mathTab = std::make_unique<const MTFontMathTableV2>(m_font, *this, m_bundleManager); });
    return *m_mathTab;
}

std::shared_ptr<const MTRawMathTable> MTFontV2::rawMathTable() const {
    return m_bundleManager.rawMathTable(m_font);
}
