#include "SelectableText.h"

#include "MarkdownStyle.h"

#include <QFocusEvent>
#include <QTextBlock>
#include <QTextDocument>
#include <QWheelEvent>

#include <algorithm>
#include <cmath>

SelectableText::SelectableText(const QString& text, QWidget* parent) : QTextEdit(parent) {
    setReadOnly(true);
    setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    setFrameShape(QFrame::NoFrame);
    setTabChangesFocus(true);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setWordWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
    viewport()->setAutoFillBackground(false);
    document()->setDocumentMargin(0);
    document()->setUndoRedoEnabled(false);
    setFont(MarkdownStyle(palette()).body().font());
    setPlainText(text);
    QSizePolicy policy(QSizePolicy::Expanding, QSizePolicy::Preferred);
    policy.setHeightForWidth(true);
    setSizePolicy(policy);
}

SelectableText::~SelectableText() = default;

void SelectableText::setTextColor(const QColor& color) {
    QPalette colors = palette();
    if (colors.color(QPalette::Text) == color)
        return;
    colors.setColor(QPalette::Text, color);
    setPalette(colors);
}

int SelectableText::naturalWidth() const {
    const QFontMetricsF metrics(font());
    qreal width = 0;
    for (QTextBlock block = document()->begin(); block.isValid(); block = block.next())
        width = std::max(width, metrics.horizontalAdvance(block.text()));
    // A pixel for what letters reach beyond their advance.
    return static_cast<int>(std::ceil(width)) + 1;
}

int SelectableText::heightForWidth(int width) const {
    document()->setTextWidth(width);
    return static_cast<int>(std::ceil(document()->size().height()));
}

QSize SelectableText::sizeHint() const {
    return {200, heightForWidth(200)};
}

QSize SelectableText::minimumSizeHint() const {
    return {40, fontMetrics().lineSpacing()};
}

void SelectableText::wheelEvent(QWheelEvent* event) {
    event->ignore();
}

void SelectableText::focusOutEvent(QFocusEvent* event) {
    QTextEdit::focusOutEvent(event);
    // One selection at a time is enough; that of a menu's text has to stay for the menu.
    if (event->reason() == Qt::PopupFocusReason || event->reason() == Qt::ActiveWindowFocusReason)
        return;
    QTextCursor cursor = textCursor();
    cursor.clearSelection();
    setTextCursor(cursor);
}
