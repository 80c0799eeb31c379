#pragma once

#include "SignaturePadStrokes.h"

#include <QWidget>

/// The white area to sign on, with mouse, touch or pen.
class SignaturePad : public QWidget {
    Q_OBJECT

public:
    explicit SignaturePad(QWidget* parent = nullptr);
    ~SignaturePad() override;

    [[nodiscard]] const SignaturePadStrokes& strokes() const { return m_strokes; }
    void clear();

Q_SIGNALS:
    /// A stroke was finished, or all are gone.
    void strokesChanged();

protected:
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void tabletEvent(QTabletEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    void addPoint(QPointF point);
    void endStroke();

    SignaturePadStrokes m_strokes;
    bool m_isDrawing = false;
};
