#pragma once

#include <QWidget>

/// What can be done with one reply of the assistant, a button each. Where the row is too narrow it has two lines.
class ReplyActionRow : public QWidget {
    Q_OBJECT

public:
    /// `text` is the Markdown of the reply as the model wrote it; that is what is copied, shared and read aloud.
    explicit ReplyActionRow(const QString& text, QWidget* parent = nullptr);
    ~ReplyActionRow() override;

Q_SIGNALS:
    void regenerateRequested();
    /// Something went wrong that the user should be told.
    void noticeRequested(const QString& sentence);

private:
    void share();
    void copy();
    void readAloud();

    const QString m_text;
    QWidget* m_shareButton = nullptr;
};
