#include "DropHighlight.h"

#include "Palette.h"
#include "SymbolPicture.h"

#include <QAccessible>
#include <QEvent>
#include <QLabel>
#include <QPainter>
#include <QVBoxLayout>

static constexpr int symbolSide = 40;
static constexpr int margin = 6;
static constexpr qreal cornerRadius = 14;

DropHighlight::DropHighlight(const QString& sentence, QWidget* covered) : QWidget(covered) {
    setObjectName(QStringLiteral("dropHighlight"));
    setAccessibleName(sentence);
    setAttribute(Qt::WA_TransparentForMouseEvents);
    auto* label = new QLabel(sentence);
    label->setObjectName(QStringLiteral("dropSentence"));
    label->setAlignment(Qt::AlignCenter);
    label->setWordWrap(true);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(3 * margin, 3 * margin, 3 * margin, 3 * margin);
    layout->addStretch(1);
    layout->addWidget(new SymbolPicture(QStringLiteral("paperclip"), symbolSide), 0, Qt::AlignHCenter);
    layout->addWidget(label);
    layout->addStretch(1);
    covered->installEventFilter(this);
    hide();
}

DropHighlight::~DropHighlight() = default;

void DropHighlight::setShown(bool shown) {
    if (shown != isHidden())
        return;
    setGeometry(parentWidget()->rect());
    raise();
    setVisible(shown);
    if (!shown)
        return;
    QAccessibleEvent alert(this, QAccessible::Alert);
    QAccessible::updateAccessibility(&alert);
}

bool DropHighlight::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::Resize)
        setGeometry(parentWidget()->rect());
    return QWidget::eventFilter(watched, event);
}

void DropHighlight::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    QColor ground = palette().color(QPalette::Window);
    ground.setAlphaF(0.94F); // what is below stays to be guessed
    painter.fillRect(rect(), ground);
    QColor face = Palette::brandBlue;
    face.setAlphaF(0.16F);
    painter.setPen(QPen(Palette::brandBlue, 2.5, Qt::DashLine));
    painter.setBrush(face);
    painter.drawRoundedRect(QRectF(rect()).adjusted(margin, margin, -margin, -margin), cornerRadius, cornerRadius);
}
