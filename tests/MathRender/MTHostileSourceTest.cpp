#include "MTMathList.h"
#include "MTMathListBuilder.h"
#include "MathListDump.h"

#include <QStringList>
#include <QThread>

#include <gtest/gtest.h>

#include <atomic>
#include <functional>
#include <thread>
#include <vector>

namespace {

#if defined(__SANITIZE_ADDRESS__)
constexpr unsigned smallStack = 2U << 20; // frames are several times as large
#else
constexpr unsigned smallStack = 512U << 10;
#endif

/// Runs `work` on a thread with as little stack as a worker may have.
void onSmallStack(const std::function<void()>& work) {
    const std::unique_ptr<QThread> thread(QThread::create(work));
    thread->setStackSize(smallStack);
    thread->start();
    thread->wait();
}

/// Everything that can be done with a source and its formula. Gives the code of the error, or 0.
int useFully(const QString& source) {
    std::optional<MTParseError> error;
    int code = 0;
    onSmallStack([&] {
        const auto list = MTMathListBuilder::build(source, error);
        code = error ? static_cast<int>(error->code) : 0;
        if (!list)
            return;
        const auto finalized = list->finalized();
        const auto again = finalized->finalized();
        const auto copy = MTMathList::copy(again);
        EXPECT_EQ(copy->description(), finalized->description());
        EXPECT_EQ(MTMathListBuilder::mathListToString(copy), MTMathListBuilder::mathListToString(finalized));
    });
    return code;
}

QString nested(QStringView opening, QStringView core, QStringView closing, int depth) {
    return opening.toString().repeated(depth) + core.toString() + closing.toString().repeated(depth);
}

} // namespace

