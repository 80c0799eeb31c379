#include "PageColumn.h"

#include "PDFDocument.h"
#include "PDFPage.h"

#include <QScrollBar>

#include <algorithm>
#include <cmath>
#include <utility>

/// Device-independent pixels.
static constexpr double pageGap = 12;
static constexpr double columnMargin = 12;
static constexpr double scrollStep = 40;
/// Each round of settling may bring a page into sight whose size is not known yet.
static constexpr int settlingRounds = 4;

PageColumn::PageColumn(QScrollBar& horizontal, QScrollBar& vertical, QObject* parent)
    : QObject(parent), m_scroller(horizontal, vertical) {
    connect(&m_scroller, &ViewScroller::scrolled, this, [this] {
        m_goneTo.reset();
        m_zoomPlace.reset();
        settle();
        tellMoved();
    });
    connect(&m_shapes, &PageShapes::surveyed, this, [this] {
        update();
        const auto kept = anchor();
        m_shapes.takeSurveyed();
        m_layout.setSizes(m_shapes.sizes());
        layOut();
        restore(kept);
        tellMoved();
    });
}

QSizeF PageColumn::viewSize() const {
    return {std::round(m_viewport.width() * m_ratio), std::round(m_viewport.height() * m_ratio)};
}

void PageColumn::setDocument(std::shared_ptr<PDFDocument> document) {
    m_document = std::move(document);
    m_stale = false;
    m_goneTo.reset();
    m_zoomPlace.reset();
    m_anchor.reset();
    m_shapes.setDocument(m_document, m_box);
    m_shapes.makeKnown(0, std::min(1, m_shapes.count()));
    m_layout.setSizes(m_shapes.sizes());
    m_scroller.setOffset({0, 0});
    fitCurrentPage();
    layOut();
    m_scroller.setOffset({m_scroller.maximum().x() / 2, 0});
    settle();
    tellMoved();
}

void PageColumn::update() {
    if (!std::exchange(m_stale, false))
        return;
    const bool first = m_shapes.count() == 0;
    m_shapes.reload();
    m_layout.setSizes(m_shapes.sizes());
    if (first) // pages that became known by a password
        fitCurrentPage();
    layOut();
    restore(std::exchange(m_anchor, {})); // the present one would be taken by places in the list that no longer hold
    tellMoved();
}

void PageColumn::tellMoved() {
    m_anchor = anchor();
    Q_EMIT moved();
}

void PageColumn::refreshPage(const PDFPage* page) {
    update();
    const int index = m_document ? m_document->index(page) : -1;
    const auto kept = anchor();
    const bool isCurrent = index == currentPage();
    if (index < 0 || !m_shapes.refresh(index))
        return;
    m_layout.setSizes(m_shapes.sizes());
    if (isCurrent)
        fitCurrentPage();
    layOut();
    restore(kept);
    tellMoved();
}

template <typename Change>
void PageColumn::changeInPlace(Change&& change) {
    update();
    const auto kept = anchor();
    change();
    layOut();
    restore(kept);
    tellMoved();
}

void PageColumn::setViewport(QSize size, double devicePixelRatio) {
    if (size == m_viewport && devicePixelRatio == m_ratio)
        return;
    changeInPlace([&] {
        m_viewport = size;
        m_ratio = devicePixelRatio;
        fitAgain();
    });
}

void PageColumn::setDisplayBox(PDFDisplayBox box) {
    if (box == m_box)
        return;
    changeInPlace([&] {
        m_box = box;
        m_shapes.setDocument(m_document, m_box);
        m_layout.setSizes(m_shapes.sizes());
        fitCurrentPage();
    });
}

void PageColumn::setPageBreaks(bool breaks) {
    if (breaks == m_pageBreaks)
        return;
    changeInPlace([&] {
        m_pageBreaks = breaks;
        fitAgain();
    });
}

// Scale

void PageColumn::setScale(double scale) {
    if (scale == m_scale)
        return;
    m_scale = scale;
    Q_EMIT scaleChanged();
}

void PageColumn::setScaleFactor(double scale, QPointF viewPoint) {
    update();
    if (scale == m_scale)
        return;
    if (!m_zoomPlace || m_zoomPoint != viewPoint)
        m_zoomPlace = placeAt(viewPoint);
    m_zoomPoint = viewPoint;
    m_scale = scale;
    layOut();
    if (m_zoomPlace)
        scrollTo(devicePosition(*m_zoomPlace), viewPoint, false);
    settle();
    tellMoved();
    Q_EMIT scaleChanged();
}

double PageColumn::scaleToFit(double pageWidth) const {
    const double width = m_viewport.width() - (m_pageBreaks ? 2 * columnMargin : 0);
    return width < 1 || pageWidth <= 0 ? m_scale : std::min(m_maxScale, width / pageWidth);
}

double PageColumn::scaleToFitWidth() const {
    const int index = currentPage();
    return index < 0 ? 1 : scaleToFit(m_shapes.shape(index).displaySize().width());
}

