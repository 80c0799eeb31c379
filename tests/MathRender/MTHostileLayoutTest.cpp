// Layout of the worst that the parser lets through: it ends, on a small stack, and with finite boxes.

#include "FormulaLayout.h"
#include "MTCommandTables.h"
#include "MTFont.h"
#include "MTMathListBuilder.h"
#include "MathFontFiles.h"

#include <QImage>
#include <QPainter>
#include <QThread>

#include <gtest/gtest.h>

#include <atomic>
#include <cmath>
#include <functional>
#include <thread>
#include <vector>

using namespace FormulaLayout;

namespace {

#if defined(__SANITIZE_ADDRESS__)
constexpr unsigned smallStack = 2U << 20; // frames are several times as large
#else
constexpr unsigned smallStack = 512U << 10;
#endif

/// Lays a source out, colours it, draws a corner of it and takes it down, on a thread with as little stack as a worker
/// may have. Gives the height of the formula.
double useFully(const QString& source, MTLineStyle style = MTLineStyle::display) {
    const auto shared = font(20);
    double height = 0;
    const std::unique_ptr<QThread> thread(QThread::create([&] {
        const auto display = layout(source, style, shared);
        display->setTextColor(Qt::darkGray);
        QImage image(20, 20, QImage::Format_ARGB32_Premultiplied);
        image.fill(Qt::white);
        QPainter painter(&image);
        painter.setTransform(QTransform(1, 0, 0, -1, 0, 10));
        display->draw(painter);
        EXPECT_TRUE(std::isfinite(display->width())) << source.left(50).toUtf8().constData();
        height = display->ascent() + display->descent();
    }));
    thread->setStackSize(smallStack);
    thread->start();
    thread->wait();
    EXPECT_TRUE(std::isfinite(height));
    return height;
}

QString nested(QStringView opening, QStringView core, QStringView closing, int depth) {
    return opening.toString().repeated(depth) + core.toString() + closing.toString().repeated(depth);
}

} // namespace

TEST(HostileLayout, theDeepestNesting) {
    const struct {
        QStringView opening;
        QStringView core;
        QStringView closing;
        int levels; ///< of nesting for each opening
    } shapes[] = {
        {u"\\left(", u"x", u"\\right)", 1},
        {u"\\sqrt ", u"x", u"", 1},
        {u"\\sqrt[", u"x", u"]y", 1},
        {u"\\hat ", u"x", u"", 1},
        {u"\\hat ", u"x", u"^2", 1},
        {u"\\frac{1}{", u"x", u"}", 2},
        {u"\\binom{", u"x", u"}2", 2},
        {u"x^{", u"x", u"}_1", 2},
        {u"\\sum^{", u"x", u"}", 2},
        {u"12_{", u"12", u"}", 2},
        {u"1\\over ", u"x", u"", 1},
        {u"\\color{#123456}", u"x", u"", 1},
        {u"\\textcolor{#123456}a=", u"x", u"", 1},
        {u"\\colorbox{#123456}", u"x", u"", 1},
        {u"\\overline\\underline ", u"x", u"", 2},
        {u"\\begin{pmatrix}", u"x", u"\\end{pmatrix}", 2},
        {u"\\begin{cases}1&", u"x", u"\\end{cases}", 2},
    };
    for (const auto& [opening, core, closing, levels] : shapes) {
        const int deepest = (MTMathListBuilder::maximumNesting - 3) / levels;
        EXPECT_GT(useFully(nested(opening, core, closing, deepest)), 0) << opening.toUtf8().constData();
        useFully(nested(opening, core, closing, deepest), MTLineStyle::scriptOfScript);
        useFully(nested(opening, u"", closing, deepest));
    }
}

TEST(HostileLayout, manyParts) {
    const int most = MTMathListBuilder::maximumParts - 10;
    const struct {
        QStringView unit;
        int parts; ///< that each makes
    } rows[] = {
        {u"x", 1},        {u"1+", 2},     {u"\\,", 1},     {u"x^2", 3},
        {u"\\frac12", 5}, {u"\\sum ", 1}, {u"\\hat x", 3}, {u"\\left(\\right)", 2},
    };
    for (const auto& [unit, parts] : rows)
        useFully(unit.toString().repeated(most / parts));
}

