#include "MarkdownAccessible.h"

#include "MarkdownBrowser.h"
#include "MarkdownTextWriter.h"

#include <QTextBlock>

#include <algorithm>

void MarkdownAccessible::install() {
    static const bool installed = [] {
        QAccessible::installFactory([](const QString&, QObject* object) -> QAccessibleInterface* {
            auto* browser = qobject_cast<MarkdownBrowser*>(object);
            return browser ? new MarkdownAccessible(*browser) : nullptr;
        });
        return true;
    }();
    Q_UNUSED(installed)
}

MarkdownAccessible::MarkdownAccessible(MarkdownBrowser& browser) : QAccessibleWidget(&browser, QAccessible::Document) {}

MarkdownBrowser& MarkdownAccessible::browser() const {
    return *static_cast<MarkdownBrowser*>(widget());
}

void* MarkdownAccessible::interface_cast(QAccessible::InterfaceType type) {
    if (type == QAccessible::TextInterface)
        return static_cast<QAccessibleTextInterface*>(this);
    return QAccessibleWidget::interface_cast(type);
}

void MarkdownAccessible::update() const {
    if (m_document == browser().document())
        return;
    m_document = browser().document();
    m_text.clear();
    m_offsets.assign(static_cast<std::size_t>(m_document->characterCount()) + 1, 0);
    for (QTextBlock block = m_document->begin(); block.isValid(); block = block.next()) {
        if (block.position() > 0)
            m_text += u'\n';
        for (auto part = block.begin(); !part.atEnd(); ++part) {
            const QTextFragment fragment = part.fragment();
            const QTextCharFormat format = fragment.charFormat();
            const QString characters = fragment.text();
            for (qsizetype i = 0; i < characters.size(); ++i) {
                m_offsets[static_cast<std::size_t>(fragment.position() + i)] = static_cast<int>(m_text.size());
                if (format.hasProperty(MarkdownTextWriter::formulaSource))
                    m_text += format.stringProperty(MarkdownTextWriter::formulaSource);
                else if (!format.hasProperty(MarkdownTextWriter::insertedBreak))
                    m_text += characters[i] == QChar::LineSeparator ? QChar(u'\n') : characters[i];
            }
        }
        const auto end = static_cast<std::size_t>(block.position() + block.length() - 1);
        std::fill(m_offsets.begin() + static_cast<std::ptrdiff_t>(end), m_offsets.end(),
                  static_cast<int>(m_text.size()));
    }
}

int MarkdownAccessible::offsetOf(int position) const {
    update();
    return m_offsets[static_cast<std::size_t>(std::clamp(position, 0, static_cast<int>(m_offsets.size()) - 1))];
}

int MarkdownAccessible::positionOf(int offset) const {
    update();
    // Of several positions with one offset, the last is that of what is spoken.
    const auto behind = std::upper_bound(m_offsets.begin(), m_offsets.end(), offset);
    const auto position = static_cast<int>(behind - m_offsets.begin()) - 1;
    return std::clamp(position, 0, m_document->characterCount() - 1);
}

int MarkdownAccessible::characterCount() const {
    update();
    return static_cast<int>(m_text.size());
}

QString MarkdownAccessible::text(int startOffset, int endOffset) const {
    update();
    const int end = endOffset < 0 ? characterCount() : endOffset;
    return m_text.mid(startOffset, end - startOffset);
}

int MarkdownAccessible::selectionCount() const {
    return browser().textCursor().hasSelection() ? 1 : 0;
}

void MarkdownAccessible::selection(int selectionIndex, int* startOffset, int* endOffset) const {
    const QTextCursor cursor = browser().textCursor();
    const bool isThere = selectionIndex == 0 && cursor.hasSelection();
    *startOffset = isThere ? offsetOf(cursor.selectionStart()) : 0;
    *endOffset = isThere ? offsetOf(cursor.selectionEnd()) : 0;
}

void MarkdownAccessible::addSelection(int startOffset, int endOffset) {
    setSelection(0, startOffset, endOffset);
}

void MarkdownAccessible::removeSelection(int) {
    QTextCursor cursor = browser().textCursor();
    cursor.clearSelection();
    browser().setTextCursor(cursor);
}

void MarkdownAccessible::setSelection(int, int startOffset, int endOffset) {
    QTextCursor cursor(browser().document());
    cursor.setPosition(positionOf(startOffset));
    cursor.setPosition(positionOf(endOffset), QTextCursor::KeepAnchor);
    browser().setTextCursor(cursor);
}

int MarkdownAccessible::cursorPosition() const {
    return offsetOf(browser().textCursor().position());
}

void MarkdownAccessible::setCursorPosition(int position) {
    setSelection(0, position, position);
}

QRect MarkdownAccessible::characterRect(int offset) const {
    if (offset < 0 || offset >= characterCount())
        return {};
    QTextCursor cursor(browser().document());
    cursor.setPosition(positionOf(offset));
    const QRect start = browser().cursorRect(cursor);
    cursor.movePosition(QTextCursor::NextCharacter);
    const QRect end = browser().cursorRect(cursor);
    const bool isOneLine = end.left() > start.left() && end.top() < start.bottom() && start.top() < end.bottom();
    const QRect rect = isOneLine ? start.united(end) : start;
    return rect.translated(browser().viewport()->mapToGlobal(QPoint(0, 0)));
}

int MarkdownAccessible::offsetAtPoint(const QPoint& point) const {
    return offsetOf(browser().cursorForPosition(browser().viewport()->mapFromGlobal(point)).position());
}

void MarkdownAccessible::scrollToSubstring(int startIndex, int endIndex) {
    setSelection(0, startIndex, endIndex);
}

QString MarkdownAccessible::attributes(int, int* startOffset, int* endOffset) const {
    *startOffset = 0;
    *endOffset = characterCount();
    return {};
}