void PageColumn::fitCurrentPage() {
    const int index = currentPage();
    m_fittedWidth = index < 0 ? 0 : m_shapes.shape(index).displaySize().width();
    fitAgain();
}

void PageColumn::fitAgain() {
    if (m_fitsWidth && m_fittedWidth > 0)
        setScale(scaleToFit(m_fittedWidth));
}

void PageColumn::setFitsWidth(bool fits) {
    m_fitsWidth = fits;
    if (!fits)
        return;
    update();
    const auto kept = anchor();
    fitCurrentPage();
    layOut();
    restore(kept);
    tellMoved();
}

// Layout

void PageColumn::layOut() {
    PageLayout::Metrics metrics;
    metrics.scale = m_scale * m_ratio;
    metrics.gap = m_pageBreaks ? static_cast<int>(std::round(pageGap * m_ratio)) : 0;
    metrics.margin = m_pageBreaks ? static_cast<int>(std::round(columnMargin * m_ratio)) : 0;
    metrics.view = viewSize().toSize();
    m_layout.setMetrics(metrics);
    m_scroller.setExtent(m_layout.contentSize(), viewSize(), scrollStep * m_ratio);
}

/// What the reader looks at: the first line of the current page that he can see.
std::optional<PageColumn::Anchor> PageColumn::anchor() const {
    const int index = currentPage();
    if (index < 0)
        return std::nullopt;
    const double top = std::max(0.0, pageRect(index).top() / m_ratio);
    const auto place = placeAt({m_viewport.width() / 2.0, top});
    return place ? std::optional(Anchor{*place, top}) : std::nullopt;
}

void PageColumn::restore(const std::optional<Anchor>& anchor) {
    m_zoomPlace.reset();
    if (anchor && pageCount() > 0)
        scrollTo(devicePosition(anchor->place), {m_viewport.width() / 2.0, anchor->height}, true);
    settle();
}

/// Makes sure that all pages in sight have their real size, without moving the one that the reader looks at.
void PageColumn::settle() {
    for (int round = 0; round < settlingRounds; ++round) {
        const auto [first, last] = visiblePages();
        const auto kept = anchor();
        if (!m_shapes.makeKnown(first, last))
            return;
        m_layout.setSizes(m_shapes.sizes());
        layOut();
        if (kept)
            scrollTo(devicePosition(kept->place), {m_viewport.width() / 2.0, kept->height}, true);
    }
}

/// True when the page's size is another than was taken for it.
bool PageColumn::know(int index) {
    const auto kept = anchor();
    if (!m_shapes.makeKnown(index, index + 1))
        return false;
    m_layout.setSizes(m_shapes.sizes());
    layOut();
    restore(kept);
    return true;
}

void PageColumn::makeKnown(int index) {
    if (know(index))
        tellMoved();
}

void PageColumn::scrollTo(QPointF devicePosition, QPointF viewPoint, bool keepsGliding) {
    m_scroller.setOffset(devicePosition - viewPoint * m_ratio, keepsGliding);
}

// Pages

int PageColumn::currentPage() const {
    const auto [first, last] = visiblePages();
    if (const std::shared_ptr<PDFPage> page = m_goneTo.lock(); page && m_document) {
        const int index = m_document->index(page.get());
        if (index >= first && index < last)
            return index;
    }
    int best = first < last ? first : std::min(first, pageCount() - 1);
    double bestShare = 0;
    const double view = viewSize().height();
    for (int i = first; i < last; ++i) {
        const QRectF rect = pageRect(i);
        const double shown = std::min(rect.bottom(), view) - std::max(rect.top(), 0.0);
        const double share = shown / std::min(rect.height(), view);
        if (share > bestShare) {
            best = i;
            bestShare = share;
        }
    }
    return best;
}

std::pair<int, int> PageColumn::visiblePages() const {
    const double top = m_scroller.offset().y();
    return m_layout.pagesBetween(top, top + viewSize().height());
}

QRectF PageColumn::pageRect(int index) const {
    return m_layout.pageRect(index).translated(-m_scroller.offset());
}

int PageColumn::pageAt(QPointF viewPoint, bool nearest) const {
    const QPointF point = viewPoint * m_ratio;
    const int index = m_layout.pageAtHeight(point.y() + m_scroller.offset().y());
    return index >= 0 && (nearest || pageRect(index).contains(point)) ? index : -1;
}

QTransform PageColumn::pageToView(int index) const {
    const QRectF rect = pageRect(index);
    return m_shapes.shape(index).pageToPixels(rect.size()) * QTransform::fromTranslate(rect.left(), rect.top()) *
           QTransform::fromScale(1 / m_ratio, 1 / m_ratio);
}

