#include "AppTest.h"

#include "AnnotatingPDFView.h"
#include "PDFEditorWorkspaceView.h"
#include "PassingNotice.h"
#include "WorkspaceToolbar.h"

#include <QLineEdit>

class FullScreenTest : public AppTest {
protected:
    PDFEditorWorkspaceView* workspace() { return window()->currentContentView()->workspace(); }

    /// Whether menu bar, tabs and toolbar can be seen.
    std::vector<bool> shown() {
        return {window()->menuBar()->height() > 0, window()->findChild<DocumentTabBar*>()->isVisible(),
                workspace()->findChild<WorkspaceToolbar*>()->isVisible()};
    }

    void movePointerTo(int y) {
        QWidget* under = window()->childAt(300, y);
        if (!under)
            under = window();
        QTest::mouseMove(under, under->mapFrom(window(), QPoint(300, y)));
    }
};

TEST_F(FullScreenTest, pagesHaveTheWholeScreenAndTheUpperEdgeBringsTheRestBack) {
    launch({file(QStringLiteral("a.pdf")), file(QStringLiteral("b.pdf"))});
    const std::vector<bool> all(3, true);
    const std::vector<bool> none(3, false);
    ASSERT_EQ(shown(), all);
    command(QStringLiteral("fullScreen"))->trigger();
    ASSERT_TRUE(QTest::qWaitFor([&] { return window()->isFullScreen() && shown() == none; }));
    EXPECT_EQ(workspace()->notice().message(), QStringLiteral("Press Esc to leave the full screen"));

    movePointerTo(0);
    EXPECT_TRUE(QTest::qWaitFor([&] { return shown() == all; }));
    movePointerTo(window()->height() - 50);
    EXPECT_TRUE(QTest::qWaitFor([&] { return shown() == none; }));

    // What is being typed into stays, and a file that opens has no toolbar.
    movePointerTo(0);
    ASSERT_TRUE(QTest::qWaitFor([&] { return shown() == all; }));
    workspace()->findChild<QLineEdit*>(QStringLiteral("pageField"))->setFocus();
    movePointerTo(window()->height() - 50);
    QTest::qWait(600);
    EXPECT_EQ(shown(), all);
    workspace()->pdfView()->setFocus();
    EXPECT_TRUE(QTest::qWaitFor([&] { return shown() == none; }));
    open(file(QStringLiteral("c.pdf")));
    EXPECT_EQ(shown(), none);

    // Keys of commands still work, and the tab that comes to the front has no toolbar either.
    const ContentView* const before = window()->currentContentView();
    QTest::keyClick(workspace()->pdfView(), Qt::Key_Tab, Qt::ControlModifier);
    EXPECT_NE(window()->currentContentView(), before);
    EXPECT_EQ(shown(), none);
    QTest::keyClick(workspace()->pdfView(), Qt::Key_Escape);
    EXPECT_TRUE(QTest::qWaitFor([&] { return !window()->isFullScreen() && shown() == all; }));
}

TEST_F(FullScreenTest, escapeThatDropsASelectionStaysInTheFullScreen) {
    launch({file(QStringLiteral("a.pdf"))});
    command(QStringLiteral("fullScreen"))->trigger();
    ASSERT_TRUE(QTest::qWaitFor([&] { return window()->isFullScreen(); }));
    workspace()->pdfView()->selectAll();
    QTest::keyClick(workspace()->pdfView(), Qt::Key_Escape);
    EXPECT_FALSE(workspace()->pdfView()->hasSelection());
    EXPECT_TRUE(window()->isFullScreen());
    QTest::keyClick(workspace()->pdfView(), Qt::Key_Escape);
    EXPECT_FALSE(window()->isFullScreen());
}

TEST_F(FullScreenTest, aWindowThatIsNoLongerMaximizedHasTheSizeOfTheLastTime) {
    launch({file(QStringLiteral("a.pdf"))});
    window()->showNormal();
    window()->resize(777, 555);
    ASSERT_TRUE(QTest::qWaitFor([this] {
        return m_app->defaults().stringForKey(QStringLiteral("DocumentWindow.size")) == QStringLiteral("777x555");
    }));
    for (const QString& stored : {QStringLiteral("777x555"), QStringLiteral("0x-4"), QStringLiteral("wide")}) {
        m_app->defaults().setString(QStringLiteral("DocumentWindow.size"), stored);
        m_app->controller().closeAllDocuments();
        settle();
        open(file(QStringLiteral("b.pdf")));
        EXPECT_TRUE(window()->isMaximized());
        window()->showNormal();
        settle();
        EXPECT_EQ(window()->normalGeometry().size(),
                  stored == QStringLiteral("777x555") ? QSize(777, 555) : QSize(1000, 720))
            << stored.toStdString();
    }
}
