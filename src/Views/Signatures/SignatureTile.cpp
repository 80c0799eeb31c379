#include "SignatureTile.h"

#include "Palette.h"
#include "SymbolIcon.h"

#include <QImage>
#include <QKeyEvent>
#include <QPainter>
#include <QToolButton>

static constexpr QSize pictureSize{88, 56};
static constexpr int padding = 6;
static constexpr qreal cornerRadius = 8;
static constexpr int deleteSide = 18;
static constexpr int deleteSymbolSide = 16;

SignatureTile::SignatureTile(const std::optional<QImage>& image, int number, QWidget* parent)
    : QAbstractButton(parent) {
    setObjectName(QStringLiteral("signature%1").arg(number));
    setAccessibleName(QStringLiteral("Signature %1").arg(number));
    setToolTip(QStringLiteral("Use this signature"));
    setCheckable(true);
    setFocusPolicy(Qt::TabFocus);
    setFixedSize(sizeHint());
    if (image) {
        const qreal ratio = devicePixelRatioF();
        m_picture =
            QPixmap::fromImage(image->scaled(pictureSize * ratio, Qt::KeepAspectRatio, Qt::SmoothTransformation));
        m_picture.setDevicePixelRatio(ratio);
    }

    auto* deleteButton = new QToolButton(this);
    deleteButton->setObjectName(QStringLiteral("deleteSignature%1").arg(number));
    deleteButton->setAccessibleName(QStringLiteral("Delete signature %1").arg(number));
    deleteButton->setToolTip(QStringLiteral("Delete this signature"));
    // On the white card, whatever the desktop's colours are.
    deleteButton->setIcon(SymbolIcon::pixmap(QStringLiteral("xmark.circle.fill"), deleteSymbolSide, Palette::inkSlate,
                                             devicePixelRatioF()));
    deleteButton->setIconSize({deleteSymbolSide, deleteSymbolSide});
    deleteButton->setAutoRaise(true);
    deleteButton->setFocusPolicy(Qt::TabFocus);
    deleteButton->setGeometry(width() - deleteSide - 2, 2, deleteSide, deleteSide);
    connect(deleteButton, &QToolButton::clicked, this, &SignatureTile::deleteRequested);
}

SignatureTile::~SignatureTile() = default;

QSize SignatureTile::sizeHint() const {
    return pictureSize.grownBy({padding, padding, padding, padding});
}

void SignatureTile::keyPressEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter)
        click();
    else if (event->key() == Qt::Key_Delete)
        Q_EMIT deleteRequested();
    else
        QAbstractButton::keyPressEvent(event);
}

void SignatureTile::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const int border = isChecked() ? 2 : 1;
    const qreal inset = border / 2.0;
    painter.setPen(QPen(isChecked() ? Palette::brandBlue : QColor(0xB4, 0xB7, 0xBC), border));
    painter.setBrush(Qt::white);
    painter.drawRoundedRect(QRectF(rect()).adjusted(inset, inset, -inset, -inset), cornerRadius, cornerRadius);
    const QSizeF size = m_picture.deviceIndependentSize();
    painter.drawPixmap(QPointF((width() - size.width()) / 2, (height() - size.height()) / 2), m_picture);
    if (hasFocus()) {
        painter.setPen(QPen(palette().color(QPalette::Highlight), 1.5, Qt::DashLine));
        painter.setBrush(Qt::NoBrush);
        painter.drawRoundedRect(QRectF(rect()).adjusted(3.5, 3.5, -3.5, -3.5), cornerRadius - 3, cornerRadius - 3);
    }
}
