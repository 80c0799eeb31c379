#include "AssistantBubbleList.h"

#include "AssistantPanelTest.h"
#include "ReplyBubble.h"
#include "SelectableText.h"
#include "UserBubble.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QScrollBar>
#include <QTextEdit>

static std::vector<AssistantTurn> longConversation(int count) {
    std::vector<AssistantTurn> turns;
    for (int i = 0; i < count; ++i) {
        const bool asks = i % 2 == 0;
        turns.push_back({QUuid::createUuid(), asks ? AssistantTurn::Role::user : AssistantTurn::Role::assistant,
                         asks ? QStringLiteral("Question %1").arg(i)
                              : QStringLiteral("Answer %1 ").arg(i).repeated(10 + i % 7 * 12)});
    }
    return turns;
}

class AssistantBubbleListTest : public AssistantPanelTest {
protected:
    AssistantBubbleList& list() const { return m_panel->list(); }
    QScrollBar& bar() const { return *list().verticalScrollBar(); }
    int made() const {
        return static_cast<int>(list().findChildren<UserBubble*>().size() + list().findChildren<ReplyBubble*>().size());
    }
    /// The bubble that is seen at the upper edge, and where it begins.
    std::pair<const QWidget*, int> atTop() const {
        for (const AssistantTurn& turn : m_viewModel->turns()) {
            const QWidget* bubble = list().bubble(turn.id);
            if (bubble && bubble->geometry().bottom() > 0 && bubble->y() < list().viewport()->height())
                return {bubble, bubble->y()};
        }
        return {};
    }
};

TEST_F(AssistantBubbleListTest, aLongConversationOpensAtItsEndAndMakesWhatIsSeen) {
    const auto turns = longConversation(200);
    openPanel(turns);
    EXPECT_TRUE(list().isAtEnd());
    ASSERT_TRUE(list().bubble(turns.back().id));
    EXPECT_LE(list().bubble(turns.back().id)->geometry().bottom(), list().viewport()->height());
    EXPECT_LT(made(), 30);
    EXPECT_FALSE(list().bubble(turns.front().id));

    // Over all of it, none overlaps another and each is as high as it says.
    for (int step = 0; bar().value() > 0 && step < 2000; ++step)
        bar().triggerAction(QScrollBar::SliderPageStepSub);
    EXPECT_EQ(made(), 200);
    int bottom = 0;
    for (const AssistantTurn& turn : turns) {
        const QWidget* bubble = list().bubble(turn.id);
        ASSERT_TRUE(bubble);
        EXPECT_GE(bubble->y(), bottom);
        EXPECT_EQ(bubble->height(), bubble->heightForWidth(bubble->width()));
        bottom = bubble->geometry().bottom();
    }
}

TEST_F(AssistantBubbleListTest, whatIsReadKeepsItsPlace) {
    openPanel(longConversation(60));
    bar().setValue(bar().maximum() / 2);
    const auto [bubble, y] = atTop();
    ASSERT_TRUE(bubble);

    // Above it comes what had only been estimated.
    m_panel->resize(m_panel->width(), m_panel->height() - 100);
    QCoreApplication::processEvents();
    EXPECT_EQ(bubble->y(), y);
    for (const int width : {640, 260, 420}) {
        m_panel->resize(width, m_panel->height());
        QCoreApplication::processEvents();
        EXPECT_EQ(atTop().first, bubble) << width;
        EXPECT_EQ(bubble->width(), list().viewport()->width() - 2 * BubbleColumn::margin);
    }
    // The answer to come is told, and so is its arrival.
    m_viewModel->setDraft(QStringLiteral("Next"));
    m_viewModel->submit();
    EXPECT_TRUE(QTest::qWaitFor([this] { return list().isAtEnd(); }));
    waitForCall();
    reply(QStringLiteral("Long ").repeated(2000));
    const QWidget* last = nullptr;
    EXPECT_TRUE(QTest::qWaitFor([&] {
        last = list().bubble(m_viewModel->turns().back().id);
        return last && last->y() == BubbleColumn::margin;
    })) << "A reply that is higher than the list is read from its beginning.";
}

TEST_F(AssistantBubbleListTest, aUserWhoScrollsIsNotPulledBack) {
    openPanel(longConversation(60));
    bar().setValue(bar().maximum() / 2);
    m_viewModel->setDraft(QStringLiteral("Next"));
    m_viewModel->submit();
    waitForCall();
    const QPoint middle = list().viewport()->rect().center();
    QWheelEvent up(middle, list().viewport()->mapToGlobal(middle), {0, 240}, {0, 240}, Qt::NoButton, Qt::NoModifier,
                   Qt::NoScrollPhase, false);
    EXPECT_TRUE(QTest::qWaitFor([this] { return list().isAtEnd(); }));
    QApplication::sendEvent(list().viewport(), &up);
    const int value = bar().value();
    EXPECT_LT(value, bar().maximum());
    m_panel->resize(m_panel->width(), m_panel->height() - 40);
    QTest::qWait(50);
    EXPECT_EQ(bar().value(), value);
    reply(QStringLiteral("Now"));
}

