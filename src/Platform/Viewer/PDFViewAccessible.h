#pragma once

#include "FlowingText.h"

#include <QAccessibleTextInterface>
#include <QAccessibleWidget>

#include <memory>
#include <optional>

class PDFSelection;
class PDFView;
class PageText;

/// What a screen reader sees of a view: a document whose text is that of the current page, with words over line ends
/// whole. All offsets are those of that text.
class PDFViewAccessible : public QAccessibleWidget, public QAccessibleTextInterface {
public:
    /// Makes the desktop's accessibility find this for every view. Does nothing after the first call.
    static void install();

    explicit PDFViewAccessible(PDFView& view);

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
    [[nodiscard]] PDFView& view() const;
    /// The text of a page with how it is spoken.
    struct Spoken {
        std::shared_ptr<const PageText> page; ///< never null
        FlowingText text;
    };
    [[nodiscard]] const Spoken& spoken() const;
    /// Empty for a range without text.
    [[nodiscard]] PDFSelection selectionOf(int startOffset, int endOffset) const;

    mutable std::optional<Spoken> m_spoken; // as of the last question
};
