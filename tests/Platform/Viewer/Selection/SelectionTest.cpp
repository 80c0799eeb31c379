#include "PDFDocument.h"
#include "PDFPage.h"
#include "PDFSelection.h"
#include "PageText.h"
#include "ShownView.h"

#include <QApplication>
#include <QClipboard>
#include <QScrollBar>
#include <QSignalSpy>
#include <QStyleHints>
#include <QTest>

#include <gtest/gtest.h>

namespace {

std::shared_ptr<PDFDocument> proseDocument(const QByteArray& rotation = "0") {
    PdfFixture fixture;
    for (int page = 0; page < 3; ++page) {
        fixture.addPage({QStringLiteral("The quick brown fox"), QStringLiteral("jumps over the lazy dog"),
                         QStringLiteral("and runs away")});
        fixture.setPageKey(page, "/Rotate", rotation);
    }
    return documentOf(fixture);
}

void pauseBetweenClicks() {
    QTest::qWait(QGuiApplication::styleHints()->mouseDoubleClickInterval() + 50);
}

} // namespace

TEST(Selection, draggingSelectsTheTextBetween) {
    ShownView view(proseDocument());
    QSignalSpy changes(&view, &PDFView::selectionChanged);
    view.drag(view.before(0, 4), view.before(0, 15));
    EXPECT_EQ(view.selected(), QStringLiteral("quick brown"));
    EXPECT_GT(changes.count(), 0);
    // From below to above, over two lines.
    view.drag(view.before(0, view.offsetOf(0, QStringLiteral("over"))),
              view.before(0, view.offsetOf(0, QStringLiteral("fox"))));
    EXPECT_EQ(view.selected(), QStringLiteral("fox\njumps "));
    QClipboard* clipboard = QGuiApplication::clipboard();
    view.copy();
    EXPECT_EQ(clipboard->text(), QStringLiteral("fox\njumps "));
    view.click({5, 5});
    EXPECT_FALSE(view.hasSelection());
    view.copy();
    EXPECT_EQ(clipboard->text(), QStringLiteral("fox\njumps ")) << "nothing is selected now";
}

TEST(Selection, goesOverPages) {
    ShownView view(proseDocument());
    view.setScaleFactor(0.3);
    const QPointF runs = view.before(0, view.offsetOf(0, QStringLiteral("runs")));
    const QPointF quick = view.before(2, view.offsetOf(2, QStringLiteral("quick")));
    const QString between = QStringLiteral("runs away\n%1\nThe ").arg(view.page(1)->string());
    for (const auto& [from, to] : {std::pair(runs, quick), std::pair(quick, runs)}) {
        view.drag(from, to);
        EXPECT_EQ(view.selected(), between);
        EXPECT_EQ(view.currentSelection()->pages().size(), 3U);
        EXPECT_EQ(view.currentSelection()->selectionsByLine().size(), 5U);
    }
}

TEST(Selection, doesNotWaitForAPageThatTakesSecondsToRead) {
    PdfFixture fixture;
    fixture.addPageWithContent("/X Do", "<< /XObject << /X " + fixture.addEndlessForm() + " >> >>");
    ShownView view(documentOf(fixture));
    view.press({20, 20});
    view.moveTo({600, 680});
    EXPECT_FALSE(view.hasSelection());
}

TEST(Selection, clicksSelectWordsAndLines) {
    ShownView view(proseDocument());
    const QPointF brown = view.on(0, view.offsetOf(0, QStringLiteral("brown")) + 2);
    view.doubleClick(brown);
    EXPECT_EQ(view.selected(), QStringLiteral("brown"));
    view.click(brown);
    EXPECT_EQ(view.selected(), QStringLiteral("The quick brown fox"));
    pauseBetweenClicks();
    view.click(brown);
    EXPECT_FALSE(view.hasSelection()) << "a third click that comes late is a first one";
    view.doubleClick(view.convertFromPage(QPointF(300, 100), *view.page(0)));
    EXPECT_FALSE(view.hasSelection()) << "there is no word on empty paper";
}

