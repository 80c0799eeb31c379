#include "PDFKitRepresentedView.h"

#include "AnnotatingPDFView.h"
#include "PDFDocument.h"
#include "PDFPage.h"
#include "PDFViewCoordinator.h"
#include "Palette.h"
#include "PdfFixtures.h"
#include "RecentPageStore.h"
#include "ToolState.h"
#include "UndoManager.h"
#include "UserDefaults.h"

#include <QPalette>
#include <QTemporaryDir>
#include <QTest>

#include <gtest/gtest.h>

namespace {

class PDFKitRepresentedViewTest : public testing::Test {
protected:
    PDFKitRepresentedViewTest() {
        m_represented.toolState = std::make_shared<ToolState>();
        m_represented.undoManager = std::make_shared<UndoManager>();
        m_represented.pdfDocument = documentOf(6);
        m_represented.coordinator = &m_coordinator;
        m_represented.fileURL = m_url;
        m_window.resize(600, 700);
    }

    static std::shared_ptr<PDFDocument> documentOf(int pageCount) {
        PdfFixture fixture;
        for (int i = 1; i <= pageCount; ++i)
            fixture.addPage({QStringLiteral("Page %1").arg(i)});
        return PDFDocument::fromData(fixture.bytes());
    }

    AnnotatingPDFView* makeView() {
        AnnotatingPDFView* const view = m_represented.makeView(&m_window);
        view->resize(m_window.size());
        m_window.show();
        return view;
    }

