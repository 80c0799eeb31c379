#include "PageFont.h"

#include "PDFDocument.h"
#include "PDFPage.h"
#include "PdfFixtures.h"

#include <gtest/gtest.h>

TEST(PageFont, TakesTheFamilyOutOfAPostScriptName) {
    const PageText::Font plain{QString(), false, false, false, false};
    PageText::Font serif = plain;
    serif.serif = true;
    PageText::Font mono = plain;
    mono.monospaced = true;
    PageText::Font boldItalic = plain;
    boldItalic.bold = boldItalic.italic = true;
    const struct {
        const char* name;
        PageText::Font flags;
        const char* family;
        int weight;
        bool italic;
    } cases[] = {
        {"Helvetica-BoldOblique", plain, "Helvetica", QFont::Bold, true},
        {"Arial-BoldItalicMT", plain, "Arial", QFont::Bold, true},
        {"Arial,Bold", plain, "Arial", QFont::Bold, false},
        {"TimesNewRomanPS-BoldMT", serif, "Times New Roman", QFont::Bold, false},
        {"Times-Roman", serif, "Times", QFont::Normal, false},
        {"CourierNewPS-ItalicMT", mono, "Courier New", QFont::Normal, true},
        {"DejaVuSansMono-BoldOblique", mono, "DejaVu Sans Mono", QFont::Bold, true},
        {"DejaVuSerif", boldItalic, "DejaVu Serif", QFont::Bold, true},
        {"NoSuchFont-Light", plain, "sans-serif", QFont::Light, false},
        {"CMR10", serif, "serif", QFont::Normal, false},
        {"CMTT10", mono, "monospace", QFont::Normal, false},
        {"-Bold,Italic", plain, "sans-serif", QFont::Bold, true},
        {"", plain, "sans-serif", QFont::Normal, false},
    };
    for (const auto& [name, flags, family, weight, italic] : cases) {
        PageText::Font font = flags;
        font.name = QString::fromLatin1(name);
        const QFont found = PageFont::nearest(font, 10.5);
        EXPECT_EQ(found.family(), QString::fromLatin1(family)) << name;
        EXPECT_EQ(int(found.weight()), weight) << name;
        EXPECT_EQ(found.italic(), italic) << name;
        EXPECT_DOUBLE_EQ(found.pointSizeF(), 10.5) << name;
    }
}

TEST(PageFont, IsThatOfTheFirstOccurrenceOnThePage) {
    PdfFixture pdf;
    pdf.addPageWithContent("BT /F1 14 Tf 1 0 0 1 50 700 Tm (Twice) Tj /F2 2 Tf 9 0 0 9 50 650 Tm (slanted) Tj "
                           "/F2 9 Tf 1 0 0 1 50 600 Tm (Twice) Tj ET",
                           "<< /Font << /F1 << /Type /Font /Subtype /Type1 /BaseFont /Times-Bold >> "
                           "/F2 << /Type /Font /Subtype /Type1 /BaseFont /Courier-Oblique >> >> >>");
    const auto document = PDFDocument::fromData(pdf.bytes());
    const auto page = document->page(0);
    const auto first = page->font(QStringLiteral("Twice"));
    ASSERT_TRUE(first);
    EXPECT_EQ(first->family(), QStringLiteral("Times"));
    EXPECT_TRUE(first->bold());
    EXPECT_NEAR(first->pointSizeF(), 14, 0.01);
    const auto other = page->font(QStringLiteral("slanted\nTw"));
    ASSERT_TRUE(other);
    EXPECT_EQ(other->family(), QStringLiteral("Courier"));
    EXPECT_TRUE(other->italic());
    EXPECT_NEAR(other->pointSizeF(), 18, 0.01) << "the text matrix enlarges it";
    for (const char* text : {"", "twice", "not there", "\n"})
        EXPECT_FALSE(page->font(QString::fromLatin1(text))) << text;
}