TEST(HostileSource, depthIsLimitedWhereverItCanGrow) {
    const struct {
        QStringView opening;
        QStringView core;
        QStringView closing;
        int levels; ///< of nesting for each opening
    } shapes[] = {
        {u"{", u"x", u"}", 1},
        {u"\\left(", u"x", u"\\right)", 1},
        {u"\\sqrt ", u"x", u"", 1},
        {u"\\sqrt[", u"x", u"]y", 1},
        {u"\\hat ", u"x", u"", 1},
        {u"\\frac{1}{", u"x", u"}", 2},
        {u"x^{", u"x", u"}", 2},
        {u"12_{", u"12", u"}", 2},
        {u"1\\over ", u"x", u"", 1},
        {u"\\mathbf\\mathit ", u"x", u"", 2},
        {u"\\color{red}", u"x", u"", 1},
        {u"\\overline\\underline ", u"x", u"", 2},
        {u"\\begin{pmatrix}", u"x", u"\\end{pmatrix}", 2},
        {u"\\begin{cases}1&", u"x", u"\\end{cases}", 2},
    };
    for (const auto& [opening, core, closing, levels] : shapes) {
        const int deepest = (MTMathListBuilder::maximumNesting - 3) / levels;
        EXPECT_EQ(useFully(nested(opening, core, closing, deepest)), 0) << opening.toUtf8().constData();
        EXPECT_EQ(useFully(nested(opening, core, closing, deepest + 4)), 13) << opening.toUtf8().constData();
        EXPECT_EQ(useFully(nested(opening, core, closing, 100'000)), 13) << opening.toUtf8().constData();
        EXPECT_NE(useFully(nested(opening, u"", u"", 100'000)), 0) << "never closed " << opening.toUtf8().constData();
        // Only closed: wrong for all that can be closed at all.
        useFully(nested(u"", u"x", closing, 100'000));
    }
}

TEST(HostileSource, aMegabyteOfAnythingComesToAnEnd) {
    const QStringView units[] = {u"^",          u"_",         u"{",     u"}",          u"&",      u"\\\\",
                                 u"\\",         u"\\left(",   u"$",     u"\\over",     u"\\frac", u"\\begin{matrix}",
                                 u"\\sqrt[",    u"\\text",    u"x",     u"1",          u"1^",     u"{}",
                                 u"\\end{}",    u"\\right)",  u"\\hat", u"\\color{",   u" ",      u"\u0301",
                                 u"a\u0301",    u"\\limits",  u"[",     u"]",          u"\u200D", u"\\sum\\limits",
                                 u"a\\\\b&{c}", u"\\begin{}", u"\r\n",  u"\\quad_1^2", u"\u0600", u"\u044F\u0301"};
    for (const QStringView unit : units) {
        const QString source = unit.toString().repeated((1 << 20) / unit.size());
        useFully(source);
        useFully(QStringLiteral("\\begin{matrix}\\text{\\left.") + source + QStringLiteral("\\right.}\\end{matrix}"));
    }
    // Too many parts are an error, and what is not counted does no harm.
    EXPECT_EQ(useFully(QStringLiteral("^").repeated(1 << 20)), 13);
    EXPECT_EQ(useFully(QStringLiteral("&").repeated(1 << 20)), 13);
    EXPECT_EQ(useFully(QStringLiteral("{}").repeated(1 << 20)), 13);
    EXPECT_EQ(useFully(QStringLiteral(" $").repeated(1 << 20)), 0);
    EXPECT_EQ(useFully(QStringLiteral("1").repeated(MTMathListBuilder::maximumParts - 1)), 0);
    EXPECT_EQ(useFully(QStringLiteral("1").repeated(MTMathListBuilder::maximumParts)), 13);
}

TEST(HostileSource, hugeTablesAreRefusedAndLargeOnesRead) {
    const auto tableOf = [](int rows, int columns) {
        const QString row = QStringLiteral("1&").repeated(columns - 1) + QStringLiteral("1\\\\");
        return QString(QStringLiteral("\\begin{bmatrix}") + row.repeated(rows) + QStringLiteral("\\end{bmatrix}"));
    };
    EXPECT_EQ(useFully(tableOf(1'000, 1'000)), 13);
    EXPECT_EQ(useFully(tableOf(200, 200)), 0);
    EXPECT_EQ(useFully(tableOf(1, 40'000)), 0);
    EXPECT_EQ(useFully(tableOf(30'000, 1)), 0);
}

TEST(HostileSource, tablesTakeRowsThatEndInsideGroups) {
    // A row break ends the group that it is in; two of them in one cell are no reason to lose count.
    EXPECT_EQ(dumpOfSource(u"\\begin{matrix}{a\\\\b\\\\c\\\\d\\end{matrix}"),
              u"table:matrix[ 18 0](style:1 var:a var:b\\style:1 var:c\\style:1 var:d)");
    EXPECT_EQ(dumpOfSource(u"\\begin{matrix}{{{a\\\\b\\\\c\\\\d\\\\e&f\\end{matrix}"),
              u"table:matrix[ 18 0](style:1 var:a var:b var:c var:d\\style:1 var:e&style:1 var:f)");
}

TEST(HostileSource, fourThreadsReadTheSameThing) {
    QStringList sources{QStringLiteral("\\frac{-b\\pm\\sqrt{b^2-4ac}}{2a}"),
                        QStringLiteral("\\begin{cases}x&x\\ge0\\\\-x&x<0\\end{cases}"),
                        QStringLiteral("\u00E9\u1EBF\u0416\\mathbf{v}\\cdot\\hat{n}"),
                        QStringLiteral("\\left\\{\\sum_{i=1}^n i\\right\\|\\to\\infty"),
                        QStringLiteral("\\foo{"),
                        nested(u"\\left(", u"x", u"\\right)", 50)};
    constexpr int threadCount = 4;
    std::vector<QStringList> results(threadCount);
    std::atomic<int> waiting = threadCount;
    {
        std::vector<std::jthread> threads;
        for (QStringList& result : results) {
            threads.emplace_back([&] {
                // All at once, so that the tables made at first use are asked for by all.
                --waiting;
                while (waiting > 0)
                    std::this_thread::yield();
                for (int round = 0; round < 50; ++round) {
                    result.clear();
                    for (const QString& source : sources) {
                        const auto list = MTMathListBuilder::build(source);
                        result << dumpOfSource(source) << MTMathListBuilder::mathListToString(list);
                    }
                }
            });
        }
    }
    EXPECT_EQ(results[0].size(), 2 * sources.size());
    EXPECT_TRUE(results[0][4].contains(u"accent:U+0301(accent:U+0302(var:e)) ord:\u0416"));
    for (const QStringList& result : results)
        EXPECT_EQ(result, results[0]);
}
