#include "AssistantDock.h"

#include "AssistantPanel.h"
#include "AssistantResizeHandle.h"
#include "AssistantViewModel.h"
#include "LoopbackServer.h"
#include "PassingNotice.h"
#include "WorkspaceTest.h"

#include <QSignalSpy>
#include <QTextBrowser>

class AssistantDockTest : public WorkspaceTest {
protected:
    void openAssistant() {
        QTest::keyClick(m_view, Qt::Key_K, Qt::ControlModifier);
        ASSERT_TRUE(m_workspace->showsAssistant());
        m_dock = find<AssistantDock>(*m_workspace, QStringLiteral("assistantDock"));
        m_handle = find<AssistantResizeHandle>(*m_workspace, QStringLiteral("assistantResizeHandle"));
        waitForWidth(420);
    }
    void waitForWidth(int width) const {
        EXPECT_TRUE(QTest::qWaitFor([&] { return m_dock->width() - m_handle->width() == width; }))
            << m_dock->width() - m_handle->width();
    }

    AssistantDock* m_dock = nullptr;
    AssistantResizeHandle* m_handle = nullptr;
};

TEST_F(AssistantDockTest, theAskCommandShowsAndHidesThePanel) {
    openWorkspace({});
    openAssistant();
    EXPECT_TRUE(button(QStringLiteral("askAssistant"))->isChecked());
    EXPECT_EQ(m_workspace->focusWidget()->objectName(), QStringLiteral("message"));
    QTest::keyClicks(m_workspace->focusWidget(), QStringLiteral("Draft"));
    press(QStringLiteral("closeAssistant"));
    EXPECT_FALSE(button(QStringLiteral("askAssistant"))->isChecked());
    EXPECT_TRUE(QTest::qWaitFor([this] { return m_dock->isHidden(); }));
    EXPECT_TRUE(m_view->hasFocus());
    press(QStringLiteral("askAssistant"));
    EXPECT_TRUE(m_dock->panel()->isVisible());
    EXPECT_EQ(m_workspace->assistant()->draft(), QStringLiteral("Draft"));
    QSignalSpy requests(m_workspace.get(), &PDFEditorWorkspaceView::settingsRequested);
    press(QStringLiteral("assistantSettings"));
    press(QStringLiteral("openSettings"));
    EXPECT_EQ(requests.count(), 2);
}

TEST_F(AssistantDockTest, aPageThatAReplyNamesIsShown) {
    openWorkspace({.pageCount = 4});
    openAssistant();
    m_workspace->assistant()->appendAssistantTurn(QStringLiteral("page 3 and page 4"));
    auto* reply = find<QTextBrowser>(*m_dock, QStringLiteral("replyText"));
    reply->setFocus();
    for (int i = 0; i < 2; ++i) {
        QTest::keyClick(reply, Qt::Key_Tab);
        QTest::keyClick(reply, Qt::Key_Return);
        EXPECT_EQ(m_view->currentPageIndex(), 2);
        m_document->pdfDocument()->removePage(3);
    }
    EXPECT_EQ(m_dock->panel()->notice().message(),
              QStringLiteral("There is no page 4 any more: the document has 3 pages."));
}

TEST_F(AssistantDockTest, aDragStopsAtTheLimitsAndANarrowWindowKeepsSomeOfThePage) {
    openWorkspace({});
    m_workspace->resize(1200, 700);
    openAssistant();
    const QPoint start = m_handle->mapToGlobal(QPoint(3, 50));
    const auto at = [&](int dx) { return m_handle->mapFromGlobal(start + QPoint(dx, 0)); };
    QTest::mousePress(m_handle, Qt::LeftButton, {}, at(0));
    // Where the pointer goes from where the drag began, and the width then.
    for (const auto& [dx, width] : {std::pair(-100, 520), {-500, 640}, {-219, 639}, {400, 260}, {159, 261}}) {
        QTest::mouseMove(m_handle, at(dx));
        waitForWidth(width);
    }
    QTest::mouseRelease(m_handle, Qt::LeftButton, {}, at(159));
    QTest::mouseMove(m_handle, at(0));
    EXPECT_EQ(m_handle->panelWidth(), 261) << "The drag is over.";
    for (const auto& [key, width] : {std::pair(Qt::Key_Right, 260), {Qt::Key_Left, 276}}) {
        QTest::keyClick(m_handle, key);
        EXPECT_EQ(m_handle->panelWidth(), width);
    }
    m_handle->setPanelWidth(420);
    m_workspace->resize(480, 600);
    waitForWidth(260);
    EXPECT_TRUE(QTest::qWaitFor([this] { return m_view->width() >= 200; }));
    EXPECT_LE(m_dock->panel()->minimumSizeHint().width(), 260) << "of which nothing is cut off";
    m_workspace->resize(1200, 600);
    waitForWidth(420);
}

TEST_F(AssistantDockTest, thePagesMenuAsksTheService) {
    LoopbackServer server;
    m_defaults.setString(QStringLiteral("quillo.customAPIURL"),
                         server.url(QStringLiteral("/v1/chat/completions")).toString());
    m_defaults.setStringList(QStringLiteral("quillo.ollamaAPIKeyPool"), {QStringLiteral("key")});
    const QByteArray answer = R"({"choices":[{"message":{"role":"assistant","content":"It greets."}}]})";
    server.enqueue(LoopbackServer::json(200, answer));
    server.enqueue(LoopbackServer::json(200, answer)); // the title
    openWorkspace({});
    m_view->onAskAI(QStringLiteral("Translate this to <language>: “Page 1”"), false);
    EXPECT_EQ(m_workspace->assistant()->draft(), QStringLiteral("Translate this to <language>: “Page 1”"));
    const auto& turns = m_workspace->assistant()->turns();
    m_view->onAskAI(QStringLiteral("Explain this: “Page 1”"), true);
    EXPECT_EQ(turns.at(0).text, QStringLiteral("Explain this: “Page 1”"));
    ASSERT_TRUE(QTest::qWaitFor([&] { return turns.size() == 2 && server.requests().size() == 2; }));
    EXPECT_EQ(server.requests().front().header("Authorization"), "Bearer key");
    m_view->onTextExtracted(QStringLiteral("Some text"));
    EXPECT_EQ(turns.at(2).text, QStringLiteral("Extracted text:\n\nSome text"));
}
