#include "PDFViewCoordinator.h"

#include "AnnotatingPDFView.h"
#include "PDFAnnotation.h"
#include "PDFDocument.h"
#include "PDFPage.h"
#include "PDFSelection.h"
#include "PdfFixtures.h"
#include "RecentPageStore.h"
#include "ToolState.h"
#include "UserDefaults.h"

#include <QScrollBar>
#include <QTemporaryDir>
#include <QTest>

#include <gtest/gtest.h>

namespace {

/// Tells how many observers of page changes there are.
class ObservedView : public AnnotatingPDFView {
public:
    [[nodiscard]] int observerCount() const { return receivers(SIGNAL(pageChanged())); }
};

class PDFViewCoordinatorTest : public testing::Test {
protected:
    static std::shared_ptr<PDFDocument> documentOf(int pageCount) {
        PdfFixture fixture;
        for (int i = 1; i <= pageCount; ++i)
            fixture.addPage({QStringLiteral("Page %1").arg(i)});
        return PDFDocument::fromData(fixture.bytes());
    }

    void attach(ObservedView& view, int pageCount) {
        view.setDocument(documentOf(pageCount));
        view.resize(600, 700);
        view.show();
        QTest::qWait(0);
        m_coordinator.setPdfView(&view);
        m_coordinator.observePageChanges();
    }

    QTemporaryDir m_folder;
    UserDefaults m_defaults{m_folder.filePath(QStringLiteral("settings.ini"))};
    PDFViewCoordinator m_coordinator{m_defaults};
    const QUrl m_url = QUrl::fromLocalFile(QStringLiteral("/home/me/a.pdf"));
};

TEST_F(PDFViewCoordinatorTest, withoutAPageThereIsNoIndicator) {
    EXPECT_TRUE(m_coordinator.pageIndicator().isEmpty());
    m_coordinator.observePageChanges();
    EXPECT_EQ(m_coordinator.currentPageIndex(), std::nullopt);

    ObservedView view;
    attach(view, 1);
    EXPECT_EQ(m_coordinator.pageIndicator(), QStringLiteral("1 of 1"));
    EXPECT_EQ(m_coordinator.currentPageIndex(), 0);
    m_coordinator.setFileURL(m_url);
    view.setDocument(std::make_shared<PDFDocument>());
    m_coordinator.updatePageIndicator();
    EXPECT_TRUE(m_coordinator.pageIndicator().isEmpty());
    EXPECT_EQ(m_coordinator.currentPageIndex(), std::nullopt);
    EXPECT_EQ(RecentPageStore::pageIndex(m_defaults, m_url), std::nullopt);
}

TEST_F(PDFViewCoordinatorTest, followsThePagesAndRemembersThemForTheFile) {
    ObservedView view;
    attach(view, 12);
    view.goToPage(view.document()->page(4));
    EXPECT_EQ(m_coordinator.pageIndicator(), QStringLiteral("5 of 12"));
    EXPECT_FALSE(m_defaults.contains(QStringLiteral("RecentPageStore.pageIndexByPath"))); // no file, nothing remembered

    m_coordinator.setFileURL(m_url);
    QStringList told;
    QObject::connect(&m_coordinator, &PDFViewCoordinator::pageIndicatorChanged, &m_coordinator,
                     [&told](const QString& indicator) { told << indicator; });
    view.goToLastPage();
    EXPECT_EQ(m_coordinator.currentPageIndex(), 11);
    EXPECT_EQ(RecentPageStore::pageIndex(m_defaults, m_url), 11);
    view.verticalScrollBar()->setValue(0);
    EXPECT_EQ(RecentPageStore::pageIndex(m_defaults, m_url), 0);
    EXPECT_EQ(told.value(0), QStringLiteral("12 of 12"));
    EXPECT_EQ(told.last(), QStringLiteral("1 of 12"));

    // A page before the current one goes: the number changes though the page stays.
    view.goToPage(view.document()->page(4));
    view.document()->removePage(0);
    view.layoutDocumentView();
    m_coordinator.updatePageIndicator();
    EXPECT_EQ(m_coordinator.pageIndicator(), QStringLiteral("4 of 11"));
}

TEST_F(PDFViewCoordinatorTest, observingAgainLeavesOneObserver) {
    ObservedView first;
    attach(first, 3);
    const int count = first.observerCount();
    m_coordinator.observePageChanges();
    m_coordinator.observePageChanges();
    EXPECT_EQ(first.observerCount(), count);

    ObservedView second;
    attach(second, 5);
    EXPECT_EQ(first.observerCount(), count - 1);
    first.goToPage(first.document()->page(2));
    EXPECT_EQ(m_coordinator.pageIndicator(), QStringLiteral("1 of 5"));
    {
        PDFViewCoordinator other(m_defaults);
        other.setPdfView(&second);
        other.observePageChanges();
        EXPECT_EQ(second.observerCount(), count + 1);
    }
    EXPECT_EQ(second.observerCount(), count);
}

TEST_F(PDFViewCoordinatorTest, marksThroughTheViewerUntilItIsGone) {
    auto view = std::make_unique<ObservedView>();
    attach(*view, 2);
    view->setToolState(std::make_shared<ToolState>());
    const auto page = view->document()->page(0);
    const auto document = view->document();
    EXPECT_FALSE(m_coordinator.applyMarkup(MarkupAction::highlight)); // nothing is selected
    for (const MarkupActionInfo& row : allMarkupActions()) {
        view->setCurrentSelection(page->selectAll());
        EXPECT_TRUE(m_coordinator.applyMarkup(row.action));
        ASSERT_FALSE(page->annotations().empty());
        EXPECT_EQ(page->annotations().back()->type(), row.subtype);
    }
    const std::size_t count = page->annotations().size();
    view.reset();
    EXPECT_EQ(m_coordinator.pdfView(), nullptr);
    EXPECT_FALSE(m_coordinator.applyMarkup(MarkupAction::highlight));
    EXPECT_EQ(page->annotations().size(), count);
    m_coordinator.updatePageIndicator();
    EXPECT_TRUE(m_coordinator.pageIndicator().isEmpty());
}

} // namespace
