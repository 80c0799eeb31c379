#pragma once

#include <QAbstractButton>

/// The round button that sends a message.
class SendButton : public QAbstractButton {
    Q_OBJECT

public:
    explicit SendButton(QWidget* parent = nullptr);
    ~SendButton() override;

    [[nodiscard]] QSize sizeHint() const override;

protected:
    void keyPressEvent(QKeyEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
};
