#include "ReplyBubble.h"

#include "MarkdownContent.h"
#include "ReplyActionRow.h"
#include "ReplyFormulas.h"

#include <QEvent>
#include <QVBoxLayout>

ReplyBubble::ReplyBubble(const QString& text, int pageCount, QWidget* parent)
    : QWidget(parent),
      m_content(new MarkdownContent(text, palette().color(QPalette::Text), ReplyFormulas::source(*this), pageCount)) {
    setObjectName(QStringLiteral("replyBubble"));
    auto* actions = new ReplyActionRow(text);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(4);
    layout->addWidget(m_content);
    layout->addWidget(actions);
    connect(m_content, &MarkdownContent::pageRequested, this, &ReplyBubble::pageRequested);
    connect(actions, &ReplyActionRow::regenerateRequested, this, &ReplyBubble::regenerateRequested);
    connect(actions, &ReplyActionRow::noticeRequested, this, &ReplyBubble::noticeRequested);
}

ReplyBubble::~ReplyBubble() = default;

void ReplyBubble::changeEvent(QEvent* event) {
    if (event->type() == QEvent::PaletteChange)
        m_content->setColor(palette().color(QPalette::Text));
    QWidget::changeEvent(event);
}
