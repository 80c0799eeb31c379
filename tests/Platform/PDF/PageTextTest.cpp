#include "PageText.h"
#include "FlowingText.h"
#include "PDFDocument.h"
#include "PDFPage.h"
#include "PDFSelection.h"
#include "PdfFixtures.h"

#include <gtest/gtest.h>

namespace {

QByteArray textAt(double x, double y, const QByteArray& text) {
    return "BT /F1 12 Tf 1 0 0 1 " + QByteArray::number(x) + " " + QByteArray::number(y) + " Tm (" + text + ") Tj ET\n";
}

std::shared_ptr<PDFDocument> onePage(const QStringList& lines, const QByteArray& rotate = "0") {
    PdfFixture pdf;
    pdf.addPage(lines);
    pdf.setPageKey(0, "/Rotate", rotate);
    return PDFDocument::fromData(pdf.bytes());
}

std::shared_ptr<PDFDocument> pageOf(const QByteArray& content) {
    PdfFixture pdf;
    pdf.addPageWithContent(content, pdf.defaultResources());
    return PDFDocument::fromData(pdf.bytes());
}

QPointF middleOf(const PDFPage& page, const QString& word) {
    const auto text = page.text();
    const int at = int(text->string.indexOf(word));
    EXPECT_GE(at, 0) << word.toStdString();
    return text->glyphs[std::size_t(at)].quad.boundingRect().center();
}

QString wordAt(const PDFPage& page, QPointF point) {
    const auto text = page.text();
    const auto [start, end] = text->wordAround(text->characterAt(point));
    return text->string.mid(start, end - start);
}

/// The edges of a word in page coordinates.
QRectF boxOf(const PDFPage& page, const QString& word) {
    const auto text = page.text();
    const int at = int(text->string.indexOf(word));
    return text->lineRects(at, at + int(word.size())).at(0);
}

} // namespace

TEST(PageText, HasTheLinesWithTheirGlyphsFontsAndSizes) {
    const auto document = onePage({QStringLiteral("Hello world"), QStringLiteral("second line")});
    const auto page = document->page(0);
    EXPECT_EQ(page->string(), QStringLiteral("Hello world\nsecond line"));
    const auto text = page->text();
    ASSERT_EQ(text->glyphs.size(), std::size_t(text->string.size()));
    ASSERT_EQ(text->lines.size(), 2U);
    EXPECT_EQ(text->fonts.at(text->glyphs[0].font).name, QStringLiteral("Helvetica"));
    EXPECT_FLOAT_EQ(text->glyphs[0].size, 12);
    // "H" of Helvetica is 0.722 em wide.
    EXPECT_NEAR(text->glyphs[0].quad.boundingRect().width(), 0.722 * 12, 0.1);
    EXPECT_GT(text->lines[0].bounds.center().y(), text->lines[1].bounds.center().y()); // y grows upwards
    EXPECT_LT(text->lines[0].bounds.height(), 20);
}

TEST(PageText, FindsLinesAndWordsOnTurnedPagesToo) {
    for (const QByteArray rotate : {"0", "90", "180", "270"}) {
        const auto document = onePage({QStringLiteral("alpha don't beta-gamma"), QStringLiteral("delta")}, rotate);
        const auto page = document->page(0);
        EXPECT_EQ(page->selectionForLine(middleOf(*page, QStringLiteral("beta")))->string(),
                  QStringLiteral("alpha don't beta-gamma"));
        EXPECT_EQ(wordAt(*page, middleOf(*page, QStringLiteral("don't"))), QStringLiteral("don't"));
        EXPECT_EQ(wordAt(*page, middleOf(*page, QStringLiteral("gamma"))), QStringLiteral("gamma"));
        EXPECT_FALSE(page->selectionForLine(QPointF(5, 5)));
        EXPECT_EQ(page->text()->characterAt(QPointF(-1000, 1e9)), -1);
        const QRectF box = page->selectionForLine(middleOf(*page, QStringLiteral("delta")))->bounds(*page);
        EXPECT_NEAR(box.left(), boxOf(*page, QStringLiteral("delta")).left(), 0.01);
        EXPECT_LT(box.height(), 20) << rotate.toStdString(); // page coordinates aren't turned
    }
}