    QTemporaryDir m_folder;
    UserDefaults m_defaults{m_folder.filePath(QStringLiteral("settings.ini"))};
    PDFViewCoordinator m_coordinator{m_defaults};
    const QUrl m_url = QUrl::fromLocalFile(QStringLiteral("/home/me/a.pdf"));
    PDFKitRepresentedView m_represented;
    QWidget m_window;
};

TEST_F(PDFKitRepresentedViewTest, opensTheFileAtTheRememberedPageIfItStillExists) {
    const struct {
        std::optional<int> remembered;
        int shown;
    } cases[] = {{std::nullopt, 0}, {0, 0}, {1, 1}, {5, 5}, {6, 0}, {1000, 0}, {-2, 0}};
    for (const auto& [remembered, shown] : cases) {
        if (remembered)
            RecentPageStore::setPageIndex(m_defaults, *remembered, m_url);
        const std::unique_ptr<AnnotatingPDFView> view(makeView());
        // Attaching has already written the first page over the remembered one.
        EXPECT_EQ(RecentPageStore::pageIndex(m_defaults, m_url), 0);
        EXPECT_EQ(m_coordinator.currentPageIndex(), 0);
        QCoreApplication::processEvents();
        const int label = remembered.value_or(-1);
        EXPECT_EQ(m_coordinator.currentPageIndex(), shown) << label;
        EXPECT_EQ(view->currentPageIndex(), shown) << label;
        EXPECT_EQ(RecentPageStore::pageIndex(m_defaults, m_url), shown) << label;
    }
}

TEST_F(PDFKitRepresentedViewTest, opensTheFileAtTheScaleThatTheReaderChose) {
    const auto closedAt = [this](double scale) {
        const std::unique_ptr<AnnotatingPDFView> view(makeView());
        QCoreApplication::processEvents();
        const double opened = view->autoScales() ? 0 : view->scaleFactor();
        if (scale > 0)
            view->setScaleFactor(scale);
        else
            view->setAutoScales(true);
        m_window.resize(m_window.width() + 10, m_window.height()); // changes a scale that follows the width
        EXPECT_TRUE(QTest::qWaitFor(
            [this, scale] { return m_coordinator.rememberedScale(m_url).value_or(0) == std::max(scale, 0.0); }));
        return opened;
    };
    EXPECT_EQ(closedAt(1.75), 0) << "fits the width when it was never read";
    EXPECT_EQ(closedAt(0.5), 1.75);
    EXPECT_EQ(closedAt(0), 0.5);
    EXPECT_EQ(closedAt(0), 0) << "fits the width again";
    m_defaults.setDictionary(QStringLiteral("RecentScaleStore.scaleByPath"), {{m_url.path(), QStringLiteral("wide")}});
    EXPECT_EQ(closedAt(2), 0);
}

TEST_F(PDFKitRepresentedViewTest, aDocumentWithoutAFileTouchesNoRememberedPage) {
    RecentPageStore::setPageIndex(m_defaults, 3, QUrl());
    m_represented.fileURL = QUrl();
    AnnotatingPDFView* const view = makeView();
    QCoreApplication::processEvents();
    EXPECT_EQ(view->currentPageIndex(), 0);
    view->goToLastPage();
    EXPECT_EQ(RecentPageStore::pageIndex(m_defaults, QUrl()), 3);
}

TEST_F(PDFKitRepresentedViewTest, makesAReaderThatIsWiredBeforeTheCoordinatorTellsOfIt) {
    QStringList received;
    m_represented.onAskAI = [&](const QString& prompt, bool send) { received << prompt + QString::number(send); };
    m_represented.onTextExtracted = [&](const QString& text) { received << text; };
    m_represented.onRedactionDrawn = [&] { received << QStringLiteral("drawn"); };
    int told = 0;
    QObject::connect(&m_coordinator, &PDFViewCoordinator::objectWillChange, &m_coordinator, [&] {
        ++told;
        const AnnotatingPDFView* const attached = m_coordinator.pdfView();
        ASSERT_NE(attached, nullptr);
        EXPECT_EQ(attached->toolState(), m_represented.toolState);
        EXPECT_EQ(attached->docUndoManager(), m_represented.undoManager);
        EXPECT_EQ(m_coordinator.fileURL(), m_url);
        EXPECT_EQ(m_coordinator.pageIndicator(), QStringLiteral("1 of 6"));
    });
    AnnotatingPDFView* const view = makeView();
    EXPECT_EQ(told, 1);
    EXPECT_TRUE(view->autoScales());
    EXPECT_TRUE(view->displaysPageBreaks());
    EXPECT_EQ(view->displayMode(), PDFDisplayMode::singlePageContinuous);
    EXPECT_EQ(view->backgroundColor(), Palette::appTint(view->palette()));
    view->onAskAI(QStringLiteral("Why?"), true);
    view->onTextExtracted(QStringLiteral("text"));
    view->onRedactionDrawn();
    EXPECT_EQ(received.join(u','), QStringLiteral("Why?1,text,drawn"));
}

TEST_F(PDFKitRepresentedViewTest, theBackgroundFollowsADarkDesktop) {
    AnnotatingPDFView* const view = makeView();
    view->setPalette(QPalette(Qt::white, Qt::black, Qt::gray, Qt::black, Qt::darkGray, Qt::white, Qt::black));
    QCoreApplication::processEvents();
    EXPECT_LT(view->backgroundColor().lightness(), 60);
}

TEST_F(PDFKitRepresentedViewTest, anUpdateKeepsThePlaceUnlessAnotherDocumentComes) {
    AnnotatingPDFView* const view = makeView();
    QCoreApplication::processEvents();
    view->goToPage(m_represented.pdfDocument->page(3));

    m_represented.toolState = std::make_shared<ToolState>();
    m_represented.undoManager = std::make_shared<UndoManager>();
    m_represented.onAskAI = {};
    m_represented.updateView(*view);
    EXPECT_EQ(view->currentPageIndex(), 3);
    EXPECT_EQ(view->toolState(), m_represented.toolState);
    EXPECT_EQ(view->docUndoManager(), m_represented.undoManager);
    EXPECT_FALSE(view->onAskAI);

    m_represented.pdfDocument = documentOf(2);
    m_represented.updateView(*view);
    EXPECT_EQ(view->document(), m_represented.pdfDocument);
    EXPECT_EQ(m_coordinator.pageIndicator(), QStringLiteral("1 of 2"));
}

} // namespace
