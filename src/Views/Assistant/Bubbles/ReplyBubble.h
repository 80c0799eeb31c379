#pragma once

#include <QWidget>

class MarkdownContent;

/// A reply of the assistant: its Markdown, and below it what can be done with it.
class ReplyBubble : public QWidget {
    Q_OBJECT

public:
    /// Words that name one of `pageCount` pages are links.
    ReplyBubble(const QString& text, int pageCount, QWidget* parent = nullptr);
    ~ReplyBubble() override;

Q_SIGNALS:
    void regenerateRequested();
    /// The number counts from 1.
    void pageRequested(int page);
    /// Something that the user should be told.
    void noticeRequested(const QString& sentence);

protected:
    void changeEvent(QEvent* event) override;

private:
    MarkdownContent* m_content;
};
