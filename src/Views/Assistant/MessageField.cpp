#include "MessageField.h"

#include "PlainText.h"

#include <QAbstractTextDocumentLayout>
#include <QDragEnterEvent>
#include <QKeyEvent>
#include <QLocale>
#include <QMimeData>
#include <QPainter>
#include <QTextCursor>
#include <QTextDocumentFragment>
#include <QTextImageFormat>
#include <QUrl>

#include <algorithm>
#include <cmath>

static constexpr qsizetype longestInserted = 10'000; // code units that are shown as they are
static constexpr qsizetype shownEnd = 200; // of a longer text, at either side of the sign, so that the sign is seen
/// Of the sign's format: the text that it stands for.
static constexpr int hiddenText = QTextFormat::UserProperty;

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
    if (this->message() == message)
        return;
    if (message.size() <= longestInserted) {
        setPlainText(message);
    } else {
        QTextCursor cursor(document());
        cursor.beginEditBlock(); // which tells of one change
        cursor.select(QTextCursor::Document);
        insert(cursor, message);
        cursor.endEditBlock();
    }
    moveCursor(QTextCursor::End);
}

QString MessageField::message() const {
    return expanded(toPlainText(), 0);
}

/// `shown` is the text of the document from `position`; with what its signs stand for.
QString MessageField::expanded(const QString& shown, int position) const {
    QString result;
    qsizetype taken = 0;
    for (qsizetype i = shown.indexOf(QChar::ObjectReplacementCharacter); i >= 0;
         i = shown.indexOf(QChar::ObjectReplacementCharacter, i + 1)) {
        QTextCursor cursor(document());
        cursor.setPosition(position + static_cast<int>(i) + 1);
        const QTextCharFormat format = cursor.charFormat();
        if (!format.isImageFormat()) // written or pasted as it is
            continue;
        result += QStringView(shown).sliced(taken, i - taken);
        result += format.stringProperty(hiddenText);
        taken = i + 1;
    }
    return taken == 0 ? shown : result.append(QStringView(shown).sliced(taken));
}

void MessageField::insert(QTextCursor cursor, const QString& text) {
    if (text.size() <= longestInserted) {
        cursor.insertText(text, {});
        return;
    }
    const qsizetype from = PlainText::characterEnd(text, shownEnd);
    const qsizetype to = PlainText::characterEnd(text, text.size() - shownEnd);
    cursor.beginEditBlock();
    cursor.insertText(text.left(from), {});
    insertSign(cursor, text.sliced(from, to - from));
    cursor.insertText(text.sliced(to), {});
    cursor.endEditBlock();
}

/// A picture that says how much it stands for, in a colour that can be seen on light and on dark grounds.
void MessageField::insertSign(QTextCursor& cursor, const QString& hidden) {
    constexpr QColor grey(0x80, 0x80, 0x80);
    constexpr int padding = 6;
    const QString label = QStringLiteral("… %1 more characters …").arg(QLocale().toString(hidden.size()));
    const QFontMetrics metrics = fontMetrics();
    const QSize size(metrics.horizontalAdvance(label) + 2 * padding, metrics.height());
    QImage image(size * devicePixelRatioF(), QImage::Format_ARGB32_Premultiplied);
    image.setDevicePixelRatio(devicePixelRatioF());
    image.fill(Qt::transparent);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    QColor face = grey;
    face.setAlphaF(0.2F);
    painter.setPen(Qt::NoPen);
    painter.setBrush(face);
    painter.drawRoundedRect(QRect({}, size), padding, padding);
    painter.setPen(grey);
    painter.setFont(font());
    painter.drawText(QRect({}, size), Qt::AlignCenter, label);
    painter.end();

    QTextImageFormat format;
    format.setName(QStringLiteral("sign:%1").arg(++m_signCount));
    format.setProperty(QTextFormat::ImageAltText, label);
    format.setProperty(hiddenText, hidden);
    format.setVerticalAlignment(QTextCharFormat::AlignMiddle);
    document()->addResource(QTextDocument::ImageResource, QUrl(format.name()), image);
    cursor.insertImage(format);
}

void MessageField::insertFromMimeData(const QMimeData* source) {
    if (!source->hasText())
        return;
    insert(textCursor(), source->text());
    ensureCursorVisible();
}

QMimeData* MessageField::createMimeDataFromSelection() const {
    const QTextCursor cursor = textCursor();
    auto* copied = new QMimeData;
    copied->setText(expanded(cursor.selection().toPlainText(), cursor.selectionStart()));
    return copied;
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
