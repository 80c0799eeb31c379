// Formulas beside TeX's, which tools/compare-tex.sh measures.

#include "FormulaLayout.h"
#include "MathFontFiles.h"

#include <QList>
#include <QString>

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>

using namespace FormulaLayout;

namespace {

/// In points, at 20 points.
struct Extent {
    double width;
    double ascent;
    double descent;
};

struct Row {
    QString source;
    std::array<Extent, 2> extents; ///< in display and in text style
    QString difference;            ///< why ours are others; empty where they are the same
};

QList<Row> rowsOfTable() {
    QList<Row> rows;
    const QString table = QString::fromUtf8(MathFontFiles::contents(QStringLiteral(TEX_EXTENTS)));
    for (const QString& line : table.split(u'\n', Qt::SkipEmptyParts)) {
        const QStringList cells = line.split(u'\t');
        EXPECT_TRUE(cells.size() == 7 || cells.size() == 8) << qPrintable(line);
        const auto extentAt = [&](qsizetype cell) {
            return Extent{cells.value(cell).toDouble(), cells.value(cell + 1).toDouble(),
                          cells.value(cell + 2).toDouble()};
        };
        rows.push_back({cells[0], {extentAt(1), extentAt(4)}, cells.value(7)});
    }
    return rows;
}

Extent extentOf(const QString& source, MTLineStyle style) {
    const auto display = layout(source, style, font(20));
    return {display->width(), display->ascent(), display->descent()};
}

double distance(const Extent& one, const Extent& other) {
    return std::max({std::abs(one.width - other.width), std::abs(one.ascent - other.ascent),
                     std::abs(one.descent - other.descent)});
}

/// Within half a point or a fiftieth.
bool isClose(double ours, double theirs) {
    return std::abs(ours - theirs) <= std::max(0.5, 0.02 * theirs);
}

} // namespace

TEST(TexExtents, areOursButWhereTheTableSaysWhy) {
    constexpr double rounding = 0.01; // TeX rounds the constants of a font
    int close = 0;
    int all = 0;
    for (const Row& row : rowsOfTable()) {
        SCOPED_TRACE(qPrintable(row.source));
        const std::array ours{extentOf(row.source, MTLineStyle::display), extentOf(row.source, MTLineStyle::text)};
        for (std::size_t style = 0; style < ours.size(); ++style) {
            const Extent& own = ours[style];
            const Extent& tex = row.extents[style];
            ++all;
            if (isClose(own.width, tex.width) && isClose(own.ascent + own.descent, tex.ascent + tex.descent))
                ++close;
            if (row.difference.isEmpty()) {
                EXPECT_NEAR(own.width, tex.width, rounding) << "style " << style;
                EXPECT_NEAR(own.ascent, tex.ascent, rounding) << "style " << style;
                EXPECT_NEAR(own.descent, tex.descent, rounding) << "style " << style;
            }
        }
        if (!row.difference.isEmpty()) {
            EXPECT_GT(std::max(distance(ours[0], row.extents[0]), distance(ours[1], row.extents[1])), rounding)
                << "no longer: " << qPrintable(row.difference);
        }
    }
    EXPECT_GT(all, 300);
    EXPECT_GE(close, all * 2 / 3);
}
