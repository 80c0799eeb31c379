#pragma once

#include <QAccessibleTextInterface>
#include <QAccessibleWidget>
#include <QPointer>
#include <QTextDocument>

#include <vector>

class MarkdownBrowser;

/// What a screen reader sees of a reply: its text as it is copied, with formulas as their source. All offsets are those
/// of that text.
class MarkdownAccessible : public QAccessibleWidget, public QAccessibleTextInterface {
public:
    /// Makes the desktop's accessibility find this for every reply. Does nothing after the first call.
    static void install();

    explicit MarkdownAccessible(MarkdownBrowser& browser);

    void* interface_cast(QAccessible::InterfaceType type) override;

    void selection(int selectionIndex, int* startOffset, int* endOffset) const override;
    [[nodiscard]] int selectionCount() const override;
    void addSelection(int startOffset, int endOffset) override;
    void removeSelection(int selectionIndex) override;
    void setSelection(int selectionIndex, int startOffset, int endOffset) override;
    [[nodiscard]] int cursorPosition() const override;
    void setCursorPosition(int position) override;
    [[nodiscard]] QString text(int startOffset, int endOffset) const override;
    using QAccessibleWidget::text;
    [[nodiscard]] int characterCount() const override;
    [[nodiscard]] QRect characterRect(int offset) const override;
    [[nodiscard]] int offsetAtPoint(const QPoint& point) const override;
    void scrollToSubstring(int startIndex, int endIndex) override;
    QString attributes(int offset, int* startOffset, int* endOffset) const override;

private:
    [[nodiscard]] MarkdownBrowser& browser() const;
    /// Reads the document anew when it is another.
    void update() const;
    [[nodiscard]] int offsetOf(int position) const;
    /// The place in the document of what is spoken there.
    [[nodiscard]] int positionOf(int offset) const;

    mutable QPointer<QTextDocument> m_document;
    mutable QString m_text;
    mutable std::vector<int> m_offsets; ///< in the text, of each position in the document
};
