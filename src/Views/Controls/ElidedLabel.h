#pragma once

#include <QLabel>

/// A line of plain text that is shortened in the middle where it has no room; its tool tip has all of it.
class ElidedLabel : public QLabel {
    Q_OBJECT

public:
    explicit ElidedLabel(const QString& text, QWidget* parent = nullptr);
    ~ElidedLabel() override;

    /// Also the tool tip and the accessible name.
    void setLine(const QString& text);

    [[nodiscard]] QSize minimumSizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;
};
