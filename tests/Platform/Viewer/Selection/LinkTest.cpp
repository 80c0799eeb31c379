#include "PDFDocument.h"
#include "PDFPage.h"
#include "ShownView.h"

#include <QScrollBar>
#include <QSignalSpy>
#include <QTest>
#include <QTextDocumentFragment>
#include <QUrl>

#include <gtest/gtest.h>

namespace {

const QRectF toPageSeven(72, 700, 100, 20);
const QRectF toTheWeb(300, 650, 100, 20);
const QRectF toNowhere(72, 500, 100, 20);

std::shared_ptr<PDFDocument> linkedDocument() {
    PdfFixture fixture;
    fixture.addPages(9, QStringLiteral("Some text at the top"));
    fixture.addUriLink(0, toTheWeb, "https://example.org/a%20b?c=d");
    fixture.addLink(0, toPageSeven, 6);
    fixture.addAnnotation(0, "<< /Subtype /Link /Rect " + PdfFixture::rectArray(toNowhere) +
                                 " /A << /S /Launch /F (program) >> >>");
    return documentOf(fixture);
}

QPointF middleOf(const ShownView& view, const QRectF& rect) {
    return view.convertFromPage(rect.center(), *view.page(0));
}

} // namespace

TEST(Links, aClickJumpsAndBackReturns) {
    ShownView view(linkedDocument());
    view.verticalScrollBar()->setValue(20);
    view.click(middleOf(view, toPageSeven));
    EXPECT_EQ(view.currentPageIndex(), 6);
    EXPECT_FALSE(view.hasSelection());
    view.goBack();
    EXPECT_EQ(view.currentPageIndex(), 0);
    EXPECT_EQ(view.verticalScrollBar()->value(), 20);
}

TEST(Links, webAddressesAreHandedOutAndOthersIgnored) {
    ShownView view(linkedDocument());
    QSignalSpy activated(&view, &PDFView::linkActivated);
    view.click(middleOf(view, toTheWeb));
    ASSERT_EQ(activated.count(), 1);
    EXPECT_EQ(activated.first().first().toUrl(), QUrl(QStringLiteral("https://example.org/a%20b?c=d")));
    EXPECT_FALSE(view.hasLink(middleOf(view, toNowhere)));
    view.click(middleOf(view, toNowhere));
    EXPECT_EQ(activated.count(), 1);
    EXPECT_EQ(view.verticalScrollBar()->value(), 0);
}

TEST(Links, aDragFromALinkSelectsInsteadOfFollowing) {
    ShownView view(linkedDocument());
    view.drag(middleOf(view, toPageSeven), middleOf(view, toPageSeven) + QPointF(60, 30));
    EXPECT_EQ(view.currentPageIndex(), 0);
    // A hand that shakes a little still clicks.
    view.press(middleOf(view, toPageSeven));
    view.moveTo(middleOf(view, toPageSeven) + QPointF(1, 1));
    view.release(middleOf(view, toPageSeven) + QPointF(1, 1));
    EXPECT_EQ(view.currentPageIndex(), 6);
}

TEST(Links, thePointerTellsWhatItIsOver) {
    ShownView view(linkedDocument());
    const auto shape = [&] { return view.viewport()->cursor().shape(); };
    view.moveTo(middleOf(view, toTheWeb), false);
    view.waitUntil([&] { return shape() == Qt::PointingHandCursor; }, "the hand over a link");
    view.moveTo({3, 300}, false);
    EXPECT_EQ(shape(), Qt::ArrowCursor);
    // The text is read in the background; the pointer need not move for it.
    view.moveTo(view.on(0, 2), false);
    view.waitUntil([&] { return shape() == Qt::IBeamCursor; }, "the I over text");

    EXPECT_EQ(view.toolTip(middleOf(view, toPageSeven)), QStringLiteral("Page 7"));
    EXPECT_TRUE(view.toolTip(middleOf(view, toTheWeb)).startsWith(QStringLiteral("https://example.org/")));
}

TEST(Links, theKeyboardReachesThem) {
    ShownView view(linkedDocument());
    QSignalSpy activated(&view, &PDFView::linkActivated);
    view.key(Qt::Key_Return);
    EXPECT_FALSE(view.canGoBack());
    view.key(Qt::Key_Tab); // the upper one first, whatever the order in the file
    const QImage ring = view.picture();
    view.key(Qt::Key_Tab);
    EXPECT_NE(view.picture(), ring);
    view.key(Qt::Key_Return);
    EXPECT_EQ(activated.count(), 1);
    view.key(Qt::Key_Backtab);
    view.key(Qt::Key_Return);
    EXPECT_EQ(view.currentPageIndex(), 6);

    view.goBack();
    view.key(Qt::Key_Escape);
    view.key(Qt::Key_Return);
    EXPECT_EQ(view.currentPageIndex(), 0);
}

TEST(Links, theWordsOfAFileAreNoMarkupInToolTips) {
    PdfFixture fixture;
    fixture.addPage({});
    fixture.addTextField(0, QStringLiteral("field"), QRectF(100, 600, 200, 40), {},
                         "/TU (<img src=/etc/x> & <b>it</b>)");
    ShownView view(documentOf(fixture));
    const QString tip = view.toolTip(view.convertFromPage(QPointF(200, 620), *view.page(0)));
    ASSERT_TRUE(Qt::mightBeRichText(tip));
    EXPECT_EQ(QTextDocumentFragment::fromHtml(tip).toPlainText(), QStringLiteral("<img src=/etc/x> & <b>it</b>"));
}
