#pragma once

#include <QWidget>

class SelectableText;

/// What the user wrote: a plain bubble at the trailing side, no wider than its text.
class UserBubble : public QWidget {
    Q_OBJECT

public:
    explicit UserBubble(const QString& text, QWidget* parent = nullptr);
    ~UserBubble() override;

    [[nodiscard]] bool hasHeightForWidth() const override { return true; }
    [[nodiscard]] int heightForWidth(int width) const override;
    [[nodiscard]] QSize sizeHint() const override;

protected:
    void resizeEvent(QResizeEvent* event) override;
    void changeEvent(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    [[nodiscard]] int textWidth(int width) const;

    SelectableText* m_text;
    int m_naturalWidth;
};