TEST(Selection, aDragAfterADoubleClickGoesByWordsBothWays) {
    ShownView view(proseDocument());
    const QPointF brown = view.on(0, view.offsetOf(0, QStringLiteral("brown")) + 2);
    view.pressTwice(brown);
    view.moveTo(view.on(0, view.offsetOf(0, QStringLiteral("jumps")) + 2));
    EXPECT_EQ(view.selected(), QStringLiteral("brown fox\njumps"));
    view.moveTo(view.on(0, view.offsetOf(0, QStringLiteral("quick")) + 1));
    EXPECT_EQ(view.selected(), QStringLiteral("quick brown"));
    view.release(brown);
}

TEST(Selection, shiftExtendsFromWhereItBegan) {
    ShownView view(proseDocument());
    const auto at = [&](const char* text) { return view.before(0, view.offsetOf(0, QLatin1String(text))); };
    view.click(at("brown"));
    view.click(at("over"), Qt::ShiftModifier);
    EXPECT_EQ(view.selected(), QStringLiteral("brown fox\njumps "));
    view.click(at("quick"), Qt::ShiftModifier);
    EXPECT_EQ(view.selected(), QStringLiteral("quick "));
}

TEST(Selection, followsThePageWhenItIsTurned) {
    for (const char* rotation : {"90", "180", "270"}) {
        ShownView view(proseDocument(rotation));
        view.setScaleFactor(0.5);
        view.drag(view.before(0, 4), view.before(0, 15));
        EXPECT_EQ(view.selected(), QStringLiteral("quick brown")) << rotation;
    }
}

TEST(Selection, theSelectedTextIsShown) {
    ShownView view(proseDocument());
    QPalette palette = view.palette();
    palette.setColor(QPalette::Highlight, Qt::red);
    view.setPalette(palette);
    view.waitUntilSharp();
    // Just above the glyphs of the line but within its box, where the paper is white.
    const auto colorAt = [&](std::size_t offset) {
        const QPointF above = view.page(0)->text()->glyphs.at(offset).quad.upperLeft - QPointF(0, 0.6);
        return view.picture().pixelColor(view.convertFromPage(above, *view.page(0)).toPoint());
    };
    EXPECT_EQ(colorAt(5), QColor(Qt::white));
    view.drag(view.before(0, 4), view.before(0, 15));
    view.waitUntil([&] { return colorAt(5) != QColor(Qt::white); }, "the selection's colour");
    EXPECT_GT(colorAt(5).red(), 250);
    EXPECT_LT(colorAt(5).green(), 220);
    EXPECT_EQ(colorAt(17), QColor(Qt::white));
}

TEST(Selection, draggingPastAnEdgeScrolls) {
    ShownView view(sampleDocument(12));
    view.press(view.before(0, 0));
    view.moveTo({300, view.viewport()->height() + 400.0});
    view.waitUntil([&] { return view.currentPageIndex() > 3; }, "page 5");
    view.release({300, view.viewport()->height() + 400.0});
    const int value = view.verticalScrollBar()->value();
    QTest::qWait(60);
    EXPECT_EQ(view.verticalScrollBar()->value(), value) << "scrolls on after the release";
    const QString text = view.selected();
    EXPECT_TRUE(text.startsWith(QStringLiteral("Page 1 of the sample"))) << text.left(60).toStdString();
    EXPECT_TRUE(text.contains(QStringLiteral("p3 line 10")));

    view.press({300, 100});
    view.moveTo({300, view.viewport()->height() + 400.0});
    view.waitUntil([&] { return view.verticalScrollBar()->value() > value; }, "scrolling");
    view.moveTo({300, 200}, false); // the release went to a menu
    const int reached = view.verticalScrollBar()->value();
    QTest::qWait(60);
    EXPECT_EQ(view.verticalScrollBar()->value(), reached) << "scrolls on without a button";
}

