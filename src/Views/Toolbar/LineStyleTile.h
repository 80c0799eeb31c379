#pragma once

#include "PDFTypes.h"

#include <QAbstractButton>

struct LineEndStyleInfo;

/// A button with the picture of a style for the end of a line and its title.
class LineStyleTile : public QAbstractButton {
    Q_OBJECT

public:
    explicit LineStyleTile(const LineEndStyleInfo& info, QWidget* parent = nullptr);
    ~LineStyleTile() override;

    [[nodiscard]] QSize sizeHint() const override;

protected:
    /// Takes the space bar; the rest is for the row of tiles.
    void keyPressEvent(QKeyEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
};
