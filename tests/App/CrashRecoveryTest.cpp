#include "AppTest.h"

#include "PDFViewCoordinator.h"
#include "RecoverySetting.h"
#include "RecoveryWindow.h"

#include <QPushButton>
#include <QSignalSpy>

namespace {

constexpr int timeLimitInMilliseconds = 60'000;

class CrashRecoveryTest : public AppTest {
protected:
    /// Edits the only document, turns to its last page, and ends without closing it.
    void crash(const QUrl& url) {
        launch({url});
        const auto pages = document(0)->pdfDocument();
        view()->goToPage(pages->page(pages->pageCount() - 1));
        settle();
        pages->page(0)->setRotation(90);
        document(0)->undoManager()->markEdited();
        m_app->controller().prepareForSessionEnd();
        startAnew();
    }

    void startAnew(const QList<QUrl>& files = {}) {
        end();
        SetUp();
        launch(files);
    }

    RecoveryWindow* offer() { return m_app->crashRecovery().window(); }

    void click(const char* button) {
        auto* found = offer()->findChild<QPushButton*>(QLatin1String(button));
        ASSERT_NE(found, nullptr) << button;
        QTest::mouseClick(found, Qt::LeftButton);
        settle();
    }
};

TEST_F(CrashRecoveryTest, theNextStartOffersTheDocumentAndGoesOnWhereTheReaderWas) {
    const QUrl url = file("plan.pdf");
    crash(url);
    ASSERT_NE(offer(), nullptr);
    EXPECT_EQ(visibleWindowCount(), 1);
    click("recover");
    ASSERT_TRUE(QTest::qWaitFor([this] { return offer() == nullptr; }, timeLimitInMilliseconds));
    settle();
    ASSERT_EQ(m_app->controller().documents().size(), 1U);
    EXPECT_EQ(document(0)->fileURL(), url);
    EXPECT_TRUE(document(0)->isDocumentEdited());
    EXPECT_EQ(document(0)->pdfDocument()->page(0)->rotation(), 90);
    EXPECT_FALSE(landingIsVisible());
    EXPECT_EQ(workspace()->coordinator().currentPageIndex(), 2);

    m_dialogs->saveAnswer = SaveAnswer::DontSave;
    m_app->sessionEnd().terminate();
    settle();
    startAnew();
    EXPECT_EQ(offer(), nullptr) << "a clean end leaves nothing";
    EXPECT_TRUE(landingIsVisible());
}

TEST_F(CrashRecoveryTest, whatIsLeftIsOfferedAgainAndWhatIsDeletedIsNot) {
    const QUrl url = file("plan.pdf");
    crash(url);
    startAnew({file("other.pdf")});
    ASSERT_TRUE(offer() && offer()->isVisible());
    click("notNow");
    EXPECT_EQ(offer(), nullptr);

    startAnew();
    ASSERT_NE(offer(), nullptr);
    click("delete");
    click("confirmDelete");
    EXPECT_EQ(offer(), nullptr);
    EXPECT_TRUE(landingIsVisible());

    startAnew();
    EXPECT_EQ(offer(), nullptr);
    EXPECT_EQ(PDFDocument::fromFile(url.toLocalFile())->page(0)->rotation(), 0);
}

TEST_F(CrashRecoveryTest, turnedOffNothingIsKept) {
    launch({file("a.pdf", {.pageCount = 5})});
    const auto recordCount = [this] {
        edit(*document(0));
        m_app->controller().prepareForSessionEnd();
        return QDir(RecoveryStore::standardFolder()).entryList(QDir::Dirs | QDir::NoDotAndDotDot).size();
    };
    EXPECT_EQ(recordCount(), 1);
    RecoverySetting::setOn(m_app->defaults(), false);
    m_app->crashRecovery().recovery().waitForDone();
    EXPECT_EQ(recordCount(), 0);
    RecoverySetting::setOn(m_app->defaults(), true);
    EXPECT_EQ(recordCount(), 1) << "for documents that are open, too";
}

TEST_F(CrashRecoveryTest, thatChangesCannotBeKeptSafeIsToldOverThePage) {
    // A file where the folder should be.
    QFile inTheWay(RecoveryStore::standardFolder());
    ASSERT_TRUE(QDir().mkpath(QFileInfo(inTheWay).path()) && inTheWay.open(QIODevice::WriteOnly));
    launch({file("a.pdf")});
    QSignalSpy failed(&m_app->crashRecovery().recovery(), &DocumentRecovery::writingFailed);
    document(0)->undoManager()->markEdited();
    m_app->crashRecovery().recovery().writePending();
    EXPECT_TRUE(failed.wait(timeLimitInMilliseconds));
    EXPECT_TRUE(message().startsWith(QStringLiteral("Unsaved changes can't be kept safe")));
    EXPECT_TRUE(inTheWay.remove());
}

} // namespace