TEST(Selection, allOfALongDocumentIsSelectedAtOnceAndCopiedWhenItIsRead) {
    const auto document = sampleDocument(300);
    ShownView view(document);
    QSignalSpy changes(&view, &PDFView::selectionChanged);
    view.selectAll();
    EXPECT_TRUE(view.hasSelection());
    EXPECT_EQ(changes.count(), 1);
    QGuiApplication::clipboard()->clear();
    QSignalSpy progress(&view, &PDFView::textReadingProgressed);
    QSignalSpy ends(&view, &PDFView::textReadingEnded);
    view.copy();
    view.key(Qt::Key_Escape);
    EXPECT_FALSE(view.isReadingText());
    EXPECT_EQ(ends.count(), 1);
    QTest::qWait(0);
    EXPECT_TRUE(QGuiApplication::clipboard()->text().isEmpty() && progress.isEmpty()) << "it was given up";
    EXPECT_TRUE(view.hasSelection());

    QString used;
    const auto use = [&used](const QString& text) { used += text + u'|'; };
    view.readSelectedText(use);
    view.copy(); // in its place
    view.waitUntil([] { return !QGuiApplication::clipboard()->text().isEmpty(); }, "the text");
    const QString copied = QGuiApplication::clipboard()->text();
    EXPECT_EQ(progress.count(), 300);
    EXPECT_EQ(progress.last(), QVariantList({299, 300}));
    EXPECT_EQ(ends.count(), 3);
    EXPECT_EQ(copied, view.selected());
    view.readText(*document->page(0), use);
    EXPECT_FALSE(view.isReadingText()) << "a page is read at once";
    view.readSelectedText(use);
    view.waitUntil([&view] { return !view.isReadingText(); }, "the whole text");
    EXPECT_EQ(used, copied.left(copied.indexOf(QStringLiteral("\nPage 2"))) + u'|' + copied + u'|');
    EXPECT_TRUE(copied.startsWith(QStringLiteral("Page 1 of the sample\np1 line 1")));
    EXPECT_TRUE(copied.endsWith(QStringLiteral("p300 line 10")));
    EXPECT_EQ(copied.count(QLatin1Char('\n')), 300 * 11 - 1);
    view.key(Qt::Key_Escape);
    EXPECT_FALSE(view.hasSelection());
}

TEST(Selection, aPageThatAsksForTooMuchWorkDoesNotHoldUpTheWindow) {
    PdfFixture fixture;
    const QByteArray head = "<< /Type /XObject /Subtype /Form /BBox [0 0 9 9] /Resources << /XObject << /F ";
    QByteArray form = fixture.addStream(head + "null >> >> >>", "q Q");
    for (int level = 0; level < 4; ++level)
        form = fixture.addStream(head + form + " >> >> >>", QByteArray("/F Do ").repeated(100));
    fixture.addPageWithContent("/F Do", "<< /XObject << /F " + form + " >> >>");
    const auto document = documentOf(fixture);
    ShownView view(document);
    int used = 0;
    view.readText(*document->page(0), [&used](const QString&) { ++used; });
    EXPECT_TRUE(view.isReadingText());
    view.key(Qt::Key_Escape);
    EXPECT_FALSE(view.isReadingText());
    QTest::qWait(0);
    EXPECT_EQ(used, 0) << "it was given up";
}

TEST(Selection, ofTheProgramIsKeptUntilItsPagesLeave) {
    const auto document = proseDocument();
    ShownView view(document);
    const PDFSelection selection({{document->page(0), 0, 3}, {document->page(2), 4, 9}});
    view.setCurrentSelection(selection);
    EXPECT_EQ(view.selected(), QStringLiteral("The\nquick"));
    EXPECT_EQ(view.selectedRanges(*document->page(2)), (std::vector<std::pair<int, int>>{{4, 9}}));
    QSignalSpy changes(&view, &PDFView::selectionChanged);
    view.setCurrentSelection(selection);
    EXPECT_EQ(changes.count(), 0);
    document->removePage(0);
    QTest::qWait(0);
    EXPECT_EQ(view.selected(), QStringLiteral("quick"));
    document->removePage(1);
    QTest::qWait(0);
    EXPECT_FALSE(view.hasSelection());
}
