#include "SignaturePad.h"

#include <QMouseEvent>
#include <QPainter>
#include <QTabletEvent>

#include <utility>

static constexpr qreal cornerRadius = 8;
static constexpr int signingLineHeight = 136;
static constexpr int signingLineInset = 28;

SignaturePad::SignaturePad(QWidget* parent) : QWidget(parent) {
    setObjectName(QStringLiteral("signaturePad"));
    setAccessibleName(QStringLiteral("Area to sign on"));
    setFixedSize(SignaturePadStrokes::padSize);
    setCursor(Qt::CrossCursor);
}

SignaturePad::~SignaturePad() = default;

void SignaturePad::clear() {
    m_strokes.clear();
    m_isDrawing = false;
    update();
    Q_EMIT strokesChanged();
}

void SignaturePad::addPoint(QPointF point) {
    m_isDrawing = true;
    m_strokes.addPoint(point);
    update();
}

void SignaturePad::endStroke() {
    if (!std::exchange(m_isDrawing, false))
        return;
    m_strokes.endStroke();
    update();
    Q_EMIT strokesChanged();
}

void SignaturePad::mousePressEvent(QMouseEvent* event) {
    if (event->button() == Qt::LeftButton)
        addPoint(event->position());
}

void SignaturePad::mouseMoveEvent(QMouseEvent* event) {
    if (m_isDrawing)
        addPoint(event->position());
}

void SignaturePad::mouseReleaseEvent(QMouseEvent* event) {
    if (event->button() == Qt::LeftButton)
        endStroke();
}

// A pen event that is taken sends no mouse events after it.
void SignaturePad::tabletEvent(QTabletEvent* event) {
    event->accept();
    const bool begins = event->type() == QEvent::TabletPress && event->button() == Qt::LeftButton;
    const bool goesOn = event->type() == QEvent::TabletMove && m_isDrawing;
    if (begins || goesOn)
        addPoint(event->position());
    else if (event->type() == QEvent::TabletRelease)
        endStroke();
}

void SignaturePad::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QColor(0xC8, 0xCA, 0xCE));
    painter.setBrush(Qt::white);
    painter.drawRoundedRect(QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5), cornerRadius, cornerRadius);
    painter.setPen(QColor(0x9A, 0x9D, 0xA3));
    painter.drawLine(QPointF(signingLineInset, signingLineHeight + 0.5),
                     QPointF(width() - signingLineInset, signingLineHeight + 0.5));
    m_strokes.draw(painter);
}
