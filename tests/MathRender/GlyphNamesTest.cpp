#include "GlyphNames.h"

#include <QSet>

#include <gtest/gtest.h>

TEST(GlyphNames, everyGlyphHasANameOfItsOwnThatLeadsBack) {
    const std::vector<QString> given{QStringLiteral(".notdef"), QStringLiteral("A"),    QString(),
                                     QStringLiteral("A"),       QStringLiteral("gid3"), QStringLiteral("gid2_"),
                                     QStringLiteral("gid2")};
    const GlyphNames names(given);
    const QString expected[] = {
        given[0], given[1], QStringLiteral("gid2__"), QStringLiteral("gid3_"), QStringLiteral("gid3"),
        given[5], given[6]};
    for (std::size_t glyph = 0; glyph < given.size(); ++glyph) {
        const QString& name = names.name(static_cast<CGGlyph>(glyph));
        EXPECT_EQ(name, expected[glyph]) << glyph;
        EXPECT_EQ(names.glyph(name), glyph) << name.toStdString();
    }
    EXPECT_EQ(names.glyph(QStringLiteral("B")), 0);
}
