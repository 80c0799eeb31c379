#include "MTGlyphAssembly.h"

#include "GlyphPart.h"

#include <gtest/gtest.h>

#include <vector>

namespace {

// A bottom and a top of 10 with connectors of 4, and an extender of 8 that may overlap as a whole.
const std::vector<GlyphPart> parenthesis{{1, 10, 0, 4, false}, {2, 8, 8, 8, true}, {3, 10, 4, 0, false}};

MTGlyphAssembly assembled(const std::vector<GlyphPart>& parts, double height, double minDistance = 1) {
    return MTGlyphAssembly::constructGlyphWithParts(parts, height, minDistance);
}

} // namespace

TEST(MTGlyphAssembly, takesNoMoreExtendersAndNoMoreOverlapThanNeeded) {
    const struct {
        double height;
        std::vector<CGGlyph> glyphs;
        std::vector<float> offsets;
        double reached;
    } rows[] = {
        // Without extender: 16 at least, and 19 when the joint overlaps by 1.
        {5, {1, 3}, {0, 6}, 16},
        {16, {1, 3}, {0, 6}, 16},
        {18, {1, 3}, {0, 8}, 18},
        {19, {1, 3}, {0, 9}, 19},
        // With one: offsets of at least 0, 6, 10, so 20 to 26.
        {19.5, {1, 2, 3}, {0, 6, 10}, 20},
        {26, {1, 2, 3}, {0, 9, 16}, 26},
        // A second one overlaps with the first as a whole when it may: 20 again, up to 20 + 3 * 3.
        {26.5, {1, 2, 2, 3}, {0, 6 + 6.5F / 3, 6 + 2 * 6.5F / 3, 10 + 6.5F}, 26.5},
        {29, {1, 2, 2, 3}, {0, 9, 12, 19}, 29},
    };
    for (const auto& [height, glyphs, offsets, reached] : rows) {
        const MTGlyphAssembly assembly = assembled(parenthesis, height);
        EXPECT_EQ(assembly.glyphs, glyphs) << height;
        ASSERT_EQ(assembly.offsets.size(), offsets.size()) << height;
        for (std::size_t i = 0; i < offsets.size(); ++i)
            EXPECT_NEAR(double(assembly.offsets[i]), double(offsets[i]), 1e-5) << height << ' ' << i;
        EXPECT_NEAR(assembly.height, reached, 1e-5) << height;
    }
}

TEST(MTGlyphAssembly, reachesAnyHeightWithTheFewestExtenders) {
    // Each further extender adds a joint, which gives 3 at the most.
    for (const double height : {30.0, 31.9, 32.0, 32.1, 333.3, 5'000.0, 600'000.0}) {
        const MTGlyphAssembly assembly = assembled(parenthesis, height);
        EXPECT_NEAR(assembly.height, height, height * 1e-6);
        const auto extenders = double(assembly.glyphs.size() - 2);
        EXPECT_GE(20 + 3 * (extenders + 1), height - 1e-6);
        EXPECT_LT(20 + 3 * extenders, height);
    }
}

TEST(MTGlyphAssembly, comesToAnEndWhereNoNumberOfExtendersIsEnough) {
    EXPECT_TRUE(assembled({}, 100).glyphs.empty());
    // No extender: all of it, stretched.
    const MTGlyphAssembly fixed = assembled({{1, 10, 0, 4, false}, {3, 10, 4, 0, false}}, 100);
    EXPECT_EQ(fixed.glyphs, (std::vector<CGGlyph>{1, 3}));
    EXPECT_DOUBLE_EQ(fixed.height, 19);
    EXPECT_DOUBLE_EQ(assembled({{1, 10, 0, 0, false}}, 100).height, 10);
    // An extender that may not but overlap as a whole adds nothing.
    const std::vector<GlyphPart> stuck{{1, 10, 0, 4, false}, {2, 8, 8, 8, true}, {3, 10, 4, 0, false}};
    EXPECT_EQ(assembled(stuck, 1000, 8).glyphs.size(), 3U);
    // A glyph of extenders only has none at first.
    const MTGlyphAssembly bar = assembled({{2, 8, 2, 2, true}}, 20);
    EXPECT_EQ(bar.glyphs.size(), 3U);
    EXPECT_DOUBLE_EQ(bar.height, 20);
}
