#include "PDFView.h"

#include "PDFAnnotation.h"
#include "PDFDestination.h"
#include "PDFDocument.h"
#include "PDFPage.h"
#include "PDFSelection.h"
#include "PDFViewAccessible.h"
#include "PDFViewParts.h"

#include <QScrollBar>

#include <algorithm>
#include <cmath>

static constexpr QSize preferredSize(800, 1000);

PDFView::PDFView(QWidget* parent) : PageSurface(parent), m_parts(std::make_unique<PDFViewParts>(*this)) {
    PDFViewAccessible::install();
    setObjectName(QStringLiteral("pdfView"));
    setAccessibleName(tr("Document"));
    setAccessibleDescription(tr("No pages"));
    setFrameShape(QFrame::NoFrame);
    setFocusPolicy(Qt::StrongFocus);
    // A bar that came and went would change the width, and with it the scale that fits.
    setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOn);
    verticalScrollBar()->setAccessibleName(tr("Position in the document"));
    horizontalScrollBar()->setAccessibleName(tr("Position from side to side"));
    viewport()->setMouseTracking(true);
    viewport()->setAttribute(Qt::WA_OpaquePaintEvent);
    m_parts->updateViewport();
    Q_EMIT historyChanged(); // sets which commands are enabled
}

PDFView::~PDFView() {
    if (const auto shown = document())
        shown->disconnect(this);
}

std::shared_ptr<PDFDocument> PDFView::document() const {
    return m_parts->columnOfPages.document();
}

void PDFView::setDocument(const std::shared_ptr<PDFDocument>& document) {
    if (document != this->document())
        m_parts->showDocument(document);
}

void PDFView::layoutDocumentView() {
    m_parts->columnOfPages.setStale();
    m_parts->column();
}

// Pages

std::shared_ptr<PDFPage> PDFView::currentPage() const {
    const auto index = currentPageIndex();
    return index ? document()->page(*index) : nullptr;
}

std::optional<int> PDFView::currentPageIndex() const {
    const int index = m_parts->column().currentPage();
    return index < 0 ? std::nullopt : std::optional(index);
}

std::vector<std::shared_ptr<PDFPage>> PDFView::visiblePages() const {
    std::vector<std::shared_ptr<PDFPage>> pages;
    const auto [first, last] = m_parts->column().visiblePages();
    for (int i = first; i < last; ++i)
        pages.push_back(document()->page(i));
    return pages;
}

void PDFView::goToPage(const std::shared_ptr<PDFPage>& page) {
    PageColumn& column = m_parts->column();
    const int index = column.document() && page ? column.document()->index(page.get()) : -1;
    if (index >= 0)
        m_parts->jump([&] { column.goToPage(index); });
}

void PDFView::goToDestination(const PDFDestination& destination) {
    PageColumn& column = m_parts->column();
    const std::shared_ptr<PDFPage> page = destination.page();
    const int index = column.document() && page ? column.document()->index(page.get()) : -1;
    if (index < 0)
        return;
    m_parts->jump([&] {
        if (destination.zoom())
            setScaleFactor(*destination.zoom());
        column.goToPoint(index, destination.x(), destination.y());
    });
}

void PDFView::goToSelection(const PDFSelection& selection) {
    PageColumn& column = m_parts->column();
    if (selection.isEmpty() || !column.document())
        return;
    const PDFSelection::Range& first = selection.ranges().front();
    const std::vector<QRectF> lines = PDFSelection({first}).lineRects(*first.page);
    if (!lines.empty())
        m_parts->jump([&] { column.reveal(column.document()->index(first.page.get()), lines.front()); });
}

void PDFView::goToNextPage() {
    if (canGoToNextPage())
        m_parts->column().goToPage(*currentPageIndex() + 1);
}

void PDFView::goToPreviousPage() {
    if (canGoToPreviousPage())
        m_parts->column().goToPage(*currentPageIndex() - 1);
}

void PDFView::goToFirstPage() {
    if (document())
        goToPage(document()->page(0));
}

void PDFView::goToLastPage() {
    if (document())
        goToPage(document()->page(document()->pageCount() - 1));
}

bool PDFView::canGoToNextPage() const {
    const auto index = currentPageIndex();
    return index && *index + 1 < m_parts->column().pageCount();
}

bool PDFView::canGoToPreviousPage() const {
    return currentPageIndex().value_or(0) > 0;
}

void PDFView::goBack() {
    if (const auto present = m_parts->column().placeAt({0, 0}))
        m_parts->bringBack(m_parts->history.goBack(*present));
}

void PDFView::goForward() {
    if (const auto present = m_parts->column().placeAt({0, 0}))
        m_parts->bringBack(m_parts->history.goForward(*present));
}

bool PDFView::canGoBack() const {
    return m_parts->history.canGoBack();
}

bool PDFView::canGoForward() const {
    return m_parts->history.canGoForward();
}

// Looks

bool PDFView::autoScales() const {
    return m_parts->columnOfPages.fitsWidth();
}

void PDFView::setAutoScales(bool scales) {
    m_parts->column().setFitsWidth(scales);
}

double PDFView::scaleFactor() const {
    return m_parts->column().scaleFactor();
}

void PDFView::setScaleFactor(double scale) {
    m_parts->zoomTo(scale, QPointF(viewport()->width() / 2.0, viewport()->height() / 2.0));
}

double PDFView::minScaleFactor() const {
    return std::min(m_parts->minScale, scaleFactorForSizeToFit());
}

