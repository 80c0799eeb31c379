#include "SelectableText.h"

#include "MarkdownStyle.h"
#include "MarkdownTextWriter.h"
#include "PlainText.h"

#include <QFocusEvent>
#include <QMimeData>
#include <QTextBlock>
#include <QTextDocument>
#include <QWheelEvent>

#include <algorithm>
#include <cmath>

static constexpr qreal widestLine = 2000; // device-independent pixels
static constexpr QChar zeroWidthSpace(0x200B);
static constexpr qsizetype longestMeasured = 1'000; // letters, which take more room than that

static QString beginning(const QString& text) {
    qsizetype end = -1;
    for (int line = 0; line < SelectableText::mostLines; ++line) {
        end = text.indexOf(u'\n', end + 1);
        if (end < 0 || end >= SelectableText::mostShown)
            return PlainText::shortened(text, SelectableText::mostShown);
    }
    return end + 1 < text.size() ? text.left(end) + u'…' : text;
}

SelectableText::SelectableText(const QString& text, QWidget* parent)
    : QTextEdit(parent), m_text(text), m_shown(beginning(text)) {
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
    write();
    if (isCut())
        setToolTip(QStringLiteral("Only the beginning is shown. Select and copy all of it to get the whole text."));
    setAccessibleDescription(toolTip());
    QSizePolicy policy(QSizePolicy::Expanding, QSizePolicy::Preferred);
    policy.setHeightForWidth(true);
    setSizePolicy(policy);
}

SelectableText::~SelectableText() = default;

/// Each line is a paragraph, which has a direction of its own.
void SelectableText::write() {
    MarkdownTextWriter writer(MarkdownStyle(palette()), {}, {}, 0);
    QTextCursor cursor(document());
    const QStringList lines = m_shown.split(u'\n');
    for (qsizetype i = 0; i < lines.size(); ++i) {
        if (i > 0)
            cursor.insertBlock();
        writer.writePlain(cursor, lines[i], {});
    }
}

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
    for (QTextBlock line = document()->begin(); line.isValid() && width < widestLine; line = line.next())
        width = std::max(width, metrics.horizontalAdvance(line.text().left(longestMeasured)));
    // A pixel for what letters reach beyond their advance.
    return static_cast<int>(std::ceil(width)) + 1;
}

int SelectableText::heightForWidth(int width) const {
    document()->setTextWidth(width);
    return static_cast<int>(std::ceil(document()->size().height()));
}

QSize SelectableText::sizeHint() const {
    return {200, fontMetrics().lineSpacing()}; // the height follows the width, and takes long to find for two of them
}

QSize SelectableText::minimumSizeHint() const {
    return {40, fontMetrics().lineSpacing()};
}

/// What is selected of the shown text, without the breaks that were put into long words.
QString SelectableText::selectedText() const {
    QTextCursor cursor = textCursor();
    QString text = cursor.selectedText().replace(QChar::ParagraphSeparator, u'\n');
    const int start = cursor.selectionStart();
    for (qsizetype i = text.lastIndexOf(zeroWidthSpace); i >= 0;
         i = i > 0 ? text.lastIndexOf(zeroWidthSpace, i - 1) : -1) {
        cursor.setPosition(start + static_cast<int>(i) + 1);
        if (cursor.charFormat().hasProperty(MarkdownTextWriter::insertedBreak))
            text.remove(i, 1);
    }
    return text;
}

QMimeData* SelectableText::createMimeDataFromSelection() const {
    const QTextCursor cursor = textCursor();
    const bool reachesEnd = cursor.selectionEnd() == document()->characterCount() - 1;
    QString copied = selectedText();
    if (reachesEnd && cursor.selectionStart() == 0) {
        copied = m_text;
    } else if (reachesEnd && isCut()) {
        copied.chop(1);
        copied += QStringView(m_text).sliced(m_shown.size() - 1);
    }
    auto* mime = new QMimeData;
    mime->setText(copied);
    return mime;
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
