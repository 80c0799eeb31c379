#include "PointSizeField.h"

#include "SymbolIcon.h"

#include <QKeyEvent>
#include <QLineEdit>

#include <algorithm>
#include <cmath>

// The frame and the arrows.
static constexpr int chromeWidth = 34;
static constexpr int symbolWidth = 24;

PointSizeField::PointSizeField(const Range& range, const QString& name, QWidget* parent)
    : QAbstractSpinBox(parent), m_range(range), m_value(range.minimum) {
    setAccessibleName(name);
    lineEdit()->setAccessibleName(name);
    setToolTip(name);
    setFocusPolicy(Qt::StrongFocus);
    setFixedWidth(fontMetrics().horizontalAdvance(format(m_range.maximum + 0.5)) + chromeWidth);
    setValue(m_value);
    connect(this, &QAbstractSpinBox::editingFinished, this, &PointSizeField::commit);
}

PointSizeField::~PointSizeField() = default;

QString PointSizeField::format(double value) {
    return std::floor(value) == value ? QString::number(value, 'f', 0) : QString::number(value, 'f', 1);
}

void PointSizeField::setValue(double value) {
    // What is being typed stays until it is committed.
    const bool isTyping = hasFocus() && isEdited();
    m_value = value;
    if (!isTyping)
        lineEdit()->setText(format(value));
}

void PointSizeField::setSymbol(const QString& symbolName) {
    lineEdit()->addAction(SymbolIcon::icon(symbolName), QLineEdit::LeadingPosition);
    setFixedWidth(maximumWidth() + symbolWidth);
}

bool PointSizeField::isEdited() const {
    return text() != format(m_value);
}

void PointSizeField::take(double value) {
    m_value = std::clamp(value, m_range.minimum, m_range.maximum);
    lineEdit()->setText(format(m_value));
    Q_EMIT committed(m_value);
}

void PointSizeField::commit() {
    if (!isEdited())
        return;
    bool isNumber = false;
    // Either sign before the decimals, whatever the locale: there are no thousands here.
    const double typed = text().trimmed().replace(QLatin1Char(','), QLatin1Char('.')).toDouble(&isNumber);
    if (isNumber && typed > 0)
        take(typed);
    else
        lineEdit()->setText(format(m_value));
}

void PointSizeField::stepBy(int steps) {
    commit();
    take(m_value + steps * m_range.step);
    selectAll();
}

QAbstractSpinBox::StepEnabled PointSizeField::stepEnabled() const {
    // A number that is still being typed may lead anywhere.
    const bool isOpen = isEdited();
    StepEnabled result = StepNone;
    result.setFlag(StepUpEnabled, isOpen || m_value < m_range.maximum);
    result.setFlag(StepDownEnabled, isOpen || m_value > m_range.minimum);
    return result;
}

void PointSizeField::keyPressEvent(QKeyEvent* event) {
    if (event->key() != Qt::Key_Escape) {
        QAbstractSpinBox::keyPressEvent(event);
        return;
    }
    lineEdit()->setText(format(m_value));
    selectAll();
}

void PointSizeField::wheelEvent(QWheelEvent* event) {
    // A wheel that turns over the toolbar by chance must not change a size.
    if (hasFocus())
        QAbstractSpinBox::wheelEvent(event);
    else
        event->ignore();
}
