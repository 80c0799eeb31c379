#include "AppTest.h"

#include <QApplication>
#include <QPushButton>
#include <QSignalSpy>

class WindowPolicyTest : public AppTest {};

TEST_F(WindowPolicyTest, withNothingToOpenThereIsOneLandingWindow) {
    launch();
    EXPECT_TRUE(landingIsVisible());
    EXPECT_EQ(visibleWindowCount(), 1);
    EXPECT_TRUE(m_app->controller().documents().empty());
    EXPECT_TRUE(m_app->delegate().welcomeWindowController()->window()->isMaximized());
}

TEST_F(WindowPolicyTest, aFileAtLaunchShowsNoLandingWindow) {
    launch({file(QStringLiteral("a.pdf"))});
    EXPECT_FALSE(landingIsVisible());
    ASSERT_NE(window(), nullptr);
    EXPECT_TRUE(window()->isVisible());
    EXPECT_TRUE(window()->isMaximized());
}

TEST_F(WindowPolicyTest, theLandingWindowGoesWhenADocumentOpensAndComesBackAfterTheLast) {
    launch();
    open(file(QStringLiteral("a.pdf")));
    EXPECT_FALSE(landingIsVisible());
    EXPECT_EQ(m_app->delegate().welcomeWindowController(), nullptr);
    open(file(QStringLiteral("b.pdf")));

    m_app->controller().closeDocument(document(0));
    settle();
    EXPECT_FALSE(landingIsVisible());
    m_app->controller().closeDocument(document(0));
    settle();
    EXPECT_TRUE(landingIsVisible());
    EXPECT_EQ(visibleWindowCount(), 1);
}

TEST_F(WindowPolicyTest, aLandingWindowThatRacedADocumentGoesAtTheSecondLook) {
    // Before the launch nobody watches windows become active, so only the second look is left.
    m_app->delegate().showLandingPageIfNoWindowsVisible();
    WindowServices services{m_app->controller(), m_app->defaults(), m_app->actions(), *m_dialogs};
    DocumentWindow silent(services);
    silent.addDocument(std::make_shared<PDFEditorDocument>());
    silent.show();
    settle();
    EXPECT_TRUE(landingIsVisible());
    EXPECT_TRUE(QTest::qWaitFor([this] { return !landingIsVisible(); }));
    EXPECT_EQ(m_app->delegate().welcomeWindowController(), nullptr);
}

TEST_F(WindowPolicyTest, afterTheUserClosedItOnlyANewStartBringsItBack) {
    launch();
    m_app->delegate().welcomeWindowController()->window()->close();
    settle();
    EXPECT_EQ(visibleWindowCount(), 0);
    EXPECT_NE(m_app->delegate().welcomeWindowController(), nullptr);

    m_app->reopenFromOtherStart({});
    settle();
    EXPECT_TRUE(landingIsVisible());
    EXPECT_EQ(visibleWindowCount(), 1);
    const QWidget* landing = m_app->delegate().welcomeWindowController()->window();
    m_app->reopenFromOtherStart({});
    settle();
    EXPECT_EQ(m_app->delegate().welcomeWindowController()->window(), landing);
    EXPECT_EQ(visibleWindowCount(), 1);
}

TEST_F(WindowPolicyTest, reopeningWithADocumentShowsNoLandingWindow) {
    launch({file(QStringLiteral("a.pdf"))});
    window()->showMinimized();
    settle();
    m_app->reopenFromOtherStart({});
    settle();
    EXPECT_FALSE(landingIsVisible());
    EXPECT_FALSE(window()->isMinimized());
}

TEST_F(WindowPolicyTest, aNewTabShowsTheLandingContentAndAFileFillsIt) {
    launch();
    m_app->actions().newTab->trigger();
    settle();
    EXPECT_FALSE(landingIsVisible());
    ASSERT_NE(window(), nullptr);
    EXPECT_EQ(tabNames(), QStringList{QStringLiteral("Untitled")});
    ContentView* view = window()->currentContentView();
    EXPECT_EQ(view->workspace(), nullptr);

    view->openInPlace(file(QStringLiteral("filled.pdf")));
    settle();
    EXPECT_EQ(window()->currentContentView(), view);
    EXPECT_NE(view->workspace(), nullptr);
    EXPECT_EQ(tabNames(), QStringList{QStringLiteral("filled.pdf")});
    EXPECT_TRUE(window()->windowTitle().startsWith(QStringLiteral("filled.pdf")));
}

TEST_F(WindowPolicyTest, quittingAsksAndShowsNoLandingWindow) {
    launch({file(QStringLiteral("a.pdf")), file(QStringLiteral("b.pdf"))});
    edit(*document(1));
    m_dialogs->saveAnswers = {ScriptedDialogs::SaveAnswer::Cancel};
    m_app->sessionEnd().terminate();
    settle();
    ASSERT_EQ(m_app->controller().documents().size(), 2U);
    EXPECT_TRUE(window()->isVisible());

    m_dialogs->saveAnswers = {ScriptedDialogs::SaveAnswer::DontSave};
    m_app->sessionEnd().terminate();
    settle();
    EXPECT_TRUE(m_app->controller().documents().empty());
    EXPECT_EQ(visibleWindowCount(), 0);
}

TEST_F(WindowPolicyTest, aCancelledQuitLeavesThePolicyOn) {
    launch({file(QStringLiteral("a.pdf"))});
    edit(*document(0));
    m_dialogs->saveAnswers = {ScriptedDialogs::SaveAnswer::Cancel, ScriptedDialogs::SaveAnswer::DontSave};
    m_app->sessionEnd().terminate();
    m_app->controller().closeDocument(document(0));
    settle();
    EXPECT_TRUE(landingIsVisible());
}