TEST_F(AssistantBubbleListTest, textIsSelectedAndCopiedByKeyboard) {
    openPanel({{QUuid::createUuid(), AssistantTurn::Role::user, QStringLiteral("A question")},
               {QUuid::createUuid(), AssistantTurn::Role::assistant, QStringLiteral("An *answer*")},
               {QUuid::createUuid(), AssistantTurn::Role::error, QStringLiteral("An error")}});
    const std::pair<const char*, QString> cases[] = {{"userText", QStringLiteral("A question")},
                                                     {"replyText", QStringLiteral("An answer")},
                                                     {"errorText", QStringLiteral("An error")}};
    list().setFocus();
    QStringList visited;
    for (int step = 0; step < 14; ++step) {
        QTest::keyClick(m_panel.get(), Qt::Key_Tab);
        visited << m_panel->focusWidget()->objectName();
    }
    // From the first turn to the last, and then to where one writes.
    EXPECT_EQ(
        visited,
        QString(QStringLiteral(
                    "userText replyText helpfulButton notHelpfulButton shareResponseButton copyResponseButton "
                    "readAloudButton regenerateButton editInAPageButton errorText copyErrorButton editQuestionButton "
                    "message attachFileButton"))
            .split(u' '));
    for (const auto& [name, text] : cases) {
        auto* part = find<QTextEdit>(list(), QLatin1String(name));
        part->setFocus();
        QTest::keyClick(part, Qt::Key_A, Qt::ControlModifier);
        QTest::keyClick(part, Qt::Key_C, Qt::ControlModifier);
        EXPECT_EQ(QGuiApplication::clipboard()->text(), text);
        QTest::keyClicks(part, QStringLiteral("x"));
        EXPECT_EQ(part->toPlainText(), text);
    }
}

TEST_F(AssistantBubbleListTest, ofAHugeTextTheBeginningIsShownAndAllIsCopied) {
    const QString line = QStringLiteral("Some \u202Ewords.\n\n");
    for (const auto& [role, name] :
         {std::pair(AssistantTurn::Role::user, "userText"), std::pair(AssistantTurn::Role::error, "errorText")}) {
        for (const QString& text : {line.repeated(100'000), QString(1'000'000, u'a'), line}) {
            openPanel({{QUuid::createUuid(), role, text}});
            auto* part = find<SelectableText>(list(), QLatin1String(name));
            const bool isCut = text != line;
            const QString shown = part->toPlainText().remove(QChar(0x200B));
            EXPECT_LE(shown.size(), SelectableText::mostShown);
            EXPECT_EQ(shown.endsWith(u'…'), isCut);
            EXPECT_TRUE(QString(text).remove(QChar(0x202E)).startsWith(shown.chopped(isCut ? 1 : 0)));
            EXPECT_EQ(part->toolTip().isEmpty(), !isCut);
            const auto copied = [part] {
                part->copy();
                return QGuiApplication::clipboard()->text();
            };
            part->selectAll();
            EXPECT_EQ(copied(), text);
            QTextCursor cursor = part->textCursor();
            cursor.setPosition(10);
            cursor.movePosition(QTextCursor::End, QTextCursor::KeepAnchor);
            part->setTextCursor(cursor);
            const QString shownPart = shown.mid(10).chopped(isCut ? 1 : 0);
            EXPECT_TRUE(copied().startsWith(shownPart));
            EXPECT_EQ(copied().size() > shownPart.size(), isCut);
            EXPECT_TRUE(text.endsWith(copied().mid(shownPart.size())));
        }
    }
}

TEST_F(AssistantBubbleListTest, aReplyIsNoHigherThanItsText) {
    openPanel();
    ask(QStringLiteral("Show"));
    reply(QStringLiteral(
        "## Summary\n\nThis page describes **the water cycle** in three steps:\n\n1. Water\n2. Clouds\n\n| a | b "
        "|\n|---|---|\n| c | d |\n\nThat is all, and it takes more than a line to say so, even here."));
    auto* text = find<QTextEdit>(list(), QStringLiteral("replyText"));
    EXPECT_TRUE(QTest::qWaitFor([text] { return text->height() == qCeil(text->document()->size().height()); }))
        << text->height() << " " << text->document()->size().height() << " " << text->width() << " "
        << text->document()->textWidth();
}
