#include "SendButton.h"

#include "Palette.h"
#include "SymbolIcon.h"

#include <QKeyEvent>
#include <QPainter>

static constexpr int diameter = 30;
static constexpr int symbolSide = 18;

SendButton::SendButton(QWidget* parent) : QAbstractButton(parent) {
    setObjectName(QStringLiteral("sendMessage"));
    setAccessibleName(QStringLiteral("Send"));
    setToolTip(QStringLiteral("Send (Return)"));
    setFocusPolicy(Qt::TabFocus);
    setAttribute(Qt::WA_Hover);
    setFixedSize(sizeHint());
}

SendButton::~SendButton() = default;

QSize SendButton::sizeHint() const {
    return {diameter, diameter};
}

void SendButton::keyPressEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter)
        click();
    else
        QAbstractButton::keyPressEvent(event);
}

void SendButton::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    QColor face = palette().color(QPalette::WindowText);
    face.setAlphaF(0.16F);
    if (isEnabled())
        face = isDown()       ? Palette::systemBlue.darker(130)
               : underMouse() ? Palette::systemBlue.lighter(112)
                              : Palette::systemBlue;
    painter.setPen(Qt::NoPen);
    painter.setBrush(face);
    painter.drawEllipse(QRectF(rect()).adjusted(1, 1, -1, -1));
    const QColor symbol = isEnabled() ? Qt::white : palette().color(QPalette::Disabled, QPalette::WindowText);
    const int inset = (diameter - symbolSide) / 2;
    painter.drawPixmap(inset, inset,
                       SymbolIcon::pixmap(QStringLiteral("arrow.up"), symbolSide, symbol, devicePixelRatioF(),
                                          SymbolIcon::Weight::semibold));
    if (hasFocus()) {
        painter.setPen(QPen(palette().color(QPalette::Highlight), 2));
        painter.setBrush(Qt::NoBrush);
        painter.drawEllipse(QRectF(rect()).adjusted(1, 1, -1, -1));
    }
}
