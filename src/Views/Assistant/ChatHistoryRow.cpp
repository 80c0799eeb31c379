#include "ChatHistoryRow.h"

#include "PlainText.h"
#include "SymbolIcon.h"
#include "ToolbarButton.h"

#include <QAction>
#include <QKeyEvent>
#include <QPainter>
#include <QStyle>

static constexpr int padding = 8;
static constexpr int markSide = 16;
static constexpr int buttonSide = 28;
static constexpr int rowWidth = 300;
static constexpr qreal cornerRadius = 6;
static constexpr float timeOpacity = 0.65F;

static QFont timeFont(QFont font) {
    font.setPointSizeF(font.pointSizeF() * 0.85);
    return font;
}

ChatHistoryRow::ChatHistoryRow(const QString& title, const QString& time, bool isCurrent, QWidget* parent)
    : QAbstractButton(parent), m_time(time) {
    setObjectName(QStringLiteral("chatRow"));
    setText(PlainText::line(title));
    setShortcut({}); // an "&" of the title marks no key
    setAccessibleName(text());
    setAccessibleDescription(time);
    setToolTip(PlainText::toolTip(title));
    setCheckable(true);
    setChecked(isCurrent);
    setFocusPolicy(Qt::TabFocus);
    setAttribute(Qt::WA_Hover);

    auto* action = new QAction(SymbolIcon::icon(QStringLiteral("trash")), QString(), this);
    action->setObjectName(QStringLiteral("deleteChat"));
    action->setToolTip(QStringLiteral("Delete this chat"));
    connect(action, &QAction::triggered, this, &ChatHistoryRow::deleteRequested);
    auto* button = new ToolbarButton(action, this);
    button->setAccessibleName(QStringLiteral("Delete chat “%1”").arg(text()));
    button->setIconSize({markSide, markSide});
    button->resize(buttonSide, buttonSide);
    m_deleteButton = button;
}

ChatHistoryRow::~ChatHistoryRow() = default;

QSize ChatHistoryRow::sizeHint() const {
    return {rowWidth, fontMetrics().height() + QFontMetrics(timeFont(font())).height() + 2 * padding};
}

void ChatHistoryRow::resizeEvent(QResizeEvent*) {
    const QRect atRight(width() - buttonSide - padding / 2, (height() - buttonSide) / 2, buttonSide, buttonSide);
    m_deleteButton->setGeometry(QStyle::visualRect(layoutDirection(), rect(), atRight));
}

void ChatHistoryRow::keyPressEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter)
        click();
    else if (event->key() == Qt::Key_Delete)
        Q_EMIT deleteRequested();
    else
        QAbstractButton::keyPressEvent(event);
}

void ChatHistoryRow::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const QColor ink = palette().color(QPalette::WindowText);
    if (underMouse() || isDown()) {
        QColor face = ink;
        face.setAlphaF(isDown() ? 0.16F : 0.08F);
        painter.setPen(Qt::NoPen);
        painter.setBrush(face);
        painter.drawRoundedRect(rect(), cornerRadius, cornerRadius);
    }
    if (hasFocus()) {
        painter.setPen(QPen(palette().color(QPalette::Highlight), 2));
        painter.setBrush(Qt::NoBrush);
        painter.drawRoundedRect(QRectF(rect()).adjusted(1, 1, -1, -1), cornerRadius, cornerRadius);
    }
    const QRect content = rect().adjusted(padding, padding, -padding, -padding);
    const auto visual = [&](const QRect& area) { return QStyle::visualRect(layoutDirection(), rect(), area); };
    if (isChecked()) {
        const QRect mark(content.x(), (height() - markSide) / 2, markSide, markSide);
        painter.drawPixmap(visual(mark).topLeft(),
                           SymbolIcon::pixmap(QStringLiteral("checkmark"), markSide, ink, devicePixelRatioF()));
    }
    const QRect lines = content.adjusted(markSide + padding, 0, -buttonSide, 0);
    const auto drawLine = [&](const QString& line, const QRect& area, int alignment) {
        const QString shown = painter.fontMetrics().elidedText(line, Qt::ElideRight, area.width());
        painter.drawText(visual(area), int(QStyle::visualAlignment(layoutDirection(), Qt::AlignLeft)) | alignment,
                         shown);
    };
    painter.setPen(ink);
    drawLine(text().simplified(), lines, Qt::AlignTop);
    QColor faint = ink;
    faint.setAlphaF(timeOpacity);
    painter.setPen(faint);
    painter.setFont(timeFont(font()));
    drawLine(m_time, lines, Qt::AlignBottom);
}
