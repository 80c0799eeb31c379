#include "PDFDocument.h"
#include "PDFPage.h"
#include "ShownView.h"

#include <QScrollBar>
#include <QSignalSpy>
#include <QTest>

#include <gtest/gtest.h>

TEST(DocumentChange, thePageBeingReadStaysWhenPagesComeAndGo) {
    const auto document = sampleDocument(12);
    ShownView view(document);
    view.goToPage(view.page(6));
    view.verticalScrollBar()->setValue(view.verticalScrollBar()->value() + 120);
    const auto reading = view.currentPage();
    const QPointF line(100, 600);
    const QPointF before = view.convertFromPage(line, *reading);
    QSignalSpy changes(&view, &PDFView::pageChanged);

    const auto removed = document->removePage(2);
    EXPECT_EQ(view.currentPage(), reading);
    EXPECT_EQ(view.currentPageIndex(), 5);
    EXPECT_LT((view.convertFromPage(line, *reading) - before).manhattanLength(), 1);
    EXPECT_EQ(changes.count(), 1) << "its number changed";
    document->insert(removed, 0);
    document->insert(sampleDocument(1)->page(0)->copy(), 0);
    QTest::qWait(0);
    EXPECT_EQ(view.currentPageIndex(), 7);
    EXPECT_LT((view.convertFromPage(line, *reading) - before).manhattanLength(), 1);

    document->removePage(7);
    EXPECT_EQ(view.currentPageIndex(), 7) << "the next one takes its place";
    while (document->pageCount() > 0)
        document->removePage(0);
    EXPECT_FALSE(view.currentPageIndex());
    EXPECT_EQ(view.currentPage(), nullptr);
    document->insert(removed, 0);
    view.waitUntilSharp();
    EXPECT_EQ(view.currentPage(), removed);
}

TEST(DocumentChange, aTurnedPageIsLaidOutAnew) {
    const auto document = sampleDocument(5);
    ShownView view(document);
    view.setScaleFactor(0.5);
    view.goToPage(view.page(2));
    view.waitUntilSharp();
    const auto boxOf = [&](int index) {
        return view.convertFromPage(view.page(index)->bounds(PDFDisplayBox::cropBox), *view.page(index));
    };
    EXPECT_LT(boxOf(2).width(), boxOf(2).height());
    document->page(2)->setRotation(90);
    EXPECT_GT(boxOf(2).width(), boxOf(2).height());
    EXPECT_NEAR(boxOf(3).top() - boxOf(2).bottom(), 12, 1);
    EXPECT_EQ(view.currentPageIndex(), 2);
    EXPECT_FALSE(view.isSharp());
    view.waitUntilSharp();

    // It keeps its turn when the list of pages is read again.
    document->removePage(4);
    EXPECT_GT(boxOf(2).width(), boxOf(2).height());
}

TEST(DocumentChange, anotherDocumentBeginsAnew) {
    ShownView view(sampleDocument(9));
    view.goToPage(view.page(5));
    view.selectAll();
    EXPECT_TRUE(view.canGoBack());
    const auto other = sampleDocument(3);
    view.setDocument(other);
    EXPECT_EQ(view.currentPage(), other->page(0));
    EXPECT_EQ(view.verticalScrollBar()->value(), 0);
    EXPECT_FALSE(view.canGoBack());
    EXPECT_FALSE(view.hasSelection());
    view.waitUntilSharp();
    QSignalSpy moves(&view, &PDFView::visibleAreaChanged);
    view.setDocument(other);
    EXPECT_EQ(moves.count(), 0);
}

TEST(DocumentChange, documentsAndViewsEndWhileTheyAreDrawn) {
    const auto first = sampleDocument(40);
    auto view = std::make_unique<ShownView>(first);
    for (int round = 0; round < 12; ++round) {
        view->setDocument(sampleDocument(20 + round));
        QTest::qWait(round % 3);
        view->verticalScrollBar()->setValue(view->verticalScrollBar()->maximum() * (round % 4) / 4);
        view->selectAll();
        view->copy();
        QTest::qWait(round);
    }
    view.reset();
    for (int round = 0; round < 6; ++round) {
        ShownView brief(first);
        QTest::qWait(round);
        first->page(0)->setRotation(90 * round);
    }
}

TEST(DocumentChange, aDocumentMayOutliveOrLeaveItsView) {
    auto document = sampleDocument(5);
    const std::weak_ptr<PDFDocument> watched = document;
    {
        ShownView view(document);
        document.reset();
        EXPECT_FALSE(watched.expired()) << "the view holds it";
        view.waitUntilSharp();
        view.setDocument(nullptr);
        EXPECT_EQ(view.document(), nullptr);
        EXPECT_TRUE(watched.expired());
        view.waitUntilStill();
        EXPECT_FALSE(view.currentPageIndex());
        view.goToNextPage();
        view.goToLastPage();
        view.selectAll();
        view.copy();
        view.zoomAt({100, 100}, 1.2);
        view.click({100, 100});
        EXPECT_FALSE(view.hasSelection());
    }
}

TEST(DocumentChange, aDocumentThatIsUnlockedAppears) {
    PdfFixture fixture;
    fixture.addPage({QStringLiteral("secret")}, {400, 300});
    const auto document = PDFDocument::fromData(fixture.encrypted("user", "owner", PdfFixture::Encryption::aes256));
    ASSERT_TRUE(document->isLocked());
    ShownView view(document);
    EXPECT_FALSE(view.currentPageIndex());
    ASSERT_TRUE(document->unlock(QStringLiteral("user")));
    EXPECT_EQ(view.currentPageIndex(), 0);
    EXPECT_DOUBLE_EQ(view.scaleFactor(), view.scaleFactorForSizeToFit());
    EXPECT_NEAR(view.convertFromPage(QRectF(0, 0, 400, 300), *view.page(0)).width(), view.viewport()->width() - 24, 1);
    view.waitUntilSharp();
}
