#include "PDFKitRepresentedView.h"

#include "PDFViewCoordinator.h"
#include "Palette.h"
#include "RecentPageStore.h"
#include "UserDefaults.h"
#include "ViewerTest.h"

#include <QPalette>
#include <QSignalSpy>
#include <QTemporaryDir>

namespace {

class PDFKitRepresentedViewTest : public testing::Test {
protected:
    PDFKitRepresentedViewTest() {
        PdfFixture fixture;
        for (int i = 0; i < 6; ++i)
            fixture.addPage({});
        m_represented.toolState = std::make_shared<ToolState>();
        m_represented.pdfDocument = PDFDocument::fromData(fixture.bytes());
        m_represented.coordinator = &m_coordinator;
        m_represented.fileURL = m_url;
        m_window.resize(600, 700);
        m_window.show();
    }

    std::unique_ptr<AnnotatingPDFView> makeView() {
        std::unique_ptr<AnnotatingPDFView> view(m_represented.makeView(&m_window));
        view->resize(m_window.size());
        view->show();
        EXPECT_EQ(remembered(), 0) << "the first page, over the remembered one";
        QCoreApplication::processEvents();
        return view;
    }
    [[nodiscard]] std::optional<int> remembered() const { return RecentPageStore::pageIndex(m_defaults, m_url); }

    QTemporaryDir m_folder;
    UserDefaults m_defaults{m_folder.filePath(QStringLiteral("settings.ini"))};
    PDFViewCoordinator m_coordinator{m_defaults};
    const QUrl m_url = QUrl::fromLocalFile(QStringLiteral("/home/me/a.pdf"));
    PDFKitRepresentedView m_represented;
    QWidget m_window;
};

TEST_F(PDFKitRepresentedViewTest, opensTheFileAtTheRememberedPageIfItStillExistsAndAtTheScaleThatTheReaderChose) {
    for (const auto& [kept, shown] : {std::pair(-1, 0), {1, 1}, {5, 5}, {6, 0}}) {
        RecentPageStore::setPageIndex(m_defaults, kept, m_url);
        EXPECT_EQ(makeView()->currentPageIndex(), shown) << kept;
        EXPECT_EQ(remembered(), shown) << kept;
    }
    // Zero fits the width, which it does when the file was never read.
    for (const auto& [opened, left] : {std::pair(0.0, 1.75), {1.75, 0.0}, {0.0, 0.0}}) {
        PDFViewCoordinator closedAtOnce(m_defaults);
        m_represented.coordinator = &closedAtOnce;
        const auto view = makeView();
        EXPECT_EQ(view->autoScales() ? 0 : view->scaleFactor(), opened);
        left > 0 ? view->setScaleFactor(left) : view->setAutoScales(true);
        m_window.resize(m_window.width() + 10, m_window.height()); // changes a scale that follows the width
    }
}

TEST_F(PDFKitRepresentedViewTest, theCoordinatorTellsOfAReaderAndOfItsPagesAndRemembersThemForTheFile) {
    m_coordinator.observePageChanges(); // without a view there is nothing to observe
    QObject::connect(&m_coordinator, &PDFViewCoordinator::objectWillChange, &m_coordinator, [this] {
        EXPECT_EQ(m_coordinator.pdfView()->toolState(), m_represented.toolState);
        EXPECT_EQ(m_coordinator.fileURL(), m_url);
        EXPECT_EQ(m_coordinator.pageIndicator(), QStringLiteral("1 of 6"));
    });
    auto view = makeView();
    const QSignalSpy told(&m_coordinator, &PDFViewCoordinator::pageIndicatorChanged);
    view->goToLastPage();
    EXPECT_EQ(remembered(), 5);
    // A page before the current one goes: the number changes though the page stays.
    view->document()->removePage(0);
    view->layoutDocumentView();
    m_coordinator.updatePageIndicator();
    EXPECT_EQ(told, QList<QVariantList>({{QStringLiteral("6 of 6")}, {QStringLiteral("5 of 5")}}));

    m_coordinator.setFileURL(QUrl()); // a document without a file
    view->goToPage(view->document()->page(1));
    EXPECT_EQ(remembered(), 4);
    EXPECT_EQ(RecentPageStore::pageIndex(m_defaults, QUrl()), std::nullopt);
    EXPECT_EQ(view->backgroundColor(), Palette::appTint(view->palette()));
    view->setPalette(QPalette(Qt::white, Qt::black, Qt::gray, Qt::black, Qt::darkGray, Qt::white, Qt::black));
    QCoreApplication::processEvents();
    EXPECT_LT(view->backgroundColor().lightness(), 60) << "as the desktop's";
    view.reset();
    EXPECT_FALSE(m_coordinator.applyMarkup(MarkupAction::highlight));
    m_coordinator.updatePageIndicator();
    EXPECT_EQ(m_coordinator.currentPageIndex(), std::nullopt);
}

} // namespace
