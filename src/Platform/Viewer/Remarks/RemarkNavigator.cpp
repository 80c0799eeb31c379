#include "RemarkNavigator.h"

#include "PDFAnnotation.h"
#include "PDFDocument.h"
#include "PDFPage.h"
#include "PageColumn.h"
#include "RemarkThreads.h"

#include <algorithm>

/// Device-independent pixels beside a thin line that still count as on it.
static constexpr double lineReach = 4;

void RemarkNavigator::setEnabled(bool enabled) {
    m_isEnabled = enabled;
    if (!enabled)
        clearFocus();
}

bool RemarkNavigator::isMeant(const PDFAnnotation& annotation) const {
    return m_isEnabled && RemarkThreads::isRemark(annotation) && m_shows(annotation);
}

RemarkNavigator::Place RemarkNavigator::placed(const std::shared_ptr<PDFAnnotation>& annotation, int page) const {
    // The bounds of a line may be those of the whole page.
    const bool isLine = annotation->type() == PDFAnnotationSubtype::line;
    return {annotation, m_column.pageToView(page).mapRect(isLine ? annotation->drawnArea() : annotation->bounds())};
}

std::optional<RemarkNavigator::Place> RemarkNavigator::at(QPointF viewPoint, bool withWords) const {
    const int index = m_isEnabled ? m_column.pageAt(viewPoint, false) : -1;
    const std::shared_ptr<PDFPage> page = index < 0 ? nullptr : m_column.document()->page(index);
    if (!page)
        return std::nullopt;
    const QTransform toPage = m_column.pageToView(index).inverted();
    const QPointF point = toPage.map(viewPoint);
    const double reach = lineReach * std::hypot(toPage.m11(), toPage.m12());
    std::shared_ptr<PDFAnnotation> silent;
    const auto& all = page->annotations();
    for (auto candidate = all.rbegin(); candidate != all.rend(); ++candidate) {
        const PDFAnnotation& annotation = **candidate;
        const bool speaks = RemarkThreads::hasWords(annotation);
        if ((!speaks && (withWords || silent || annotation.userName().isEmpty())) || !isMeant(annotation) ||
            !annotation.isAt(point, reach))
            continue;
        if (speaks)
            return Place{RemarkThreads(*page).subject(*candidate), placed(*candidate, index).rect};
        silent = *candidate;
    }
    return silent ? std::optional(placed(silent, index)) : std::nullopt;
}

bool RemarkNavigator::isOverNote(QPointF viewPoint) const {
    const int index = m_isEnabled ? m_column.pageAt(viewPoint, false) : -1;
    const std::shared_ptr<PDFPage> page = index < 0 ? nullptr : m_column.document()->page(index);
    if (!page)
        return false;
    const QPointF point = m_column.pageToView(index).inverted().map(viewPoint);
    return std::any_of(page->annotations().begin(), page->annotations().end(), [&](const auto& annotation) {
        return annotation->type() == PDFAnnotationSubtype::text && annotation->bounds().contains(point) &&
               RemarkThreads::hasWords(*annotation) && isMeant(*annotation);
    });
}

std::vector<RemarkNavigator::Place> RemarkNavigator::onPage(int index) const {
    std::vector<Place> places;
    const std::shared_ptr<PDFPage> page = m_isEnabled ? m_column.document()->page(index) : nullptr;
    if (!page)
        return places;
    const RemarkThreads threads(*page);
    for (const std::shared_ptr<PDFAnnotation>& annotation : page->annotations()) {
        if (!RemarkThreads::hasWords(*annotation) || !isMeant(*annotation))
            continue;
        const std::shared_ptr<PDFAnnotation> subject = threads.subject(annotation);
        if (subject == annotation || !RemarkThreads::hasWords(*subject) || !isMeant(*subject))
            places.push_back(placed(annotation, index));
    }
    return places;
}

std::optional<RemarkNavigator::Place> RemarkNavigator::focused() const {
    const std::shared_ptr<PDFAnnotation> annotation = m_focused.lock();
    const std::shared_ptr<PDFPage> page = annotation ? annotation->page() : nullptr;
    const int index = page && m_column.document() ? m_column.document()->index(page.get()) : -1;
    if (index < 0 || !isMeant(*annotation))
        return std::nullopt;
    const Place place = placed(annotation, index);
    const bool isSeen = QRectF(QPointF(0, 0), QSizeF(m_column.viewport())).contains(place.rect.center());
    return isSeen ? std::optional(place) : std::nullopt;
}
