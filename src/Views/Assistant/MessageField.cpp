#include "MessageField.h"

#include <QAbstractTextDocumentLayout>
#include <QDragEnterEvent>
#include <QKeyEvent>
#include <QMimeData>
#include <QTextBlock>
#include <QUrl>

#include <algorithm>
#include <cmath>

MessageField::MessageField(QWidget* parent) : QTextEdit(parent) {
    setAcceptRichText(false);
    setFrameShape(QFrame::NoFrame);
    setTabChangesFocus(true);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    setWordWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
    connect(document()->documentLayout(), &QAbstractTextDocumentLayout::documentSizeChanged, this,
            &MessageField::fitHeight);
    fitHeight();
}

MessageField::~MessageField() = default;

void MessageField::setMessage(const QString& message) {
    if (toPlainText() == message)
        return;
    setPlainText(message);
    moveCursor(QTextCursor::End);
}

int MessageField::heightOfLines(int count) const {
    const qreal lineHeight = std::ceil(QFontMetricsF(font()).lineSpacing());
    return static_cast<int>(std::ceil(count * lineHeight + 2 * document()->documentMargin()));
}

void MessageField::fitHeight() {
    const int wanted = static_cast<int>(std::ceil(document()->size().height()));
    const int most = heightOfLines(mostLines);
    setVerticalScrollBarPolicy(wanted > most ? Qt::ScrollBarAsNeeded : Qt::ScrollBarAlwaysOff);
    setFixedHeight(std::clamp(wanted, heightOfLines(1), most));
}

QSize MessageField::sizeHint() const {
    return {QTextEdit::sizeHint().width(), height()};
}

QSize MessageField::minimumSizeHint() const {
    return {80, heightOfLines(1)};
}

void MessageField::keyPressEvent(QKeyEvent* event) {
    if (event->key() != Qt::Key_Return && event->key() != Qt::Key_Enter) {
        QTextEdit::keyPressEvent(event);
        return;
    }
    const Qt::KeyboardModifiers modifiers = event->modifiers() & ~Qt::KeyboardModifiers(Qt::KeypadModifier);
    event->accept();
    if (modifiers == Qt::NoModifier && onReturn && onReturn())
        return;
    textCursor().insertBlock();
    ensureCursorVisible();
}

/// A file is for what the field stands in; here only its address would be written.
void MessageField::dragEnterEvent(QDragEnterEvent* event) {
    const QList<QUrl> urls = event->mimeData()->urls();
    if (std::any_of(urls.begin(), urls.end(), [](const QUrl& url) { return url.isLocalFile(); }))
        event->ignore();
    else
        QTextEdit::dragEnterEvent(event);
}

void MessageField::changeEvent(QEvent* event) {
    QTextEdit::changeEvent(event);
    if (event->type() == QEvent::FontChange)
        fitHeight();
}
