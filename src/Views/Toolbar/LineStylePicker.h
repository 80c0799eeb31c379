#pragma once

#include <QFrame>
#include <QPointer>

#include <memory>

class QButtonGroup;
class ToolState;

/// A row of the styles for the end of a line, which pops up below a button inside of the window. It grabs neither
/// pointer nor keyboard; once it has the focus it goes when the focus leaves it, and on Escape.
class LineStylePicker : public QFrame {
    Q_OBJECT

public:
    /// A child of `container`, in front of what else that holds.
    LineStylePicker(std::shared_ptr<ToolState> toolState, QWidget* container);
    ~LineStylePicker() override;

    /// Below `anchor`, moved sideways so that the container shows all of it.
    void popUp(const QWidget& anchor);
    /// The same, and the keyboard goes to the present style; back to where it was when the picker closes.
    void popUpWithFocus(const QWidget& anchor);
    void dismiss();

protected:
    void keyPressEvent(QKeyEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    void showCurrent();
    void focusMoved(QWidget* from, QWidget* to);

    std::shared_ptr<ToolState> m_toolState;
    QButtonGroup* m_tiles;
    QPointer<QWidget> m_formerFocus;
};
