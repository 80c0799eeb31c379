#include "UserBubble.h"

#include "Palette.h"
#include "SelectableText.h"

#include <QEvent>
#include <QPainter>
#include <QStyle>

#include <algorithm>

static constexpr int sidePadding = 12;
static constexpr int verticalPadding = 8;
static constexpr qreal cornerRadius = 14;
static constexpr double widestFraction = 0.85;

UserBubble::UserBubble(const QString& text, QWidget* parent)
    : QWidget(parent), m_text(new SelectableText(text, this)), m_naturalWidth(m_text->naturalWidth()) {
    setObjectName(QStringLiteral("userBubble"));
    m_text->setObjectName(QStringLiteral("userText"));
    m_text->setAccessibleName(QStringLiteral("You"));
}

UserBubble::~UserBubble() = default;

int UserBubble::textWidth(int width) const {
    return std::min(m_naturalWidth, static_cast<int>(width * widestFraction) - 2 * sidePadding);
}

int UserBubble::heightForWidth(int width) const {
    return m_text->heightForWidth(textWidth(width)) + 2 * verticalPadding;
}

QSize UserBubble::sizeHint() const {
    return {m_naturalWidth + 2 * sidePadding, heightForWidth(m_naturalWidth * 2)};
}

void UserBubble::resizeEvent(QResizeEvent*) {
    const int inner = textWidth(width());
    const QRect atRight(width() - sidePadding - inner, verticalPadding, inner, height() - 2 * verticalPadding);
    m_text->setGeometry(QStyle::visualRect(layoutDirection(), rect(), atRight));
}

void UserBubble::changeEvent(QEvent* event) {
    QWidget::changeEvent(event);
    if (event->type() == QEvent::FontChange)
        m_naturalWidth = m_text->naturalWidth();
}

void UserBubble::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    QColor face = Palette::brandBlue;
    face.setAlphaF(0.22F);
    painter.setPen(Qt::NoPen);
    painter.setBrush(face);
    painter.drawRoundedRect(m_text->geometry().adjusted(-sidePadding, -verticalPadding, sidePadding, verticalPadding),
                            cornerRadius, cornerRadius);
    if (m_text->hasFocus()) {
        painter.setPen(QPen(palette().color(QPalette::Highlight), 1.5));
        painter.setBrush(Qt::NoBrush);
        painter.drawRoundedRect(
            QRectF(m_text->geometry())
                .adjusted(-sidePadding + 1, -verticalPadding + 1, sidePadding - 1, verticalPadding - 1),
            cornerRadius, cornerRadius);
    }
}
