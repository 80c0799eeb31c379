#include "MTFontMathTableV2.h"

#include "BundleManager.h"

MTFontMathTableV2::MTFontMathTableV2(MathFont mathFont, const MTFont& font, BundleManager& bundleManager)
    : MTFontMathTable(font, bundleManager.rawMathTable(mathFont)), m_mathFont(mathFont) {}

MTFontMathTableV2::~MTFontMathTableV2() = default;
