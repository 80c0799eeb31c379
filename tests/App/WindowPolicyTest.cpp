#include "AppTest.h"

#include "SettingsView.h"

#include <QToolButton>

class WindowPolicyTest : public AppTest {
protected:
    void reopen() {
        m_app->reopenFromOtherStart({});
        settle();
    }

    void close(std::size_t index) {
        m_app->controller().closeDocument(document(index));
        settle();
    }
};

TEST_F(WindowPolicyTest, theLandingWindowIsThereWhileNoDocumentIs) {
    launch();
    EXPECT_TRUE(landingIsVisible());
    EXPECT_EQ(visibleWindowCount(), 1);
    const auto landing = [this] { return m_app->delegate().welcomeWindowController()->window(); };
    EXPECT_TRUE(landing()->isMaximized());
    // After the user closed it only a new start brings it back.
    landing()->close();
    settle();
    EXPECT_EQ(visibleWindowCount(), 0);
    EXPECT_NE(m_app->delegate().welcomeWindowController(), nullptr);
    reopen();
    EXPECT_TRUE(landingIsVisible());
    reopen();
    EXPECT_EQ(visibleWindowCount(), 1);

    open(file("a.pdf"));
    EXPECT_EQ(m_app->delegate().welcomeWindowController(), nullptr);
    EXPECT_TRUE(window()->isVisible() && window()->isMaximized());
    window()->showMinimized();
    settle();
    reopen();
    EXPECT_FALSE(landingIsVisible() || window()->isMinimized());
    open(file("b.pdf"));
    close(0);
    EXPECT_FALSE(landingIsVisible());
    close(0);
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
}

TEST_F(WindowPolicyTest, aFileFillsANewTabAndIsWatchedForOtherProgramsToo) {
    launch();
    m_app->actions().newTab->trigger();
    settle();
    EXPECT_EQ(tabNames(), "Untitled");
    ContentView* const before = window()->currentContentView();
    before->openInPlace(file("a.pdf"));
    settle();
    EXPECT_EQ(window()->currentContentView(), before);
    EXPECT_EQ(tabNames(), "a.pdf");
    EXPECT_TRUE(window()->windowTitle().startsWith(QStringLiteral("a.pdf")));

    file("a.pdf", {.pageCount = 7});
    edit(*document(0));
    run("save");
    EXPECT_EQ(m_dialogs->takeCalls(), "changed a.pdf");
    EXPECT_EQ(savedPageCount("a.pdf"), 7);
}

TEST_F(WindowPolicyTest, quittingAsksAndShowsNoLandingWindowUnlessItIsCancelled) {
    launch({file("a.pdf"), file("b.pdf")});
    EXPECT_FALSE(landingIsVisible());
    edit(*document(1));
    m_dialogs->saveAnswer = SaveAnswer::Cancel;
    m_app->sessionEnd().terminate();
    settle();
    ASSERT_EQ(m_app->controller().documents().size(), 2U);
    m_dialogs->saveAnswer = SaveAnswer::DontSave;
    close(1);
    close(0);
    EXPECT_TRUE(landingIsVisible()) << "the policy is on again";

    open(file("b.pdf"));
    edit(*document(0));
    m_dialogs->saveAnswer = SaveAnswer::DontSave;
    m_app->sessionEnd().terminate();
    settle();
    EXPECT_EQ(visibleWindowCount(), 0);
}

TEST_F(WindowPolicyTest, allWaysToTheSettingsLeadToOneWindowThatGoesWithEscapeOnly) {
    launch({file("a.pdf")});
    const auto settingsWindows = [] {
        QWidgetList windows = QApplication::topLevelWidgets();
        windows.removeIf([](const QWidget* window) { return !qobject_cast<const SettingsView*>(window); });
        return windows;
    };
    run("settings");
    workspace()->setShowsAssistant(true);
    for (const char* name : {"openSettingsButton", "assistantSettingsButton"})
        QTest::mouseClick(workspace()->findChild<QToolButton*>(QLatin1String(name)), Qt::LeftButton);
    run("close");
    ASSERT_EQ(settingsWindows().size(), 1);
    EXPECT_TRUE(settingsWindows().front()->isVisible());
    QTest::keyClick(settingsWindows().front(), Qt::Key_Escape);
    settle();
    EXPECT_TRUE(settingsWindows().isEmpty() && landingIsVisible());
}
