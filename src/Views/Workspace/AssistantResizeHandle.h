#pragma once

#include <QWidget>

#include <optional>

class QVariantAnimation;

/// The strip at the leading edge of a panel at the trailing edge of the window. Dragging it to the left widens the
/// panel; with the focus, the arrow keys do the same in steps.
class AssistantResizeHandle : public QWidget {
    Q_OBJECT

public:
    /// Widths are those of the panel, in device-independent pixels.
    AssistantResizeHandle(qreal panelWidth, qreal minWidth, qreal maxWidth, QWidget* parent = nullptr);
    ~AssistantResizeHandle() override;

    [[nodiscard]] qreal panelWidth() const { return m_panelWidth; }
    /// Held within the limits.
    void setPanelWidth(qreal width);

Q_SIGNALS:
    void panelWidthChanged(qreal width);

protected:
    void enterEvent(QEnterEvent* event) override;
    void leaveEvent(QEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    void updateLight();

    qreal m_panelWidth;
    const qreal m_minWidth;
    const qreal m_maxWidth;
    std::optional<qreal> m_widthAtDragStart;
    qreal m_pressX = 0; ///< on the screen
    bool m_isHovering = false;
    bool m_isDragging = false;
    QVariantAnimation* m_light;
};