TEST(PageText, SelectsFromOnePointToAnotherInReadingOrder) {
    const auto document =
        onePage({QStringLiteral("one two three"), QStringLiteral("four five six"), QStringLiteral("seven eight")});
    const auto page = document->page(0);
    const QRectF two = boxOf(*page, QStringLiteral("two"));
    const QRectF five = boxOf(*page, QStringLiteral("five"));
    const QPointF beforeTwo(two.left() + 0.5, two.center().y());
    const QPointF afterFive(five.right() - 0.5, five.center().y());
    EXPECT_EQ(page->selection(beforeTwo, afterFive)->string(), QStringLiteral("two three\nfour five"));
    EXPECT_EQ(page->selection(afterFive, beforeTwo)->string(), QStringLiteral("two three\nfour five"));
    EXPECT_FALSE(page->selection(beforeTwo, beforeTwo));
    // From above the text to the right of its second line: all of both lines.
    EXPECT_EQ(page->selection(QPointF(0, 791), QPointF(611, five.center().y()))->string(),
              QStringLiteral("one two three\nfour five six"));
    const std::vector<PDFSelection> lines = page->selectAll()->selectionsByLine();
    ASSERT_EQ(lines.size(), 3U);
    EXPECT_EQ(lines[2].string(), QStringLiteral("seven eight"));
    EXPECT_EQ(page->selectAll()->lineRects(*page).size(), 3U);
}

TEST(PageText, TakesTheLineMeantByAPointBesideTheText) {
    // Two columns; in the left one a short line between two long ones.
    const auto document = pageOf(textAt(72, 700, "a long line of the column") + textAt(72, 670, "short") +
                                 textAt(72, 640, "a long line again, the last") + textAt(330, 700, "right one") +
                                 textAt(330, 640, "right two") + textAt(330, 400, "right three"));
    const auto page = document->page(0);
    const auto lineAt = [&](QPointF point) {
        const auto text = page->text();
        const PageText::Line& line = text->lines.at(std::size_t(text->lineAt(text->gapNearest(point))));
        return text->string.mid(line.start, line.end - line.start);
    };
    EXPECT_EQ(lineAt({200, 673}), QStringLiteral("short"));                       // to the right of it
    EXPECT_EQ(lineAt({200, 664}), QStringLiteral("short"));                       // and a little below
    EXPECT_EQ(lineAt({20, 643}), QStringLiteral("a long line again, the last"));  // in the margin
    EXPECT_EQ(lineAt({150, 403}), QStringLiteral("a long line again, the last")); // below the end of the column
    EXPECT_EQ(lineAt({600, 403}), QStringLiteral("right three"));
    EXPECT_EQ(lineAt({400, 30}), QStringLiteral("right three"));
}

TEST(PageText, ReadsColumnsOneAfterTheOtherHoweverTheyWereWritten) {
    QByteArray rowByRow;
    QByteArray columnByColumn;
    QByteArray rightColumn;
    QStringList expected;
    QStringList expectedRight;
    for (int i = 0; i < 8; ++i) {
        const QByteArray left = "the left column has line " + QByteArray::number(i);
        const QByteArray right = "and the right one line " + QByteArray::number(i);
        const double y = 700 - 15 * i;
        rowByRow += textAt(72, y, left) + textAt(330, y, right);
        columnByColumn += textAt(72, y, left);
        rightColumn += textAt(330, y, right);
        expected << QString::fromLatin1(left);
        expectedRight << QString::fromLatin1(right);
    }
    for (const QByteArray& content : {rowByRow, columnByColumn + rightColumn}) {
        EXPECT_EQ(pageOf(content)->page(0)->string(), (expected + expectedRight).join(QLatin1Char('\n')));
    }
    // Rows of a table are read row by row: of short cells, and of long ones that are filled unevenly or are no
    // sentences.
    const std::vector<std::pair<QByteArray, QByteArray>> cells{
        {"Item", "12.50"},
        {"Replace all of the values", "Insert at the head of it"},
        {"a word or so of a row", "again a word or so of it"}};
    for (const auto& [left, right] : cells) {
        QByteArray table;
        const QByteArray wide = left + " and more of it";
        for (int i = 0; i < 8; ++i)
            table += textAt(72, 700 - 15 * i, i == 0 ? wide : left) + textAt(380, 700 - 15 * i, right);
        const QString read = pageOf(table)->page(0)->string();
        EXPECT_TRUE(read.startsWith(QString::fromLatin1(wide + '\n' + right + '\n' + left + '\n')));
    }
}

