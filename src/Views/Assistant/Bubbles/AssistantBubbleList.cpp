#include "AssistantBubbleList.h"

#include "ErrorBubble.h"
#include "ReplyBubble.h"
#include "SelectableText.h"
#include "SpringCurve.h"
#include "TypingIndicator.h"
#include "UserBubble.h"

#include <QApplication>
#include <QLabel>
#include <QScrollBar>
#include <QVariantAnimation>

#include <algorithm>

static constexpr double greetingSize = 1.8; // of the usual font

AssistantBubbleList::AssistantBubbleList(QWidget* parent)
    : QAbstractScrollArea(parent), m_greeting(new QLabel(QStringLiteral("Hi ") + QStringLiteral("there"), viewport())),
      m_scroll(new QVariantAnimation(this)) {
    setObjectName(QStringLiteral("assistantConversation"));
    setAccessibleName(QStringLiteral("Conversation"));
    setFrameShape(QFrame::NoFrame);
    setFocusPolicy(Qt::TabFocus);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    viewport()->setBackgroundRole(QPalette::Window);
    verticalScrollBar()->setSingleStep(fontMetrics().lineSpacing());

    m_greeting->setObjectName(QStringLiteral("greeting"));
    QFont font = m_greeting->font();
    font.setPointSizeF(font.pointSizeF() * greetingSize);
    font.setWeight(QFont::DemiBold);
    m_greeting->setFont(font);
    m_greeting->setAlignment(Qt::AlignCenter);

    const SpringCurve::Movement movement = SpringCurve::conversation();
    m_scroll->setDuration(movement.milliseconds);
    m_scroll->setEasingCurve(movement.curve);
    m_scroll->setStartValue(0.0);
    m_scroll->setEndValue(1.0);
    connect(m_scroll, &QVariantAnimation::valueChanged, this, &AssistantBubbleList::layOut);
    connect(m_scroll, &QVariantAnimation::finished, this, [this] {
        m_staysAtEnd = isAtEnd();
        layOut();
    });
    connect(qApp, &QApplication::focusChanged, this, [this](const QWidget* from, const QWidget* now) {
        // From nowhere it comes when the window is back in front.
        if (from)
            revealFocus(now);
    });
}

AssistantBubbleList::~AssistantBubbleList() {
    // The focus moves once more while the bubbles go.
    disconnect(qApp, nullptr, this, nullptr);
}

// Rows

int AssistantBubbleList::columnWidth() const {
    return viewport()->width() - 2 * BubbleColumn::margin;
}

int AssistantBubbleList::estimatedHeight(const AssistantTurn& turn) const {
    const int charactersInLine = std::max(1, columnWidth() / std::max(1, fontMetrics().averageCharWidth()));
    auto lines = std::min<qsizetype>(turn.text.size() / charactersInLine + turn.text.count(u'\n') + 2, 10000);
    if (turn.role != AssistantTurn::Role::assistant)
        lines = std::min(lines, SelectableText::mostShown / charactersInLine + SelectableText::mostLines);
    return static_cast<int>(lines) * fontMetrics().lineSpacing();
}

void AssistantBubbleList::append(const AssistantTurn& turn) {
    m_rows.push_back({turn, nullptr});
    m_column.append(estimatedHeight(turn));
}

void AssistantBubbleList::removeFrom(std::size_t first) {
    m_scroll->stop();
    for (std::size_t i = first; i < m_rows.size(); ++i) {
        if (QWidget* widget = m_rows[i].widget) {
            // The change may come from one of its own buttons.
            widget->hide();
            widget->deleteLater();
        }
    }
    m_rows.resize(std::min(first, m_rows.size()));
    m_column.removeFrom(first);
}

