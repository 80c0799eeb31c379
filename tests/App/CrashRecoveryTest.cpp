#include "AppTest.h"

#include "AnnotatingPDFView.h"
#include "PDFEditorWorkspaceView.h"
#include "PDFViewCoordinator.h"
#include "PassingNotice.h"
#include "RecoveryRow.h"
#include "RecoverySetting.h"
#include "RecoveryStore.h"
#include "RecoveryWindow.h"

#include <QDir>
#include <QPushButton>
#include <QSignalSpy>

namespace {

constexpr int timeLimitInMilliseconds = 60'000;

class CrashRecoveryTest : public AppTest {
protected:
    /// Edits the only document, turns to its last page, and ends without closing it.
    void crash(const QUrl& url) {
        launch({url});
        PDFView& view = *window()->currentContentView()->workspace()->pdfView();
        const auto pages = document(0)->pdfDocument();
        view.goToPage(pages->page(pages->pageCount() - 1));
        settle();
        pages->page(0)->setRotation(90);
        document(0)->undoManager()->markEdited();
        m_app->controller().prepareForSessionEnd();
        startAnew();
    }

    void startAnew() {
        m_app.reset();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        SetUp();
    }

    RecoveryWindow* offer() { return m_app->crashRecovery().window(); }

    void click(const QString& button) {
        auto* found = offer()->findChild<QPushButton*>(button);
        ASSERT_NE(found, nullptr) << button.toStdString();
        QTest::mouseClick(found, Qt::LeftButton);
        settle();
    }
};

TEST_F(CrashRecoveryTest, aCleanEndLeavesNothingToOffer) {
    launch({file(QStringLiteral("a.pdf"))});
    edit(*document(0));
    m_dialogs->saveAnswers = {ScriptedDialogs::SaveAnswer::DontSave};
    m_app->sessionEnd().terminate();
    settle();
    startAnew();
    launch();
    EXPECT_EQ(offer(), nullptr);
    EXPECT_TRUE(landingIsVisible());
}

TEST_F(CrashRecoveryTest, theNextStartOffersTheDocumentAndGoesOnWhereTheReaderWas) {
    const QUrl url = file(QStringLiteral("plan.pdf"));
    crash(url);
    launch();
    ASSERT_NE(offer(), nullptr);
    EXPECT_FALSE(landingIsVisible());
    EXPECT_EQ(visibleWindowCount(), 1);
    click(QStringLiteral("recover"));
    ASSERT_TRUE(QTest::qWaitFor([this] { return offer() == nullptr; }, timeLimitInMilliseconds));
    settle();
    ASSERT_EQ(m_app->controller().documents().size(), 1U);
    EXPECT_EQ(document(0)->fileURL(), url);
    EXPECT_TRUE(document(0)->isDocumentEdited());
    EXPECT_EQ(document(0)->pdfDocument()->page(0)->rotation(), 90);
    EXPECT_TRUE(window()->isVisible());
    EXPECT_FALSE(landingIsVisible());
    EXPECT_EQ(window()->currentContentView()->workspace()->coordinator().currentPageIndex(), 2);
}

TEST_F(CrashRecoveryTest, whatIsLeftIsOfferedAgainAndWhatIsDeletedIsNot) {
    const QUrl url = file(QStringLiteral("plan.pdf"));
    crash(url);
    launch({file(QStringLiteral("other.pdf"))});
    ASSERT_NE(offer(), nullptr);
    EXPECT_TRUE(offer()->isVisible());
    click(QStringLiteral("notNow"));
    EXPECT_EQ(offer(), nullptr);
    EXPECT_TRUE(window()->isVisible());

    startAnew();
    launch();
    ASSERT_NE(offer(), nullptr);
    click(QStringLiteral("delete"));
    click(QStringLiteral("confirmDelete"));
    EXPECT_EQ(offer(), nullptr);
    EXPECT_TRUE(landingIsVisible());

    startAnew();
    launch();
    EXPECT_EQ(offer(), nullptr);
    EXPECT_FALSE(PDFDocument::fromFile(url.toLocalFile())->page(0)->rotation() == 90);
}

TEST_F(CrashRecoveryTest, turnedOffNothingIsKept) {
    launch({file(QStringLiteral("a.pdf"))});
    const auto recordCount = [this] {
        document(0)->undoManager()->markEdited();
        document(0)->pdfDocument()->page(0)->setRotation((document(0)->pdfDocument()->page(0)->rotation() + 90) % 360);
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
    const QString folder = RecoveryStore::standardFolder();
    ASSERT_TRUE(QDir().mkpath(QFileInfo(folder).path()));
    QFile inTheWay(folder);
    ASSERT_TRUE(inTheWay.open(QIODevice::WriteOnly));
    inTheWay.close();
    launch({file(QStringLiteral("a.pdf"))});
    QSignalSpy failed(&m_app->crashRecovery().recovery(), &DocumentRecovery::writingFailed);
    document(0)->undoManager()->markEdited();
    m_app->crashRecovery().recovery().writePending();
    EXPECT_TRUE(failed.wait(timeLimitInMilliseconds));
    EXPECT_TRUE(window()->currentContentView()->workspace()->notice().message().startsWith(
        QStringLiteral("Unsaved changes can't be kept safe")));
    EXPECT_TRUE(inTheWay.remove());
}

} // namespace
