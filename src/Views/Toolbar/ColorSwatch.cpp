#include "ColorSwatch.h"

#include <QPainter>

static constexpr int side = 24;
static constexpr qreal discRadius = 7.5;
static constexpr qreal ringRadius = 10.5;

ColorSwatch::ColorSwatch(const QColor& color, const QString& name, QWidget* parent)
    : QAbstractButton(parent), m_color(color) {
    setAccessibleName(name);
    setObjectName(QStringLiteral("swatch-") + name);
    setCheckable(true);
    setFocusPolicy(Qt::TabFocus);
    setFixedSize(side, side);
    setAttribute(Qt::WA_Hover);
}

ColorSwatch::~ColorSwatch() = default;

QSize ColorSwatch::sizeHint() const {
    return {side, side};
}

void ColorSwatch::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const QPointF center(width() / 2.0, height() / 2.0);
    QColor edge = palette().color(QPalette::WindowText);
    if (isChecked() || hasFocus()) {
        painter.setPen(QPen(hasFocus() ? palette().color(QPalette::Highlight) : edge, 1.75));
        painter.drawEllipse(center, ringRadius, ringRadius);
    }
    // A dark colour must not vanish in a dark toolbar.
    edge.setAlphaF(underMouse() ? 0.6F : 0.3F);
    painter.setPen(QPen(edge, 1));
    painter.setBrush(m_color);
    painter.drawEllipse(center, discRadius, discRadius);
}
