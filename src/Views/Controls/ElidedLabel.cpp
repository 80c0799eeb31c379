#include "ElidedLabel.h"

#include "PlainText.h"

#include <QPainter>
#include <QStyle>

ElidedLabel::ElidedLabel(const QString& text, QWidget* parent) : QLabel(parent) {
    setTextFormat(Qt::PlainText);
    setLine(text);
}

ElidedLabel::~ElidedLabel() = default;

void ElidedLabel::setLine(const QString& text) {
    setText(PlainText::line(text));
    setToolTip(PlainText::toolTip(text));
    setAccessibleName(this->text());
}

QSize ElidedLabel::minimumSizeHint() const {
    return {fontMetrics().averageCharWidth() * 8, QLabel::minimumSizeHint().height()};
}

void ElidedLabel::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    const QRect area = contentsRect();
    style()->drawItemText(&painter, area, int(Qt::AlignVCenter | Qt::AlignLeft), palette(), isEnabled(),
                          fontMetrics().elidedText(text(), Qt::ElideMiddle, area.width()), foregroundRole());
}
