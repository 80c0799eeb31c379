#include "ChatHistoryListView.h"

#include "AssistantViewModel.h"
#include "ChatHistoryRow.h"
#include "RelativeDateTimeFormatter.h"

#include <QDateTime>
#include <QLabel>
#include <QScreen>
#include <QScrollArea>
#include <QScrollBar>
#include <QVBoxLayout>

#include <algorithm>

static constexpr int margin = 12;
static constexpr int mostVisibleRows = 7;

ChatHistoryListView::ChatHistoryListView(std::shared_ptr<AssistantViewModel> viewModel, QWidget* parent)
    : QFrame(parent, Qt::Popup), m_viewModel(std::move(viewModel)),
      m_none(new QLabel(QStringLiteral("No saved chats yet."))), m_scrollArea(new QScrollArea) {
    setObjectName(QStringLiteral("chatHistory"));
    setAccessibleName(QStringLiteral("Chats"));
    setFrameShape(QFrame::StyledPanel);
    setAttribute(Qt::WA_DeleteOnClose);
    setAttribute(Qt::WA_NoMouseReplay);
    auto* heading = new QLabel(QStringLiteral("Chats"));
    QFont font = heading->font();
    font.setBold(true);
    heading->setFont(font);
    m_none->setObjectName(QStringLiteral("noChats"));
    m_scrollArea->setObjectName(QStringLiteral("chatRows"));
    m_scrollArea->setFrameShape(QFrame::NoFrame);
    m_scrollArea->setFocusPolicy(Qt::NoFocus);
    m_scrollArea->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(margin, margin, margin, margin);
    layout->addWidget(heading);
    layout->addWidget(m_none);
    layout->addWidget(m_scrollArea);
    connect(m_viewModel.get(), &AssistantViewModel::sessionsChanged, this, &ChatHistoryListView::showSessions);
    connect(m_viewModel.get(), &AssistantViewModel::currentSessionIDChanged, this, &ChatHistoryListView::showSessions);
    showSessions();
}

ChatHistoryListView::~ChatHistoryListView() = default;

void ChatHistoryListView::showSessions() {
    const std::vector<ChatSession>& sessions = m_viewModel->sessions();
    QWidget* const former = m_scrollArea->takeWidget();
    const QWidget* focus = focusWidget();
    int focused = 0;
    if (former) {
        const QList<ChatHistoryRow*> rows = former->findChildren<ChatHistoryRow*>();
        for (int i = 0; i < rows.size(); ++i) {
            if (rows[i] == focus || rows[i]->isAncestorOf(focus))
                focused = i;
        }
        // The change may come from one of its own buttons.
        former->hide();
        former->deleteLater();
    }
    const int scrolled = m_scrollArea->verticalScrollBar()->value();
    auto* content = new QWidget;
    auto* column = new QVBoxLayout(content);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(2);
    const QDateTime now = QDateTime::currentDateTime();
    for (const ChatSession& session : sessions) {
        auto* row = new ChatHistoryRow(session.title,
                                       RelativeDateTimeFormatter::localizedString(session.updatedAt.toLocalTime(), now),
                                       session.id == m_viewModel->currentSessionID());
        column->addWidget(row);
        connect(row, &ChatHistoryRow::clicked, this, [this, id = session.id] {
            m_viewModel->switchToSession(id);
            close();
        });
        connect(row, &ChatHistoryRow::deleteRequested, this,
                [this, id = session.id] { m_viewModel->deleteSession(id); });
    }
    m_scrollArea->setWidget(content);
    const int count = static_cast<int>(sessions.size());
    const QSize size = content->sizeHint();
    const bool scrolls = count > mostVisibleRows;
    const int rowHeight = count > 0 ? (size.height() + column->spacing()) / count : 0;
    m_scrollArea->setFixedSize(size.width() + (scrolls ? m_scrollArea->verticalScrollBar()->sizeHint().width() : 0),
                               std::max(0, std::min(count, mostVisibleRows) * rowHeight - column->spacing()));
    m_scrollArea->verticalScrollBar()->setValue(scrolled);
    m_none->setVisible(sessions.empty());
    m_scrollArea->setVisible(!sessions.empty());
    adjustSize();
    if (isVisible())
        focusRow(focused);
}

void ChatHistoryListView::focusRow(int index) {
    const QList<ChatHistoryRow*> rows = m_scrollArea->widget()->findChildren<ChatHistoryRow*>();
    if (!rows.isEmpty())
        rows[std::min(index, static_cast<int>(rows.size()) - 1)]->setFocus(Qt::PopupFocusReason);
}

void ChatHistoryListView::popUp(const QWidget& anchor) {
    adjustSize();
    const QPoint below = anchor.mapToGlobal(QPoint(0, anchor.height() + 2));
    const QRect available = anchor.screen()->availableGeometry();
    move(std::clamp(below.x(), available.left(), std::max(available.left(), available.right() + 1 - width())),
         std::clamp(below.y(), available.top(), std::max(available.top(), available.bottom() + 1 - height())));
    show();
    focusRow(0);
}
