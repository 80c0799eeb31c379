#include "LinkNavigator.h"

#include "PDFAnnotation.h"
#include "PDFDocument.h"
#include "PDFPage.h"
#include "PageColumn.h"

#include <QCoreApplication>
#include <QUrl>

#include <algorithm>
#include <cmath>

static constexpr int longestDescription = 300;

/// An action of another kind (a program to start, a script) leads nowhere here.
static bool leadsSomewhere(const PDFAnnotation& annotation) {
    return annotation.type() == PDFAnnotationSubtype::link && annotation.shouldDisplay() &&
           (!annotation.url().isEmpty() || annotation.values().link.destination ||
            annotation.values().link.leadsInside);
}

std::vector<LinkNavigator::Link> LinkNavigator::linksOf(int page) const {
    std::vector<Link> links;
    const std::shared_ptr<PDFPage> live = m_column.document()->page(page);
    if (!live)
        return links;
    const QTransform toView = m_column.pageToView(page);
    for (const std::shared_ptr<PDFAnnotation>& annotation : live->annotations()) {
        if (leadsSomewhere(*annotation))
            links.push_back({annotation, toView.mapRect(annotation->bounds())});
    }
    return links;
}

std::optional<LinkNavigator::Link> LinkNavigator::linkAt(QPointF viewPoint) const {
    const int page = m_column.pageAt(viewPoint, false);
    if (page < 0)
        return std::nullopt;
    const std::vector<Link> links = linksOf(page);
    const auto found =
        std::find_if(links.rbegin(), links.rend(), [&](const Link& link) { return link.rect.contains(viewPoint); });
    return found == links.rend() ? std::nullopt : std::optional(*found);
}

QString LinkNavigator::describe(const PDFAnnotation& link) const {
    if (!link.url().isEmpty())
        return QUrl(link.url()).toDisplayString().left(longestDescription);
    const std::optional<PDFDestination> destination = link.destination();
    const std::shared_ptr<PDFPage> page = destination ? destination->page() : nullptr;
    const int index = page && m_column.document() ? m_column.document()->index(page.get()) : -1;
    return index < 0 ? QString() : QCoreApplication::translate("PDFView", "Page %1").arg(index + 1);
}

std::vector<LinkNavigator::Link> LinkNavigator::inReadingOrder(int page, const std::vector<Link>& others) const {
    std::vector<Link> links = linksOf(page);
    links.insert(links.end(), others.begin(), others.end());
    // What overlaps by half its height is on one line.
    std::sort(links.begin(), links.end(), [](const Link& a, const Link& b) { return a.rect.top() < b.rect.top(); });
    for (auto line = links.begin(); line != links.end();) {
        const QRectF lead = line->rect;
        const auto end = std::find_if(
            line, links.end(), [&](const Link& link) { return link.rect.top() > lead.top() + lead.height() / 2; });
        std::sort(line, end, [](const Link& a, const Link& b) { return a.rect.left() < b.rect.left(); });
        line = end;
    }
    return links;
}

std::optional<LinkNavigator::Link> LinkNavigator::focused() const {
    const std::shared_ptr<PDFAnnotation> annotation = m_focused.lock();
    const std::shared_ptr<PDFPage> page = annotation ? annotation->page() : nullptr;
    const int index = page && m_column.document() ? m_column.document()->index(page.get()) : -1;
    if (index < 0 || !leadsSomewhere(*annotation))
        return std::nullopt;
    const QRectF rect = m_column.pageToView(index).mapRect(annotation->bounds());
    const bool isSeen = QRectF(QPointF(0, 0), QSizeF(m_column.viewport())).contains(rect.center());
    return isSeen ? std::optional(Link{annotation, rect}) : std::nullopt;
}
