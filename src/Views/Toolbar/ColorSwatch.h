#pragma once

#include <QAbstractButton>
#include <QColor>

/// A round button in a colour; a ring around it marks the current one.
class ColorSwatch : public QAbstractButton {
    Q_OBJECT

public:
    /// `name` is the colour in words.
    ColorSwatch(const QColor& color, const QString& name, QWidget* parent = nullptr);
    ~ColorSwatch() override;

    [[nodiscard]] QColor color() const { return m_color; }

    [[nodiscard]] QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QColor m_color;
};
