#pragma once

#include <QToolButton>

/// A flat button of the toolbar; what is on is marked in the program's blue. The keyboard reaches it with Tab.
class ToolbarButton : public QToolButton {
    Q_OBJECT

public:
    static constexpr int symbolSide = 20;

    explicit ToolbarButton(QWidget* parent = nullptr);
    /// A button of `action`, with its name and "Button" as the object's.
    explicit ToolbarButton(QAction* action, QWidget* parent = nullptr);
    ~ToolbarButton() override;

    [[nodiscard]] QSize sizeHint() const override;
    [[nodiscard]] QSize minimumSizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;
};
