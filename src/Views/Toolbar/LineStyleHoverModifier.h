#pragma once

#include <QObject>
#include <QTimer>

class LineStylePicker;
class QWidget;

/// Opens the picker for the end of lines while the pointer is over a button, and closes it a moment after the pointer
/// has left both.
class LineStyleHoverModifier : public QObject {
    Q_OBJECT

public:
    /// A child of `picker`; `button` must outlive it.
    LineStyleHoverModifier(QWidget& button, LineStylePicker& picker);
    ~LineStyleHoverModifier() override;

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void dismissUnlessUnderPointer();

    QWidget& m_button;
    LineStylePicker& m_picker;
    QTimer m_dismissCheck;
};
