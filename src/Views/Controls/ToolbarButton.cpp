#include "ToolbarButton.h"

#include "Palette.h"

#include <QAction>
#include <QStyleOptionToolButton>
#include <QStylePainter>

static constexpr int buttonHeight = 32;
static constexpr int sidePadding = 6;
static constexpr qreal cornerRadius = 6;

ToolbarButton::ToolbarButton(QWidget* parent) : QToolButton(parent) {
    setIconSize({symbolSide, symbolSide});
    setFocusPolicy(Qt::TabFocus);
    setAutoRaise(true);
}

ToolbarButton::ToolbarButton(QAction* action, QWidget* parent) : ToolbarButton(parent) {
    setDefaultAction(action);
    setObjectName(action->objectName() + QStringLiteral("Button"));
    setAccessibleName(action->iconText());
}

ToolbarButton::~ToolbarButton() = default;

QSize ToolbarButton::sizeHint() const {
    const int textWidth = fontMetrics().horizontalAdvance(text());
    switch (toolButtonStyle()) {
    case Qt::ToolButtonTextOnly:
        return {textWidth + 4 * sidePadding, buttonHeight};
    case Qt::ToolButtonTextBesideIcon:
        return {iconSize().width() + textWidth + 3 * sidePadding, buttonHeight};
    default:
        return {iconSize().width() + 2 * sidePadding, buttonHeight};
    }
}

QSize ToolbarButton::minimumSizeHint() const {
    return sizeHint();
}

void ToolbarButton::paintEvent(QPaintEvent*) {
    QStylePainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const QRectF face = QRectF(rect()).adjusted(1, 1, -1, -1);
    const auto tinted = [](QColor color, float opacity) {
        color.setAlphaF(opacity);
        return color;
    };
    painter.setPen(Qt::NoPen);
    if (isChecked()) {
        painter.setPen(QPen(Palette::brandBlue, 1));
        painter.setBrush(tinted(Palette::brandBlue, isDown() ? 0.4F : 0.26F));
    } else if (isEnabled() && (isDown() || underMouse())) {
        painter.setBrush(tinted(palette().color(QPalette::WindowText), isDown() ? 0.18F : 0.09F));
    }
    painter.drawRoundedRect(face.adjusted(0.5, 0.5, -0.5, -0.5), cornerRadius, cornerRadius);
    if (hasFocus()) {
        painter.setPen(QPen(palette().color(QPalette::Highlight), 2));
        painter.setBrush(Qt::NoBrush);
        painter.drawRoundedRect(face.adjusted(0.5, 0.5, -0.5, -0.5), cornerRadius, cornerRadius);
    }
    QStyleOptionToolButton option;
    initStyleOption(&option);
    // The face says it all; the style would move the label of a button that is on.
    option.state &= ~(QStyle::State_On | QStyle::State_Sunken | QStyle::State_MouseOver);
    painter.drawControl(QStyle::CE_ToolButtonLabel, option);
}
