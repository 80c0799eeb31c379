#pragma once

#include <QLabel>

/// A text that can't be edited, for the error of a formula. It is plain: nothing in it is markup.
class MTLabel : public QLabel {
    Q_OBJECT

public:
    explicit MTLabel(QWidget* parent = nullptr);
};
