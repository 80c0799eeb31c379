#pragma once

#include <QWidget>

class MarkdownContent;

/// A reply of the assistant: its Markdown, and below it what can be done with it.
class ReplyBubble : public QWidget {
    Q_OBJECT

public:
    explicit ReplyBubble(const QString& text, QWidget* parent = nullptr);
    ~ReplyBubble() override;

Q_SIGNALS:
    void regenerateRequested();
    /// Something that the user should be told.
    void noticeRequested(const QString& sentence);

protected:
    void changeEvent(QEvent* event) override;

private:
    MarkdownContent* m_content;
};