TEST(HostileLayout, manyPartsAreLaidOutOnceAndNotForEachLevelAroundThem) {
    const int most = MTMathListBuilder::maximumParts - 10;
    const QString letters = QStringLiteral("x").repeated(most - 1'000);
    const QString fractions = QStringLiteral("\\frac12").repeated((most - 1'000) / 5);
    constexpr int depth = MTMathListBuilder::maximumNesting - 5;
    useFully(nested(u"\\hat ", QString(u'{' + letters + u'}'), u"", depth) + QStringLiteral("^2_3"));
    useFully(nested(u"\\hat ", QString(u'{' + fractions + u'}'), u"", depth) + QStringLiteral("^2"));
    useFully(nested(u"\\color{#123456}", QString(u'{' + fractions + u'}'), u"", depth));
    useFully(nested(u"\\left(", fractions, u"\\right)", depth));
}

TEST(HostileLayout, tablesOfManyRowsInDelimitersThatAreBuilt) {
    const auto tableOf = [](int rows, int columns) {
        const QString row = QStringLiteral("1&").repeated(columns - 1) + QStringLiteral("1\\\\");
        return QString(QStringLiteral("\\begin{pmatrix}") + row.repeated(rows) + QStringLiteral("\\end{pmatrix}"));
    };
    // 24 points from row to row.
    EXPECT_NEAR(useFully(tableOf(25'000, 1)), 600'000, 100);
    useFully(tableOf(150, 150));
    useFully(tableOf(1, 30'000));
    useFully(QStringLiteral("\\sqrt") + u'{' + tableOf(25'000, 1) + u'}');
    useFully(QStringLiteral("\\begin{matrix}") + QStringLiteral("\\\\").repeated(30'000) +
             QStringLiteral("\\end{matrix}"));
    useFully(QStringLiteral("\\begin{vmatrix}") + QStringLiteral("&").repeated(30'000) +
             QStringLiteral("\\end{vmatrix}"));
}

TEST(HostileLayout, everySymbolInEveryAlphabetAndStyle) {
    QString symbols;
    for (const auto& symbol : MTCommandTables::allSymbols()) {
        if (symbol.name != u"&") // which is read as the end of a cell
            symbols += u'\\' + QString::fromUtf16(symbol.name.data(), qsizetype(symbol.name.size())) + u' ';
    }
    for (int unit = 0x20; unit < 0x7F; ++unit) {
        if (!QStringView(u"\\{}^_&").contains(QChar(unit)))
            symbols += QChar(unit);
    }
    symbols += QStringLiteral("\u00E9\u00E6\u0416");
    for (const QStringView style : {u"mathnormal", u"mathrm", u"mathbf", u"mathcal", u"mathtt", u"mathit", u"mathsf",
                                    u"mathfrak", u"mathbb", u"bm", u"text"}) {
        const QString source = u'\\' + style.toString() + u'{' + symbols + u'}';
        for (const MTLineStyle lineStyle : {MTLineStyle::display, MTLineStyle::scriptOfScript})
            EXPECT_GT(useFully(source, lineStyle), 0);
    }
}

TEST(HostileLayout, fourThreadsShareAFont) {
    const QStringView sources[] = {u"\\frac{-b\\pm\\sqrt{b^2-4ac}}{2a}", u"\\sum_{i=1}^n\\binom ni\\hat{x}_i^2",
                                   u"\\left\\{\\begin{matrix}1\\\\2\\\\3\\\\4\\\\5\\\\6\\end{matrix}\\right)",
                                   u"\\mathfrak{g}\\mathbb{R}\\alpha\\int_0^1\\vec{v}"};
    // A font of its own, that nobody has read a glyph of.
    const auto shared = std::make_shared<MTFont>(MathFontFiles::latinModern(), 20);
    constexpr int threadCount = 4;
    std::vector<std::vector<QImage>> results(threadCount);
    std::atomic<int> waiting = threadCount;
    {
        std::vector<std::jthread> threads;
        for (std::vector<QImage>& result : results) {
            threads.emplace_back([&] {
                --waiting;
                while (waiting > 0)
                    std::this_thread::yield();
                for (int round = 0; round < 20; ++round) {
                    result.clear();
                    for (const QStringView source : sources) {
                        const auto display = layout(source, MTLineStyle::display, shared);
                        QImage image(200, 200, QImage::Format_Grayscale8);
                        image.fill(Qt::white);
                        QPainter painter(&image);
                        painter.setTransform(QTransform(1, 0, 0, -1, 0, 100));
                        display->draw(painter);
                        painter.end();
                        result.push_back(image);
                    }
                }
            });
        }
    }
    for (const std::vector<QImage>& result : results)
        EXPECT_EQ(result, results[0]);
    EXPECT_NE(results[0][0], results[0][1]);
}