std::vector<PlacedPage> PageColumn::placedPages(int first, int last) const {
    std::vector<PlacedPage> pages;
    for (int i = std::max(0, first); i < std::min(last, pageCount()); ++i) {
        PlacedPage placed;
        placed.index = i;
        placed.page = m_document->page(i);
        placed.rect = pageRect(i);
        placed.look.content = m_shapes.content(i);
        placed.look.box = m_box;
        placed.look.rotation = m_shapes.shape(i).rotation;
        placed.look.pixels = m_layout.pageSize(i);
        if (placed.page)
            placed.look.hiddenAnnotations = placed.page->hiddenFileAnnotations();
        placed.pageToPixels = m_shapes.shape(i).pageToPixels(placed.rect.size());
        pages.push_back(std::move(placed));
    }
    return pages;
}

// Places

std::optional<PageColumn::Place> PageColumn::placeAt(QPointF viewPoint) const {
    const int index = pageAt(viewPoint, true);
    if (index < 0)
        return std::nullopt;
    const QRectF rect = pageRect(index);
    const QPointF inside(std::clamp(viewPoint.x() * m_ratio, rect.left(), rect.right()),
                         std::clamp(viewPoint.y() * m_ratio, rect.top(), rect.bottom()));
    const QSizeF points = m_shapes.shape(index).displaySize();
    Place place;
    place.page = m_document->page(index);
    place.index = index;
    place.point = {(inside.x() - rect.left()) / rect.width() * points.width(),
                   (inside.y() - rect.top()) / rect.height() * points.height()};
    place.beyond = viewPoint - inside / m_ratio;
    return place;
}

int PageColumn::indexOf(const Place& place) const {
    const std::shared_ptr<PDFPage> page = place.page.lock();
    const int index = page && m_document ? m_document->index(page.get()) : -1;
    return index >= 0 ? index : std::clamp(place.index, 0, std::max(0, pageCount() - 1));
}

QPointF PageColumn::devicePosition(const Place& place) const {
    const int index = indexOf(place);
    const QRectF rect = m_layout.pageRect(index);
    const QSizeF points = m_shapes.shape(index).displaySize();
    return QPointF(rect.left() + place.point.x() / points.width() * rect.width(),
                   rect.top() + place.point.y() / points.height() * rect.height()) +
           place.beyond * m_ratio;
}

void PageColumn::bringTo(const Place& place, QPointF viewPoint) {
    if (pageCount() == 0)
        return;
    m_zoomPlace.reset();
    const int index = indexOf(place);
    know(index);
    m_goneTo = m_document->page(index);
    scrollTo(devicePosition(place), viewPoint, false);
    settle();
    tellMoved();
}

void PageColumn::goToPage(int index) {
    if (index < 0 || index >= pageCount())
        return;
    know(index);
    Place place;
    place.page = m_document->page(index);
    place.index = index;
    place.point.setX(m_shapes.shape(index).displaySize().width() / 2);
    bringTo(place, {m_viewport.width() / 2.0, m_pageBreaks ? columnMargin : 0});
}

void PageColumn::goToPageEnd(int index) {
    if (index < 0 || index >= pageCount())
        return;
    know(index);
    Place place;
    place.page = m_document->page(index);
    place.index = index;
    const QSizeF size = m_shapes.shape(index).displaySize();
    place.point = {size.width() / 2, size.height()};
    bringTo(place, {m_viewport.width() / 2.0, m_viewport.height() - (m_pageBreaks ? columnMargin : 0)});
}

void PageColumn::goToPoint(int index, std::optional<double> x, std::optional<double> y) {
    if (index < 0 || index >= pageCount())
        return;
    if (!y) {
        goToPage(index);
        return;
    }
    know(index);
    const PageShape& shape = m_shapes.shape(index);
    const QSizeF points = shape.displaySize();
    const QPointF target = shape.pageToPixels(points).map(QPointF(x.value_or(shape.box.left()), *y));
    // Files ask for places outside of the page; the nearest one on it is meant.
    Place place;
    place.page = m_document->page(index);
    place.index = index;
    place.point = {std::clamp(target.x(), 0.0, points.width()), std::clamp(target.y(), 0.0, points.height())};
    double viewX = 0;
    if (!x || pageRect(index).width() <= viewSize().width()) {
        place.point.setX(points.width() / 2);
        viewX = m_viewport.width() / 2.0;
    }
    bringTo(place, {viewX, 0});
}

void PageColumn::reveal(int index, const QRectF& rect) {
    if (index < 0 || index >= pageCount())
        return;
    know(index);
    const QRectF target = pageToView(index).mapRect(rect);
    const auto way = [](double low, double high, double size) {
        if (low >= 0 && high <= size)
            return 0.0;
        return high - low > size ? low : (low + high - size) / 2; // the middle of the view reads best
    };
    const QPointF move(way(target.left(), target.right(), m_viewport.width()),
                       way(target.top(), target.bottom(), m_viewport.height()));
    if (move.isNull())
        return;
    m_goneTo = m_document->page(index);
    m_zoomPlace.reset();
    m_scroller.setOffset(m_scroller.offset() + move * m_ratio);
    settle();
    tellMoved();
}
