#include "PDFViewAccessible.h"

#include "PDFPage.h"
#include "PDFSelection.h"
#include "PDFView.h"
#include "PageText.h"

#include <algorithm>

void PDFViewAccessible::install() {
    static const bool installed = [] {
        QAccessible::installFactory([](const QString&, QObject* object) -> QAccessibleInterface* {
            auto* view = qobject_cast<PDFView*>(object);
            return view ? new PDFViewAccessible(*view) : nullptr;
        });
        return true;
    }();
    Q_UNUSED(installed)
}

PDFViewAccessible::PDFViewAccessible(PDFView& view) : QAccessibleWidget(&view, QAccessible::Document) {}

PDFView& PDFViewAccessible::view() const {
    return *static_cast<PDFView*>(widget());
}

void* PDFViewAccessible::interface_cast(QAccessible::InterfaceType type) {
    if (type == QAccessible::TextInterface)
        return static_cast<QAccessibleTextInterface*>(this);
    return QAccessibleWidget::interface_cast(type);
}

std::shared_ptr<const PageText> PDFViewAccessible::pageText() const {
    const std::shared_ptr<PDFPage> page = view().currentPage();
    return page ? page->text() : nullptr;
}

int PDFViewAccessible::characterCount() const {
    const auto text = pageText();
    return text ? static_cast<int>(text->string.size()) : 0;
}

QString PDFViewAccessible::text(int startOffset, int endOffset) const {
    const auto text = pageText();
    const int end = endOffset < 0 ? characterCount() : endOffset;
    return text ? text->string.mid(startOffset, end - startOffset) : QString();
}

int PDFViewAccessible::selectionCount() const {
    const std::shared_ptr<PDFPage> page = view().currentPage();
    return page ? static_cast<int>(view().selectedRanges(*page).size()) : 0;
}

void PDFViewAccessible::selection(int selectionIndex, int* startOffset, int* endOffset) const {
    *startOffset = 0;
    *endOffset = 0;
    if (selectionIndex < 0 || selectionIndex >= selectionCount())
        return;
    const auto range = view().selectedRanges(*view().currentPage())[static_cast<std::size_t>(selectionIndex)];
    *startOffset = range.first;
    *endOffset = std::min(range.second, characterCount());
}

void PDFViewAccessible::addSelection(int startOffset, int endOffset) {
    setSelection(0, startOffset, endOffset);
}

void PDFViewAccessible::removeSelection(int) {
    view().clearSelection();
}

void PDFViewAccessible::setSelection(int, int startOffset, int endOffset) {
    const std::shared_ptr<PDFPage> page = view().currentPage();
    const int count = characterCount();
    if (page && startOffset >= 0 && startOffset < endOffset)
        view().setCurrentSelection(PDFSelection({{page, std::min(startOffset, count), std::min(endOffset, count)}}));
}

int PDFViewAccessible::cursorPosition() const {
    int start = 0;
    int end = 0;
    selection(0, &start, &end);
    return end;
}

void PDFViewAccessible::setCursorPosition(int) {}

QRect PDFViewAccessible::characterRect(int offset) const {
    const auto text = pageText();
    if (!text || offset < 0 || offset >= characterCount())
        return {};
    const QRectF box = text->glyphs[static_cast<std::size_t>(offset)].quad.boundingRect();
    const QRect rect = view().convertFromPage(box, *view().currentPage()).toAlignedRect();
    return rect.translated(view().viewport()->mapToGlobal(QPoint(0, 0)));
}

int PDFViewAccessible::offsetAtPoint(const QPoint& point) const {
    const auto text = pageText();
    const QPointF viewPoint = view().viewport()->mapFromGlobal(QPointF(point));
    return text ? text->characterAt(view().convertToPage(viewPoint, *view().currentPage())) : -1;
}

void PDFViewAccessible::scrollToSubstring(int startIndex, int endIndex) {
    const std::shared_ptr<PDFPage> page = view().currentPage();
    if (page && startIndex >= 0 && startIndex < endIndex)
        view().goToSelection(PDFSelection({{page, startIndex, std::min(endIndex, characterCount())}}));
}

QString PDFViewAccessible::attributes(int, int* startOffset, int* endOffset) const {
    *startOffset = 0;
    *endOffset = characterCount();
    return {};
}