void AssistantBubbleList::setTurns(const std::vector<AssistantTurn>& turns) {
    const bool isTyping = !m_rows.empty() && m_rows.back().turn.id.isNull();
    const std::size_t formerCount = m_rows.size() - (isTyping ? 1 : 0);
    std::size_t kept = 0;
    while (kept < std::min(formerCount, turns.size()) && m_rows[kept].turn == turns[kept])
        ++kept;
    if (kept == formerCount && kept == turns.size())
        return;
    // Another conversation, of which nobody has seen a place yet.
    if (kept == 0)
        m_staysAtEnd = true;
    removeFrom(kept);
    for (std::size_t i = kept; i < turns.size(); ++i)
        append(turns[i]);
    if (isTyping)
        append({QUuid(), AssistantTurn::Role::assistant, {}});
    m_greeting->setVisible(turns.empty());
    if (turns.size() != formerCount && !turns.empty())
        scrollTo(turns.size() - 1);
    else
        layOut();
}

void AssistantBubbleList::setTyping(bool typing) {
    const bool isTyping = !m_rows.empty() && m_rows.back().turn.id.isNull();
    if (typing == isTyping)
        return;
    if (typing) {
        append({QUuid(), AssistantTurn::Role::assistant, {}});
        scrollTo(m_rows.size() - 1);
        return;
    }
    // It goes just after the reply has come, to which the list may be on its way.
    const bool isScrolling = m_scroll->state() == QAbstractAnimation::Running && m_scrollRow + 1 < m_rows.size();
    const int time = m_scroll->currentTime();
    removeFrom(m_rows.size() - 1);
    if (isScrolling) {
        m_scroll->start();
        m_scroll->setCurrentTime(time);
    }
    layOut();
}

QWidget* AssistantBubbleList::bubble(QUuid turnID) const {
    const auto found =
        std::find_if(m_rows.begin(), m_rows.end(), [turnID](const Row& row) { return row.turn.id == turnID; });
    return found == m_rows.end() ? nullptr : found->widget.data();
}

QWidget* AssistantBubbleList::makeWidget(std::size_t row) {
    const AssistantTurn& turn = m_rows[row].turn;
    if (turn.id.isNull())
        return new TypingIndicator(viewport());
    switch (turn.role) {
    case AssistantTurn::Role::user:
        return new UserBubble(turn.text, viewport());
    case AssistantTurn::Role::error: {
        auto* error = new ErrorBubble(turn.text, viewport());
        connect(error, &ErrorBubble::questionEditRequested, this,
                [this, id = turn.id] { Q_EMIT questionEditRequested(id); });
        return error;
    }
    case AssistantTurn::Role::assistant:
        break;
    }
    auto* reply = new ReplyBubble(turn.text, pageCount ? pageCount() : 0, viewport());
    connect(reply, &ReplyBubble::regenerateRequested, this, &AssistantBubbleList::regenerateRequested);
    connect(reply, &ReplyBubble::pageRequested, this, &AssistantBubbleList::pageRequested);
    connect(reply, &ReplyBubble::noticeRequested, this, &AssistantBubbleList::noticeRequested);
    return reply;
}

/// Bubbles are made in any order, but Tab goes through them from first to last.
void AssistantBubbleList::placeInTabOrder(std::size_t row) {
    QWidget* before = this;
    for (std::size_t i = row; i-- > 0 && before == this;) {
        if (!m_rows[i].widget)
            continue;
        for (QWidget* part : m_rows[i].widget->findChildren<QWidget*>()) {
            if (part->focusPolicy() & Qt::TabFocus)
                before = part;
        }
    }
    for (QWidget* part : m_rows[row].widget->findChildren<QWidget*>()) {
        if (part->focusPolicy() & Qt::TabFocus) {
            setTabOrder(before, part);
            before = part;
        }
    }
}

/// True when that moved anything.
bool AssistantBubbleList::measure(std::size_t row) {
    const int width = columnWidth();
    if (m_rows[row].widget && m_column.isMeasured(row, width))
        return false;
    if (!m_rows[row].widget) {
        m_rows[row].widget = makeWidget(row);
        m_rows[row].widget->show();
        followCursors(*m_rows[row].widget);
        // Its first look may change its fonts and colours, and with them its height.
        QCoreApplication::postEvent(viewport(), new QEvent(QEvent::LayoutRequest));
        placeInTabOrder(row);
    }
    const QWidget& widget = *m_rows[row].widget;
    const int height = widget.hasHeightForWidth() ? widget.heightForWidth(width) : widget.sizeHint().height();
    return m_column.setMeasured(row, width, height);
}
