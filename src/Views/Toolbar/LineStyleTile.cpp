#include "LineStyleTile.h"

#include "LineEndStyle.h"
#include "LineStylePreview.h"
#include "Palette.h"

#include <QKeyEvent>
#include <QLabel>
#include <QPainter>
#include <QVBoxLayout>

static constexpr qreal titleSize = 9;
static constexpr qreal cornerRadius = 8;
static constexpr float currentOpacity = 0.18F;

LineStyleTile::LineStyleTile(const LineEndStyleInfo& info, QWidget* parent) : QAbstractButton(parent) {
    setObjectName(QStringLiteral("lineStyle-") + info.title);
    setText(info.title);
    setAccessibleName(info.title);
    setCheckable(true);
    setFocusPolicy(Qt::TabFocus);
    setAttribute(Qt::WA_Hover);

    auto* title = new QLabel(info.title);
    QFont font = title->font();
    font.setPointSizeF(titleSize);
    title->setFont(font);
    title->setAlignment(Qt::AlignCenter);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(8, 6, 8, 5);
    layout->setSpacing(2);
    layout->addWidget(new LineStylePreview(info.style), 0, Qt::AlignHCenter);
    layout->addWidget(title);
}

LineStyleTile::~LineStyleTile() = default;

QSize LineStyleTile::sizeHint() const {
    return layout()->sizeHint();
}

void LineStyleTile::keyPressEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_Space)
        QAbstractButton::keyPressEvent(event);
    else
        event->ignore();
}

void LineStyleTile::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    QColor background = isChecked() ? Palette::brandBlue : palette().color(QPalette::WindowText);
    background.setAlphaF(isChecked() ? currentOpacity : underMouse() ? 0.08F : 0.0F);
    painter.setBrush(background);
    painter.setPen(hasFocus() ? QPen(palette().color(QPalette::Highlight), 2) : QPen(Qt::NoPen));
    painter.drawRoundedRect(QRectF(rect()).adjusted(1, 1, -1, -1), cornerRadius, cornerRadius);
}
