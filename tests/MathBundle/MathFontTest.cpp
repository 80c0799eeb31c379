#include "MathFont.h"

#include "FontError.h"
#include "MTFontManager.h"
#include "MathFontsBundle.h"

#include <QFile>

#include <gtest/gtest.h>

TEST(MathFont, namesInTheOrderOfTheFonts) {
    const char* names[] = {"latinmodern-math",     "KpMath-Light",
                           "KpMath-Sans",          "xits-math",
                           "texgyretermes-math",   "Asana-Math",
                           "Euler-Math",           "FiraMath-Regular",
                           "NotoSansMath-Regular", "LibertinusMath-Regular",
                           "Garamond-Math",        "LeteSansMath"};
    ASSERT_EQ(std::size(names), allMathFonts.size());
    for (std::size_t index = 0; index < allMathFonts.size(); ++index) {
        EXPECT_EQ(static_cast<std::size_t>(allMathFonts[index]), index);
        EXPECT_EQ(fontName(allMathFonts[index]), QLatin1String(names[index]));
    }
}

// The makers of the other way to a font mean the same files.
TEST(MathFont, theFontManagerHasAMakerForEachFont) {
    using Maker = std::shared_ptr<MTFont> (MTFontManager::*)(double);
    const Maker makers[] = {
        &MTFontManager::latinModernFont, &MTFontManager::kpMathLightFont, &MTFontManager::kpMathSansFont,
        &MTFontManager::xitsFont,        &MTFontManager::termesFont,      &MTFontManager::asanaFont,
        &MTFontManager::eulerFont,       &MTFontManager::firaFont,        &MTFontManager::notoSansFont,
        &MTFontManager::libertinusFont,  &MTFontManager::garamondFont,    &MTFontManager::leteSansFont};
    ASSERT_EQ(std::size(makers), allMathFonts.size());
    MTFontManager manager;
    for (const MathFont font : allMathFonts) {
        const QString path = MathFontsBundle::fontPath(MathFontsBundle::folder(), fontName(font));
        const Maker maker = makers[static_cast<std::size_t>(font)];
        try {
            EXPECT_NE((manager.*maker)(17), nullptr);
            EXPECT_TRUE(QFile::exists(path)) << path.toStdString();
        } catch (const FontError& error) {
            EXPECT_EQ(error.kind(), FontError::Kind::fontPathNotFound);
            EXPECT_TRUE(error.sentence().contains(path)) << error.what();
            EXPECT_FALSE(QFile::exists(path)) << path.toStdString();
        }
    }
}
