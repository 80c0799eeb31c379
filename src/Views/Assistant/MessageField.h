#pragma once

#include <QTextEdit>

#include <functional>

/// The plain text field in which a message is written: as high as its text, from one line to eight, then it scrolls.
class MessageField : public QTextEdit {
    Q_OBJECT

public:
    static constexpr int mostLines = 8;

    explicit MessageField(QWidget* parent = nullptr);
    ~MessageField() override;

    /// Does nothing when the field has that text, so the cursor stays.
    void setMessage(const QString& message);

    /// Called for a Return without any modifier; true when it did something. Otherwise, as with a modifier, the field
    /// begins a new line.
    std::function<bool()> onReturn;

    [[nodiscard]] QSize sizeHint() const override;
    [[nodiscard]] QSize minimumSizeHint() const override;

protected:
    void keyPressEvent(QKeyEvent* event) override;
    void dragEnterEvent(QDragEnterEvent* event) override;
    void changeEvent(QEvent* event) override;

private:
    [[nodiscard]] int heightOfLines(int count) const;
    void fitHeight();
};
