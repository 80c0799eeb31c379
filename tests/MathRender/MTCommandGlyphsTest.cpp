// Every command that draws something, drawn in Latin Modern Math.

#include "FormulaLayout.h"
#include "MTAccentDisplay.h"
#include "MTCTLineDisplay.h"
#include "MTCommandTables.h"
#include "MTFont.h"
#include "MTGlyphConstructionDisplay.h"
#include "MTGlyphDisplay.h"
#include "MTLargeOpLimitsDisplay.h"
#include "MTMathImage.h"

#include <QStringList>

#include <gtest/gtest.h>

#include <algorithm>

using namespace FormulaLayout;
using MTCommandTables::string;

namespace {

/// All glyphs of a formula without fractions, roots and lines.
void collectGlyphs(const MTDisplay& display, std::vector<CGGlyph>& glyphs) {
    if (const auto* list = dynamic_cast<const MTMathListDisplay*>(&display)) {
        for (const auto& part : list->subDisplays())
            collectGlyphs(*part, glyphs);
    } else if (const auto* line = dynamic_cast<const MTCTLineDisplay*>(&display)) {
        for (const auto& glyph : line->line().glyphs)
            glyphs.push_back(glyph.glyph);
    } else if (const auto* glyph = dynamic_cast<const MTGlyphDisplay*>(&display)) {
        glyphs.push_back(glyph->glyph());
    } else if (const auto* construction = dynamic_cast<const MTGlyphConstructionDisplay*>(&display)) {
        glyphs.insert(glyphs.end(), construction->glyphs().begin(), construction->glyphs().end());
    } else if (const auto* accent = dynamic_cast<const MTAccentDisplay*>(&display)) {
        collectGlyphs(accent->accent(), glyphs);
        collectGlyphs(accent->accentee(), glyphs);
    } else if (const auto* limits = dynamic_cast<const MTLargeOpLimitsDisplay*>(&display)) {
        collectGlyphs(limits->nucleus(), glyphs);
    } else {
        ADD_FAILURE() << "a box that is not expected here";
    }
}

bool hasInk(const QString& source) {
    MTMathImage drawing;
    drawing.font = font(20);
    drawing.latex = source;
    drawing.contentInsets = {20, 20, 20, 20};
    const auto result = drawing.asImage();
    if (!result.image)
        return false;
    for (int y = 0; y < result.image->height(); ++y) {
        for (int x = 0; x < result.image->width(); ++x) {
            if (qAlpha(result.image->pixel(x, y)) > 0)
                return true;
        }
    }
    return false;
}

/// Those of `sources` that have a character which the font has no glyph for. The others draw something.
QStringList lackingGlyphs(const QStringList& sources) {
    QStringList lacking;
    for (const QString& source : sources) {
        std::vector<CGGlyph> glyphs;
        collectGlyphs(*layout(source), glyphs);
        EXPECT_FALSE(glyphs.empty()) << qPrintable(source);
        const bool isLacking = std::find(glyphs.begin(), glyphs.end(), CGGlyph(0)) != glyphs.end();
        if (isLacking)
            lacking << source;
        EXPECT_EQ(hasInk(source), !isLacking) << qPrintable(source) << ": the missing glyph is blank";
    }
    return lacking;
}

} // namespace

TEST(CommandGlyphs, everySymbolButOneIsInTheFont) {
    QStringList sources;
    for (const auto& symbol : MTCommandTables::allSymbols()) {
        // The first parts cells, and the second is blank.
        if (symbol.name != u"&" && symbol.name != u" ")
            sources << u'\\' + string(symbol.name);
    }
    EXPECT_EQ(sources.size(), 225);
    EXPECT_EQ(lackingGlyphs(sources), QStringList{QStringLiteral("\\lbar")}) << "a lambda with a stroke";
    EXPECT_NEAR(layout(u"\\ ")->width(), font()->ctFont()->advance(font()->ctFont()->glyph(U' ')), 1e-9);
}

TEST(CommandGlyphs, everyAccentAndDelimiterIsInTheFont) {
    QStringList sources;
    for (const auto& accent : MTCommandTables::allAccents())
        sources << u'\\' + string(accent.name) + QStringLiteral(" x")
                << u'\\' + string(accent.name) + QStringLiteral("{xyz}");
    const QString tall = QStringLiteral("\\begin{matrix}1\\\\1\\\\1\\\\1\\end{matrix}");
    for (const auto& delimiter : MTCommandTables::allDelimiters()) {
        if (delimiter.name == u".")
            continue;
        const bool isPlain = delimiter.name.size() == 1 && !QStringLiteral("\\{}").contains(string(delimiter.name));
        const QString name = isPlain                   ? string(delimiter.name)
                             : delimiter.name == u"||" ? QStringLiteral("\\|")
                                                       : u'\\' + string(delimiter.name);
        for (const QString& inner : {QStringLiteral("x"), tall})
            sources << QStringLiteral("\\left") + name + u' ' + inner + QStringLiteral("\\right.");
    }
    EXPECT_EQ(sources.size(), 2 * 12 + 2 * 31);
    EXPECT_EQ(lackingGlyphs(sources), QStringList());
}

TEST(CommandGlyphs, everyAlphabetIsInTheFont) {
    QStringList sources;
    for (const auto& style : MTCommandTables::allFontStyleNames()) {
        for (char letter = '0'; letter <= 'z'; ++letter) {
            if (QChar::isLetterOrNumber(static_cast<unsigned char>(letter)))
                sources << u'\\' + string(style.name) + u'{' + QLatin1Char(letter) + u'}';
        }
    }
    EXPECT_EQ(sources.size(), 22 * 62);
    // Unicode has three small script letters elsewhere than the others, where this font has none.
    QStringList lacking;
    for (const QString& name : {QStringLiteral("mathcal"), QStringLiteral("cal")}) {
        for (const QChar letter : QStringLiteral("ego"))
            lacking << u'\\' + name + u'{' + letter + u'}';
    }
    EXPECT_EQ(lackingGlyphs(sources), lacking);
}
