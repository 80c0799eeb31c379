#pragma once

#include <QTextEdit>

/// Plain text that can be selected and copied, with pointer and keyboard, and can't be changed. It is as high as the
/// text at its width needs and never scrolls by itself. Its letters are those of replies.
class SelectableText : public QTextEdit {
    Q_OBJECT

public:
    explicit SelectableText(const QString& text, QWidget* parent = nullptr);
    ~SelectableText() override;

    void setTextColor(const QColor& color);

    /// The width at which no line has to be broken.
    [[nodiscard]] int naturalWidth() const;

    [[nodiscard]] bool hasHeightForWidth() const override { return true; }
    [[nodiscard]] int heightForWidth(int width) const override;
    [[nodiscard]] QSize sizeHint() const override;
    [[nodiscard]] QSize minimumSizeHint() const override;

protected:
    void wheelEvent(QWheelEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;
};
