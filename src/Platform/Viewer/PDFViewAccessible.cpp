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

const PDFViewAccessible::Spoken& PDFViewAccessible::spoken() const {
    const std::shared_ptr<PDFPage> page = view().currentPage();
    const std::shared_ptr<const PageText> text = page ? page->text() : std::make_shared<const PageText>();
    if (!m_spoken || m_spoken->page != text)
        m_spoken = Spoken{text, FlowingText(*text)};
    return *m_spoken;
}

PDFSelection PDFViewAccessible::selectionOf(int startOffset, int endOffset) const {
    const int end = std::min(endOffset, characterCount());
    if (startOffset < 0 || startOffset >= end)
        return {};
    const FlowingText& text = spoken().text;
    return PDFSelection({{view().currentPage(), text.pageOffset(startOffset), text.pageOffset(end - 1) + 1}});
}

int PDFViewAccessible::characterCount() const {
    return static_cast<int>(spoken().text.string().size());
}

QString PDFViewAccessible::text(int startOffset, int endOffset) const {
    const int end = endOffset < 0 ? characterCount() : endOffset;
    return spoken().text.string().mid(startOffset, end - startOffset);
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
    *startOffset = spoken().text.offsetOf(range.first);
    *endOffset = spoken().text.offsetOf(std::min(range.second, static_cast<int>(spoken().page->string.size())));
}

void PDFViewAccessible::addSelection(int startOffset, int endOffset) {
    setSelection(0, startOffset, endOffset);
}

void PDFViewAccessible::removeSelection(int) {
    view().clearSelection();
}

void PDFViewAccessible::setSelection(int, int startOffset, int endOffset) {
    const PDFSelection wanted = selectionOf(startOffset, endOffset);
    if (!wanted.isEmpty())
        view().setCurrentSelection(wanted);
}

int PDFViewAccessible::cursorPosition() const {
    int start = 0;
    int end = 0;
    selection(0, &start, &end);
    return end;
}

void PDFViewAccessible::setCursorPosition(int) {}

QRect PDFViewAccessible::characterRect(int offset) const {
    if (offset < 0 || offset >= characterCount())
        return {};
    const auto glyph = static_cast<std::size_t>(spoken().text.pageOffset(offset));
    const QRectF box = spoken().page->glyphs[glyph].quad.boundingRect();
    const QRect rect = view().convertFromPage(box, *view().currentPage()).toAlignedRect();
    return rect.translated(view().viewport()->mapToGlobal(QPoint(0, 0)));
}

int PDFViewAccessible::offsetAtPoint(const QPoint& point) const {
    const std::shared_ptr<PDFPage> page = view().currentPage();
    const QPointF viewPoint = view().viewport()->mapFromGlobal(QPointF(point));
    const int found = page ? spoken().page->characterAt(view().convertToPage(viewPoint, *page)) : -1;
    return found < 0 ? found : spoken().text.offsetOf(found);
}

void PDFViewAccessible::scrollToSubstring(int startIndex, int endIndex) {
    const PDFSelection wanted = selectionOf(startIndex, endIndex);
    if (!wanted.isEmpty())
        view().goToSelection(wanted);
}

QString PDFViewAccessible::attributes(int, int* startOffset, int* endOffset) const {
    *startOffset = 0;
    *endOffset = characterCount();
    return {};
}
