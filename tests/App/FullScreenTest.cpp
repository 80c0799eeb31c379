#include "AppTest.h"

#include "WorkspaceToolbar.h"

#include <QLineEdit>

class FullScreenTest : public AppTest {
protected:
    /// Which of menu bar, tabs and toolbar can be seen.
    std::vector<bool> shown() {
        return {window()->menuBar()->height() > 0, window()->findChild<DocumentTabBar*>()->isVisible(),
                workspace()->findChild<WorkspaceToolbar*>()->isVisible()};
    }

    bool waitForShown(const std::vector<bool>& parts) {
        return QTest::qWaitFor([&] { return shown() == parts; });
    }

    void movePointerTo(int y) {
        QWidget* under = window()->childAt(300, y);
        if (!under)
            under = window();
        QTest::mouseMove(under, under->mapFrom(window(), QPoint(300, y)));
    }
};

TEST_F(FullScreenTest, pagesHaveTheWholeScreenAndTheUpperEdgeBringsTheRestBack) {
    launch({file("a.pdf"), file("b.pdf")});
    const std::vector<bool> all(3, true);
    const std::vector<bool> none(3, false);
    command("fullScreen")->trigger();
    ASSERT_TRUE(waitForShown(none) && window()->isFullScreen());
    EXPECT_EQ(message(), QStringLiteral("Press Esc to leave the full screen"));

    movePointerTo(0);
    EXPECT_TRUE(waitForShown(all));
    movePointerTo(window()->height() - 50);
    EXPECT_TRUE(waitForShown(none));

    // What is being typed into stays, and a file that opens has no toolbar.
    movePointerTo(0);
    ASSERT_TRUE(waitForShown(all));
    workspace()->findChild<QLineEdit*>(QStringLiteral("pageField"))->setFocus();
    movePointerTo(window()->height() - 50);
    QTest::qWait(600);
    EXPECT_EQ(shown(), all);
    view()->setFocus();
    EXPECT_TRUE(waitForShown(none));
    open(file("c.pdf"));
    EXPECT_EQ(shown(), none);

    view()->selectAll();
    QTest::keyClick(view(), Qt::Key_Escape);
    EXPECT_FALSE(view()->hasSelection());
    EXPECT_TRUE(window()->isFullScreen()) << "it was for the selection";
    QTest::keyClick(view(), Qt::Key_Escape);
    EXPECT_TRUE(waitForShown(all));
    EXPECT_FALSE(window()->isFullScreen());
}

TEST_F(FullScreenTest, aWindowThatIsNoLongerMaximizedHasTheSizeOfTheLastTime) {
    launch({file("a.pdf")});
    const QString key = QStringLiteral("DocumentWindow.size");
    window()->showNormal();
    window()->resize(777, 555);
    ASSERT_TRUE(QTest::qWaitFor([&] { return m_app->defaults().stringForKey(key) == QStringLiteral("777x555"); }));
    const std::pair<const char*, QSize> rows[] = {
        {"777x555", {777, 555}}, {"0x-4", {1000, 720}}, {"wide", {1000, 720}}};
    for (const auto& [stored, size] : rows) {
        m_app->defaults().setString(key, QLatin1String(stored));
        m_app->controller().closeAllDocuments();
        settle();
        open(file("b.pdf"));
        EXPECT_TRUE(window()->isMaximized());
        window()->showNormal();
        settle();
        EXPECT_EQ(window()->normalGeometry().size(), size) << stored;
    }
}
