#include "PageFields.h"

#include "PDFAnnotation.h"
#include "PDFPage.h"

#include <algorithm>
#include <optional>
#include <utility>

static bool isEmpty(const PDFFormField& field) {
    const QStringList value = field.value();
    const bool isButton =
        field.kind() == PDFFormField::Kind::checkBox || field.kind() == PDFFormField::Kind::radioButtons;
    return std::all_of(value.begin(), value.end(), [isButton](const QString& part) {
        return part.isEmpty() || (isButton && part == QLatin1String("Off"));
    });
}

/// Without a field for a widget that has none, or that doesn't show.
static PageFields::Entry entryOf(const std::shared_ptr<PDFAnnotation>& widget) {
    PageFields::Entry entry;
    entry.widget = widget;
    const auto field = widget->shouldDisplay() ? PDFFormField::of(widget) : std::nullopt;
    if (!field)
        return entry;
    entry.bounds = widget->bounds();
    entry.kind = field->kind();
    entry.isFillable = field->isFillable();
    entry.isMissing = entry.isFillable && field->isRequired() && isEmpty(*field);
    return entry;
}

const std::vector<PageFields::Entry>& PageFields::fields(const std::shared_ptr<PDFPage>& page) {
    Page& noted = m_pages[page.get()];
    if (noted.page.lock() != page) { // the first call, or another page that was at this address
        noted = {};
        noted.page = page;
    }
    if (std::exchange(noted.isStale, false))
        refresh(noted, *page);
    return noted.fields;
}

const std::vector<PageFields::Entry>* PageFields::known(const std::shared_ptr<PDFPage>& page) {
    const auto found = m_pages.find(page.get());
    return found != m_pages.end() && found->second.page.lock() == page ? &fields(page) : nullptr;
}

void PageFields::noteChange(const PDFPage& page, const QRectF& area) {
    const auto found = m_pages.find(&page);
    if (found == m_pages.end())
        return;
    Page& noted = found->second;
    if (area.isNull())
        noted.fields.clear();
    noted.staleArea |= area;
    noted.isStale = true;
}

/// Asks the fields again that are new or lie where something changed.
void PageFields::refresh(Page& noted, const PDFPage& page) {
    std::vector<Entry> former = std::exchange(noted.fields, {});
    const QRectF changed = std::exchange(noted.staleArea, {});
    auto next = former.begin();
    for (const std::shared_ptr<PDFAnnotation>& annotation : page.annotations()) {
        if (annotation->type() != PDFAnnotationSubtype::widget)
            continue;
        // In most cases the list is the same, or something was added at its end.
        auto found = next != former.end() && next->widget == annotation
                         ? next
                         : std::find_if(former.begin(), former.end(),
                                        [&](const Entry& entry) { return entry.widget == annotation; });
        // What one radio button shows may change what its whole group lacks.
        const bool holds = found != former.end() && found->bounds == annotation->bounds() &&
                           !found->bounds.intersects(changed) && found->kind != PDFFormField::Kind::radioButtons;
        noted.fields.push_back(holds ? *found : entryOf(annotation));
        if (found != former.end())
            next = std::next(found);
    }
}
