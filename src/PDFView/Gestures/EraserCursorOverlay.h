#pragma once

#include <QPointF>
#include <QWidget>

#include <optional>

/// The ring that shows what the eraser reaches, in place of the pointer. Covers the widget that it is a child of and
/// lets every event through.
class EraserCursorOverlay : public QWidget {
    Q_OBJECT

public:
    explicit EraserCursorOverlay(QWidget* parent);
    ~EraserCursorOverlay() override;

    /// The centre of the ring, or none to show nothing; and its diameter. Both in the pixels of this widget.
    void show(const std::optional<QPointF>& center, double diameter);
    [[nodiscard]] const std::optional<QPointF>& center() const { return m_center; }
    [[nodiscard]] double diameter() const { return m_diameter; }

protected:
    void paintEvent(QPaintEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    [[nodiscard]] QRect ringRect() const;

    std::optional<QPointF> m_center;
    double m_diameter = 20;
};
