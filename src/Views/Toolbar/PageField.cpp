#include "PageField.h"

#include <QFocusEvent>
#include <QKeyEvent>

PageField::PageField(QWidget* parent) : QLineEdit(parent) {
    setObjectName(QStringLiteral("pageField"));
    setAccessibleName(QStringLiteral("Page"));
    setToolTip(QStringLiteral("Page: type a number to go there"));
    setAlignment(Qt::AlignCenter);
    connect(this, &QLineEdit::editingFinished, this, &PageField::commit);
}

PageField::~PageField() = default;

void PageField::setIndicator(const QString& indicator) {
    m_indicator = indicator;
    // Scrolling must not take away what is being typed.
    if (!(hasFocus() && isModified()))
        setText(indicator);
    setEnabled(!indicator.isEmpty());
}

void PageField::setPageCount(int pageCount) {
    m_pageCount = pageCount;
    const QString widest = QString::number(qMax(pageCount, 100));
    setFixedWidth(fontMetrics().horizontalAdvance(QStringLiteral("%1 of %1").arg(widest)) + 28);
}

void PageField::commit() {
    const bool typed = isModified();
    bool isNumber = false;
    const int page = text().section(QStringLiteral(" of "), 0, 0).trimmed().toInt(&isNumber);
    setText(m_indicator);
    if (typed && isNumber && page >= 1 && page <= m_pageCount)
        Q_EMIT pageChosen(page - 1);
    if (hasFocus())
        selectAll();
}

void PageField::focusInEvent(QFocusEvent* event) {
    QLineEdit::focusInEvent(event);
    selectAll();
    m_selectOnRelease = event->reason() == Qt::MouseFocusReason;
}

void PageField::mouseReleaseEvent(QMouseEvent* event) {
    QLineEdit::mouseReleaseEvent(event);
    // The press that brought the focus has put the cursor somewhere.
    if (m_selectOnRelease && !hasSelectedText())
        selectAll();
    m_selectOnRelease = false;
}

void PageField::keyPressEvent(QKeyEvent* event) {
    if (event->key() != Qt::Key_Escape) {
        QLineEdit::keyPressEvent(event);
        return;
    }
    setText(m_indicator);
    selectAll();
}
