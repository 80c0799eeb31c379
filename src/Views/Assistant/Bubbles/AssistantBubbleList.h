#pragma once

#include "AssistantTurn.h"
#include "BubbleColumn.h"

#include <QAbstractScrollArea>
#include <QPointer>

#include <functional>
#include <vector>

class QLabel;
class QVariantAnimation;

/// The bubbles of a conversation, one below the other, and after them the sign that a reply is on its way. Without
/// turns it greets.
///
/// A bubble is made and measured when it comes near to what is visible, so a long conversation opens and changes its
/// width as quickly as a short one; until then its height is an estimate. What the user looks at keeps its place
/// meanwhile.
class AssistantBubbleList : public QAbstractScrollArea {
    Q_OBJECT

public:
    explicit AssistantBubbleList(QWidget* parent = nullptr);
    ~AssistantBubbleList() override;

    /// Scrolls to the last turn when there are more or fewer of them than before. Bubbles of turns that stay are kept.
    void setTurns(const std::vector<AssistantTurn>& turns);
    /// Scrolls to the sign when it appears.
    void setTyping(bool typing);
    /// How many pages replies can lead to; asked when a bubble is made. Without it there are none.
    std::function<int()> pageCount;

    /// Whether the end of the last row is to be seen.
    [[nodiscard]] bool isAtEnd() const;
    /// The bubble of a turn; null while it is too far from what is visible to have been made.
    [[nodiscard]] QWidget* bubble(QUuid turnID) const;

Q_SIGNALS:
    void regenerateRequested();
    /// The failed question before that turn is to be asked in another way.
    void questionEditRequested(QUuid errorTurnID);
    /// A reply leads to that page, counted from 1.
    void pageRequested(int page);
    /// Something that the user should be told.
    void noticeRequested(const QString& sentence);

protected:
    bool viewportEvent(QEvent* event) override;
    void scrollContentsBy(int dx, int dy) override;
    void keyPressEvent(QKeyEvent* event) override;
    void showEvent(QShowEvent* event) override;
    void changeEvent(QEvent* event) override;

private:
    struct Row {
        AssistantTurn turn;       ///< a null `id` is that of the sign for typing
        QPointer<QWidget> widget; ///< null until it is needed
    };

    [[nodiscard]] int columnWidth() const;
    [[nodiscard]] int estimatedHeight(const AssistantTurn& turn) const;
    void append(const AssistantTurn& turn);
    void removeFrom(std::size_t first);

    QWidget* makeWidget(std::size_t row);
    void placeInTabOrder(std::size_t row);
    bool measure(std::size_t row);
    void layOut();
    void setPosition(int position);
    void place();

    void scrollTo(std::size_t row);
    void userScrolled();
    void revealFocus(const QWidget* focus);
    void reveal(const QRect& area);
    void followCursors(const QWidget& bubble);

    std::vector<Row> m_rows;
    BubbleColumn m_column; ///< the places of `m_rows`
    QLabel* m_greeting;
    QVariantAnimation* m_scroll;
    std::size_t m_scrollRow = 0;
    int m_scrollStart = 0;
    bool m_staysAtEnd = true;
    bool m_isLayingOut = false;
};
