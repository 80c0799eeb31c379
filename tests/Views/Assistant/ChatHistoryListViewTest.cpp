#include "ChatHistoryListView.h"
#include "AssistantPanelTest.h"
#include "ChatHistoryRow.h"

#include <QLabel>
#include <QToolButton>

class ChatHistoryListViewTest : public AssistantPanelTest {
protected:
    /// Three chats, the newest first: an hour, two days and three weeks old, and the panel with their list.
    void openHistory() {
        const QDateTime now = QDateTime::currentDateTimeUtc();
        std::vector<ChatSession> sessions;
        for (const auto& [title, seconds] :
             {std::pair(QStringLiteral("Newest"), 3700), std::pair(QStringLiteral("Middle"), 2 * 86400 + 9),
              std::pair(QStringLiteral("Oldest"), 21 * 86400 + 9)}) {
            ChatSession session;
            session.title = title;
            session.updatedAt = now.addSecs(-seconds);
            session.turns = {{QUuid::createUuid(), AssistantTurn::Role::user, title}};
            sessions.push_back(session);
        }
        keep(sessions);
        openPanel();
        openList();
    }

    void openList() {
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        press(button(QStringLiteral("chatHistoryButton")));
        m_list = m_panel->findChild<ChatHistoryListView*>();
        ASSERT_TRUE(m_list && m_list->isVisible());
    }

    QStringList titles() const {
        QStringList result;
        for (const ChatHistoryRow* row : rows())
            result << row->text() + (row->isChecked() ? QStringLiteral("*") : QString());
        return result;
    }
    QList<ChatHistoryRow*> rows() const {
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        return m_list->findChildren<ChatHistoryRow*>();
    }
    QString shownText() const { return m_viewModel->turns().empty() ? QString() : m_viewModel->turns().front().text; }

    QPointer<ChatHistoryListView> m_list;
};

TEST_F(ChatHistoryListViewTest, aClickShowsAChatAndClosesTheList) {
    openHistory();
    EXPECT_EQ(titles(), QStringList({QStringLiteral("Newest*"), QStringLiteral("Middle"), QStringLiteral("Oldest")}));
    QStringList times;
    for (const ChatHistoryRow* row : rows())
        times << row->accessibleDescription();
    EXPECT_EQ(times,
              QStringList({QStringLiteral("1 hr. ago"), QStringLiteral("2 days ago"), QStringLiteral("3 wk. ago")}));

    const QPointer<QWidget> former = m_panel->list().bubble(m_viewModel->turns().front().id);
    ASSERT_TRUE(former);
    QTest::mouseClick(rows().at(2), Qt::LeftButton, {}, {40, 10});
    EXPECT_EQ(shownText(), QStringLiteral("Oldest"));
    EXPECT_TRUE(m_panel->list().bubble(m_viewModel->turns().front().id));
    EXPECT_FALSE(former && former->isVisible());
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    EXPECT_FALSE(m_list);
}

TEST_F(ChatHistoryListViewTest, deletingLeavesTheListOpen) {
    openHistory();
    QTest::mouseClick(rows().at(0)->findChild<QToolButton*>(), Qt::LeftButton);
    EXPECT_EQ(titles(), QStringList({QStringLiteral("Middle*"), QStringLiteral("Oldest")}));
    EXPECT_EQ(shownText(), QStringLiteral("Middle"));
    EXPECT_TRUE(m_list->isVisible());

    QTest::keyClick(rows().at(1), Qt::Key_Delete);
    EXPECT_EQ(titles(), QStringList({QStringLiteral("Middle*")}));
    QTest::mouseClick(rows().at(0)->findChild<QToolButton*>(), Qt::LeftButton);
    EXPECT_EQ(titles(), QStringList({QStringLiteral("New Chat*")}));
    EXPECT_TRUE(find<QWidget>(*m_panel, QStringLiteral("greeting"))->isVisible());
    QTest::keyClick(m_list, Qt::Key_Escape);
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    EXPECT_FALSE(m_list);
}

TEST_F(ChatHistoryListViewTest, whileAQuestionRunsOnlyDeletingWorks) {
    openHistory();
    m_list->close();
    ask(QStringLiteral("Wait"));
    press(button(QStringLiteral("newConversationButton")));
    EXPECT_EQ(m_viewModel->turns().size(), 2U);
    openList();
    QTest::mouseClick(rows().at(1), Qt::LeftButton, {}, {40, 10});
    EXPECT_EQ(m_viewModel->turns().size(), 2U);
    openList();
    QTest::mouseClick(rows().at(0)->findChild<QToolButton*>(), Qt::LeftButton);
    EXPECT_EQ(shownText(), QStringLiteral("Middle"));
    EXPECT_TRUE(m_panel->findChild<QWidget*>(QStringLiteral("typingIndicator")));
    reply(QStringLiteral("Late"));
}