TEST(PageText, ReadsATableOfContentsLineByLineHoweverItWasWritten) {
    QByteArray rows;
    QByteArray numbersLast;
    QByteArray numbers;
    QByteArray twoColumns;
    QStringList expected;
    QStringList expectedRight;
    for (int i = 1; i < 8; ++i) {
        const QByteArray number = "1." + QByteArray::number(i);
        const QByteArray title = "A section of the manual . . . . . . . . .";
        const QByteArray page = QByteArray::number(10 + i);
        const double y = 700 - 15 * i;
        rows += textAt(72, y, number) + textAt(110, y, title) + textAt(400, y, page);
        numbersLast += textAt(72, y, number) + textAt(110, y, title);
        numbers += textAt(400, y, page);
        twoColumns += textAt(72, y, number) + textAt(92, y, title) + textAt(310, y, page) + //
                      textAt(340, y, number) + textAt(360, y, "Another . . . . . . . .") + textAt(500, y, page);
        expected << QString::fromLatin1(number + ' ' + title + ' ' + page);
        expectedRight << QString::fromLatin1(number + " Another . . . . . . . . " + page);
    }
    const std::vector<std::pair<QByteArray, QStringList>> pages{
        {rows, expected}, {numbersLast + numbers, expected}, {twoColumns, expected + expectedRight}};
    for (const auto& [content, lines] : pages) {
        EXPECT_EQ(pageOf(content)->page(0)->string().replace(QLatin1Char('\n'), QLatin1Char(' ')),
                  lines.join(QLatin1Char(' ')));
    }
}

TEST(PageText, JoinsAccentsToLettersAndWordsOverLineEnds) {
    // A dieresis, a step back, and the i below it.
    const QByteArray accent = "BT /F1 12 Tf 72 700 Td [(na\\250) 305 (ive exam-)] TJ ET ";
    const auto document =
        pageOf(accent + textAt(72, 680, "ple, a well-known and a well-") + textAt(72, 660, "known a^b, 20-") +
               textAt(72, 640, "year, post- and pre-") + textAt(72, 620, "or not, Anglo-") +
               textAt(72, 600, "Saxon state-of-the-") + textAt(72, 580, "art"));
    const auto page = document->page(0);
    const QString expected =
        QStringLiteral("naïve example, a well-known and a well-known a^b, 20-\nyear, post- and pre-\n"
                       "or not, Anglo-\nSaxon state-of-the-art");
    EXPECT_EQ(page->string().toStdString(), expected.toStdString());
    EXPECT_EQ(page->selectAll()->string(), expected);

    // What is found is marked where it stands: offsets of the page's own text, one glyph for each of its characters.
    const auto text = page->text();
    ASSERT_EQ(text->glyphs.size(), std::size_t(text->string.size()));
    const QRectF naive = boxOf(*page, QStringLiteral("naïve"));
    EXPECT_NEAR(naive.left(), 72, 0.1);
    EXPECT_NEAR(naive.right(), boxOf(*page, QStringLiteral(" exam")).left(), 0.1);

    const FlowingText flowing(*text);
    for (int i = 0; i < flowing.string().size(); ++i) {
        EXPECT_EQ(flowing.string().at(i), text->string.at(flowing.pageOffset(i))) << i;
        EXPECT_EQ(flowing.offsetOf(flowing.pageOffset(i)), i);
    }
    const int example = int(expected.indexOf(QStringLiteral("example")));
    const int start = flowing.pageOffset(example);
    const int end = flowing.pageOffset(example + 6) + 1;
    EXPECT_EQ(text->lineRects(start, end).size(), 2U); // of both lines
    EXPECT_EQ(FlowingText(*text, start, end).string(), QStringLiteral("example"));
    EXPECT_EQ(FlowingText(*text, start + 2, start + 5).string(), QStringLiteral("am-")); // ends at the line's end
}

TEST(PageText, OfPagesWithoutTextIsEmpty) {
    PdfFixture pdf;
    pdf.addPageWithContent("0 0 100 100 re f");
    pdf.addPageWithContent("BT /F9 12 Tf (no such font");
    pdf.addPageWithContent("q q q q 1 0 0 1 (x) cm Do /Nothing Do ] >> endstream");
    const auto document = PDFDocument::fromData(pdf.bytes());
    for (int i = 0; i < 3; ++i) {
        EXPECT_FALSE(document->page(i)->selectAll()) << i;
        EXPECT_FALSE(document->page(i)->selection(QPointF(0, 0), QPointF(600, 700)));
    }
}