void PDFView::setMinScaleFactor(double scale) {
    m_parts->minScale = scale;
    m_parts->keepScaleWithinLimits();
}

double PDFView::maxScaleFactor() const {
    return m_parts->maxScale;
}

void PDFView::setMaxScaleFactor(double scale) {
    m_parts->maxScale = scale;
    m_parts->column().setMaxScale(scale);
    m_parts->keepScaleWithinLimits();
}

double PDFView::scaleFactorForSizeToFit() const {
    return m_parts->column().scaleToFitWidth();
}

void PDFView::zoomAt(QPointF viewPoint, double factor) {
    m_parts->zoomTo(scaleFactor() * factor, viewPoint);
}

bool PDFView::displaysPageBreaks() const {
    return m_parts->columnOfPages.hasPageBreaks();
}

void PDFView::setDisplaysPageBreaks(bool breaks) {
    m_parts->columnOfPages.setPageBreaks(breaks);
}

PDFDisplayBox PDFView::displayBox() const {
    return m_parts->columnOfPages.displayBox();
}

void PDFView::setDisplayBox(PDFDisplayBox box) {
    m_parts->columnOfPages.setDisplayBox(box);
}

QColor PDFView::backgroundColor() const {
    return m_parts->background.value_or(palette().color(QPalette::Window));
}

void PDFView::setBackgroundColor(const QColor& color) {
    m_parts->background = color;
    viewport()->update();
}

// Points

std::shared_ptr<PDFPage> PDFView::pageAt(QPointF viewPoint, bool nearest) const {
    const int index = m_parts->column().pageAt(viewPoint, nearest);
    return index < 0 ? nullptr : document()->page(index);
}

std::optional<QTransform> PDFView::pageToView(const PDFPage& page) const {
    PageColumn& column = m_parts->column();
    const int index = column.document() ? column.document()->index(&page) : -1;
    if (index < 0)
        return std::nullopt;
    column.makeKnown(index);
    return column.pageToView(index);
}

// Selection

std::optional<PDFSelection> PDFView::currentSelection() const {
    return m_parts->selection.current();
}

bool PDFView::hasSelection() const {
    return !m_parts->selection.isEmpty();
}

std::vector<std::pair<int, int>> PDFView::selectedRanges(const PDFPage& page) const {
    return m_parts->selection.rangesOn(page);
}

void PDFView::setCurrentSelection(const std::optional<PDFSelection>& selection) {
    m_parts->drag.reset();
    m_parts->selection.set(selection);
}

void PDFView::clearSelection() {
    setCurrentSelection(std::nullopt);
}

void PDFView::selectAll() {
    m_parts->drag.reset();
    m_parts->selection.selectAll();
}

bool PDFView::hasSelectedText() const {
    std::vector<SpanReader::Span> spans = m_parts->selection.spans();
    const std::vector<PlacedPage> seen = m_parts->pages(false);
    std::stable_partition(spans.begin(), spans.end(), [&](const SpanReader::Span& span) {
        return std::any_of(seen.begin(), seen.end(),
                           [&](const PlacedPage& page) { return page.look.content == span.content; });
    });
    return m_parts->texts.holdText(spans);
}

void PDFView::copy() {
    if (hasSelection())
        m_parts->selection.reader().copy(m_parts->selection.spans());
}

void PDFView::readSelectedText(const std::function<void(const QString&)>& use) {
    m_parts->selection.reader().readFor(m_parts->selection.spans(), use);
}

void PDFView::readText(const PDFPage& page, const std::function<void(const QString&)>& use) {
    m_parts->selection.reader().readFor({{page.content(), 0, std::nullopt}}, use);
}

bool PDFView::isReadingText() const {
    return m_parts->selection.reader().isReading();
}

void PDFView::cancelReadingText() {
    m_parts->selection.reader().cancel();
}

// Forms

void PDFView::setFillsForms(bool fills) {
    m_parts->forms.setEnabled(fills);
}

bool PDFView::isFilling() const {
    return m_parts->forms.isEditing();
}

void PDFView::commitFilling() {
    m_parts->forms.commit();
}

void PDFView::applyFilling() {
    m_parts->forms.apply();
}

void PDFView::addTo(PDFDraft& draft) const {
    for (const PlacedEditor* const editor : findChildren<PlacedEditor*>(QString(), Qt::FindDirectChildrenOnly))
        editor->addTo(draft);
}

void PDFView::reveal(const PDFAnnotation& annotation) {
    PageColumn& column = m_parts->column();
    const std::shared_ptr<PDFPage> page = annotation.page();
    if (page && column.document())
        column.reveal(column.document()->index(page.get()), annotation.bounds());
}

// Memory and measuring

void PDFView::setTileCacheLimit(qint64 bytes) {
    m_parts->ownTileLimit = true;
    m_parts->tiles.setByteLimit(bytes);
}

qint64 PDFView::tileCacheBytes() const {
    return m_parts->tiles.bytes();
}

void PDFView::clearCaches() {
    m_parts->column();
    m_parts->tiles.dropUnseen(m_parts->pages(false), m_parts->deviceView());
}

bool PDFView::isSharp() const {
    m_parts->column();
    const std::vector<PlacedPage> pages = m_parts->pages(false);
    return std::all_of(pages.begin(), pages.end(),
                       [this](const PlacedPage& page) { return m_parts->tiles.isSharp(page, m_parts->deviceView()); });
}

QAction* PDFView::action(PDFViewCommand command) const {
    return m_parts->commands.action(command);
}

QSize PDFView::sizeHint() const {
    return preferredSize;
}
