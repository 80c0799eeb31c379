#include "PassingNotice.h"

#include "Palette.h"
#include "PlainText.h"

#include <QAccessible>
#include <QEvent>
#include <QHBoxLayout>
#include <QLabel>
#include <QPainter>
#include <QPropertyAnimation>

static constexpr int distanceFromEdge = 14;
static constexpr qreal cornerRadius = 17;
static constexpr std::chrono::milliseconds appearTime{150};
static constexpr std::chrono::milliseconds disappearTime{250};

PassingNotice::PassingNotice(QWidget* covered)
    : QWidget(covered), m_label(new QLabel(this)), m_fade(new QPropertyAnimation(this, "opacity", this)) {
    setObjectName(QStringLiteral("passingNotice"));
    setAttribute(Qt::WA_TransparentForMouseEvents);
    setFocusPolicy(Qt::NoFocus);
    m_label->setTextFormat(Qt::PlainText);
    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(18, 9, 18, 9);
    layout->addWidget(m_label);
    covered->installEventFilter(this);
    m_dismissTimer.setSingleShot(true);
    connect(&m_dismissTimer, &QTimer::timeout, this, [this] { fadeTo(0.0, disappearTime); });
    connect(m_fade, &QPropertyAnimation::finished, this, [this] {
        if (m_opacity <= 0.0)
            hide();
    });
    setOpacity(0.0);
    hide();
}

PassingNotice::~PassingNotice() = default;

QString PassingNotice::message() const {
    return m_dismissTimer.isActive() ? m_label->text() : QString();
}

void PassingNotice::announce(const QString& message, std::chrono::milliseconds time) {
    m_label->setText(PlainText::paragraphs(message));
    setAccessibleName(m_label->text());
    m_dismissTimer.start(time);
    place();
    show();
    raise();
    fadeTo(1.0, appearTime);
    QAccessibleEvent alert(this, QAccessible::Alert);
    QAccessible::updateAccessibility(&alert);
}

void PassingNotice::fadeTo(qreal opacity, std::chrono::milliseconds duration) {
    m_fade->stop();
    m_fade->setStartValue(m_opacity);
    m_fade->setEndValue(opacity);
    m_fade->setDuration(static_cast<int>(duration.count()));
    m_fade->setEasingCurve(QEasingCurve::OutQuad);
    m_fade->start();
}

void PassingNotice::setOpacity(qreal opacity) {
    m_opacity = opacity;
    QColor text = Qt::white;
    text.setAlphaF(static_cast<float>(opacity));
    QPalette colors = m_label->palette();
    colors.setColor(QPalette::WindowText, text);
    m_label->setPalette(colors);
    update();
}

void PassingNotice::place() {
    const int available = parentWidget()->width() - 2 * distanceFromEdge;
    m_label->setWordWrap(false);
    const int natural = sizeHint().width();
    m_label->setWordWrap(natural > available);
    const int width = qMin(natural, available);
    const int height = natural > available ? layout()->totalHeightForWidth(width) : sizeHint().height();
    setGeometry((parentWidget()->width() - width) / 2, distanceFromEdge, width, height);
}

bool PassingNotice::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::Resize && !isHidden())
        place();
    return QWidget::eventFilter(watched, event);
}

void PassingNotice::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    QColor background = Palette::inkSlate;
    background.setAlphaF(static_cast<float>(0.94 * m_opacity));
    painter.setPen(Qt::NoPen);
    painter.setBrush(background);
    painter.drawRoundedRect(rect(), cornerRadius, cornerRadius);
}
