#pragma once

#include <QWidget>

/// Lies over all of another widget while a file is held over it, and says what dropping it there does. It lets the drag
/// through to what is below.
class DropHighlight : public QWidget {
    Q_OBJECT

public:
    /// A hidden child of `covered`.
    DropHighlight(const QString& sentence, QWidget* covered);
    ~DropHighlight() override;

    void setShown(bool shown);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
};
