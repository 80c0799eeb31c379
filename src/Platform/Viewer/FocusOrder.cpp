#include "FocusOrder.h"

#include "LinkNavigator.h"
#include "PDFAnnotation.h"
#include "PDFDocument.h"
#include "PDFFormField.h"
#include "PDFPage.h"
#include "PageColumn.h"
#include "RemarkNavigator.h"

#include <algorithm>

/// True when the link is read before the field: higher up, or further left on the same line.
static bool isBefore(const QRectF& link, const QRectF& field) {
    const bool sameLine = link.top() < field.center().y() && link.bottom() > field.center().y();
    return sameLine ? link.left() < field.left() : link.center().y() < field.center().y();
}

bool FocusOrder::isSeen(const Stop& stop) const {
    return QRectF(QPointF(0, 0), QSizeF(m_column.viewport())).contains(stop.rect.center());
}

bool FocusOrder::mayHaveFields(int page) const {
    const std::shared_ptr<PDFPage> live = m_column.document()->page(page);
    return live && PDFFormField::mayBeOn(*live);
}

FocusOrder::PageStops FocusOrder::stopsOf(int page, bool withFields) const {
    PageStops found;
    const std::shared_ptr<PDFPage> live = m_column.document()->page(page);
    if (!live)
        return found;
    const auto fields =
        withFields ? PDFFormField::fillableWidgets(*live) : std::vector<std::shared_ptr<PDFAnnotation>>();
    found.hasFields = !fields.empty();
    std::vector<LinkNavigator::Link> remarks;
    for (const RemarkNavigator::Place& place : m_remarks.onPage(page))
        remarks.push_back({place.annotation, place.rect});
    const std::vector<LinkNavigator::Link> links = m_links.inReadingOrder(page, remarks);
    auto link = links.begin();
    const QTransform toView = m_column.pageToView(page);
    for (const std::shared_ptr<PDFAnnotation>& field : fields) {
        const QRectF rect = toView.mapRect(field->bounds());
        for (; link != links.end() && isBefore(link->rect, rect); ++link)
            found.stops.push_back({link->annotation, link->rect});
        found.stops.push_back({field, rect});
    }
    for (; link != links.end(); ++link)
        found.stops.push_back({link->annotation, link->rect});
    return found;
}

std::shared_ptr<PDFAnnotation> FocusOrder::next(const std::shared_ptr<PDFAnnotation>& present, bool forward,
                                                bool withFields) const {
    if (!m_column.document())
        return nullptr;
    const auto [firstSeen, endSeen] = m_column.visiblePages();
    const std::shared_ptr<PDFPage> presentPage = present ? present->page() : nullptr;
    const int presentIndex = presentPage ? m_column.document()->index(presentPage.get()) : -1;
    bool isPast = presentIndex < 0; // whatever comes now is behind the present one
    bool isInForm = false;
    const int step = forward ? 1 : -1;
    for (int page = !isPast   ? presentIndex
                    : forward ? firstSeen
                              : endSeen - 1;
         page >= 0 && page < m_column.pageCount(); page += step) {
        const bool isPageSeen = page >= firstSeen && page < endSeen;
        if (!isPageSeen && page != presentIndex && !isInForm)
            return nullptr;
        if (!isPageSeen && page != presentIndex && !mayHaveFields(page))
            continue;
        PageStops found = stopsOf(page, withFields);
        if (!forward)
            std::reverse(found.stops.begin(), found.stops.end());
        isInForm = isInForm || (page == presentIndex && found.hasFields);
        for (const Stop& stop : found.stops) {
            // The way starts on the screen. Beyond it, it is that of the fields of a form.
            if (isPast && (isSeen(stop) || (found.hasFields && isInForm)))
                return stop.annotation;
            isPast = isPast || stop.annotation == present;
        }
        isPast = true; // also when the present one is no stop any more
    }
    return nullptr;
}
