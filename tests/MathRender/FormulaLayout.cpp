#include "FormulaLayout.h"

#include "MTFont.h"
#include "MTFontManager.h"
#include "MTMathList.h"
#include "MTMathListBuilder.h"
#include "MTTypesetter.h"

namespace FormulaLayout {

namespace {

constexpr double rounding = 1e-4; // parts of tall glyphs are placed in single precision

} // namespace

std::shared_ptr<const MTFont> font(double size) {
    return MTFontManager::fontManager().latinModernFont(size);
}

std::unique_ptr<MTMathListDisplay> layout(QStringView source, MTLineStyle style,
                                          const std::shared_ptr<const MTFont>& ofFont) {
    auto list = MTMathListBuilder::build(source);
    EXPECT_TRUE(list) << source.toUtf8().constData();
    if (!list)
        list = std::make_shared<MTMathList>();
    return MTTypesetter::createLineForMathList(*list, ofFont, style);
}

void expectPosition(const MTDisplay& display, QPointF position) {
    EXPECT_NEAR(display.position().x(), position.x(), rounding);
    EXPECT_NEAR(display.position().y(), position.y(), rounding);
}

void expectExtent(const MTDisplay& display, double ascent, double descent, double width) {
    EXPECT_NEAR(display.ascent(), ascent, rounding);
    EXPECT_NEAR(display.descent(), descent, rounding);
    EXPECT_NEAR(display.width(), width, rounding);
}

} // namespace FormulaLayout
