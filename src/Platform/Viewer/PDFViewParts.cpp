#include "PDFViewParts.h"

#include "FlowingText.h"
#include "PDFAnnotation.h"
#include "PDFDocument.h"
#include "PDFPage.h"
#include "PageText.h"
#include "RemarkText.h"
#include "RemarkThreads.h"

#include <QAccessible>
#include <QScrollBar>
#include <QToolTip>
#include <QUrl>

#include <algorithm>
#include <cmath>
#include <utility>

using namespace std::chrono_literals;

static constexpr auto restDelay = 120ms;
/// Pages on either side of the screen that may want tiles or stand-ins.
static constexpr int pagesAround = 6;
/// Past this many screens a second a page is gone before it could be drawn sharp.
static constexpr double fastScreens = 5;

PDFViewParts::PDFViewParts(PDFView& owner)
    : view(owner), columnOfPages(*owner.horizontalScrollBar(), *owner.verticalScrollBar()),
      drag(columnOfPages, texts, selection), links(columnOfPages),
      remarks(columnOfPages, [&owner](const PDFAnnotation& annotation) { return owner.showsRemark(annotation); }),
      forms(owner, columnOfPages), remarkPanel(new RemarkPanel(owner)), focusOrder(columnOfPages, links, remarks),
      touch(owner, columnOfPages.scroller()), commands(owner) {
    m_rest.setSingleShot(true);
    m_rest.setInterval(restDelay);
    QObject::connect(&m_rest, &QTimer::timeout, &view, [this] { rested(); });
    QObject::connect(&columnOfPages, &PageColumn::moved, &view, [this] { moved(); });
    QObject::connect(&columnOfPages, &PageColumn::scaleChanged, &view, &PDFView::scaleChanged);
    QObject::connect(&tiles, &PageTiles::tileArrived, &view, [this](const TileKey& key) { tileArrived(key); });
    QObject::connect(&tiles, &PageTiles::retryDue, &view, [this] { plan(); });
    QObject::connect(&forms, &FormFiller::changed, &view, &PDFView::formFieldChanged);
    QObject::connect(&forms, &FormFiller::editingChanged, &view, &PDFView::fillingChanged);
    QObject::connect(&forms, &FormFiller::focusChanged, &view, [this] { describe(); });
    QObject::connect(&forms, &FormFiller::leftByTab, &view, [this](bool forward) { view.focusNextPrevChild(forward); });
    QObject::connect(&selection, &ViewSelection::changed, &view, [this] {
        wantTexts();
        view.viewport()->update();
        Q_EMIT view.selectionChanged();
    });
    QObject::connect(&selection.reader(), &SpanReader::progressed, &view, &PDFView::textReadingProgressed);
    QObject::connect(&selection.reader(), &SpanReader::ended, &view, &PDFView::textReadingEnded);
    QObject::connect(&texts, &PageTexts::loaded, &view, [this] {
        if (!selection.isEmpty())
            view.viewport()->update();
        if (pointer && !drag.isRunning())
            view.updateCursor(*pointer);
        announceText();
    });
}

PageColumn& PDFViewParts::column() {
    columnOfPages.update();
    return columnOfPages;
}

QRectF PDFViewParts::deviceView() const {
    const QSizeF size = columnOfPages.viewport() * columnOfPages.devicePixelRatio();
    return {QPointF(0, 0), QSizeF(size.toSize())};
}

std::vector<PlacedPage> PDFViewParts::pages(bool around) const {
    const auto [first, last] = columnOfPages.visiblePages();
    const int more = around ? pagesAround : 0;
    return columnOfPages.placedPages(first - more, last + more);
}

void PDFViewParts::showDocument(const std::shared_ptr<PDFDocument>& document) {
    if (const auto former = columnOfPages.document())
        former->disconnect(&view);
    drag.reset();
    links.clearFocus();
    remarks.clearFocus();
    remarkPanel->cancel();
    forms.reset();
    pressedLink.reset();
    pressedRemark.reset();
    tiles.clear();
    hasDrawnSharp = false;
    history.clear();
    texts.want({});
    selection.setDocument(document);
    if (document) {
        QObject::connect(document.get(), &PDFDocument::pagesChanged, &view, [this] { pagesChanged(); });
        QObject::connect(document.get(), &PDFDocument::pageContentChanged, &view,
                         [this](const PDFPage* page, const QRectF& area) { pageContentChanged(*page, area); });
    }
    columnOfPages.setDocument(document);
    Q_EMIT view.historyChanged();
}

void PDFViewParts::updateViewport() {
    constexpr qint64 bytesAtRatioOne = qint64(72) << 20;
    const double ratio = view.devicePixelRatioF();
    if (!ownTileLimit)
        tiles.setByteLimit(static_cast<qint64>(bytesAtRatioOne * ratio));
    columnOfPages.setViewport(view.viewport()->size(), ratio);
}

void PDFViewParts::pagesChanged() {
    columnOfPages.setStale();
    selection.dropGonePages();
    if (std::exchange(m_updateQueued, true))
        return;
    QMetaObject::invokeMethod(
        &view,
        [this] {
            m_updateQueued = false;
            column();
        },
        Qt::QueuedConnection);
}

void PDFViewParts::pageContentChanged(const PDFPage& page, const QRectF& area) {
    tiles.noteChange(page, area);
    forms.noteChange(page, area);
    if (area.isNull()) {
        columnOfPages.refreshPage(&page);
        view.viewport()->update();
    } else {
        const auto [first, last] = columnOfPages.visiblePages();
        const int index = columnOfPages.document()->index(&page);
        if (index >= first && index < last)
            updateAround(columnOfPages.pageToView(index).mapRect(area));
    }
    // An annotation of the file that is hidden now changes the page's own picture. Many changes cost one plan.
    if (std::exchange(m_planQueued, true))
        return;
    QMetaObject::invokeMethod(
        &view,
        [this] {
            m_planQueued = false;
            plan();
        },
        Qt::QueuedConnection);
}

void PDFViewParts::updateAround(const QRectF& viewRect) {
    view.viewport()->update((viewRect & QRectF(view.viewport()->rect())).toAlignedRect().adjusted(-2, -2, 2, 2));
}

void PDFViewParts::moved() {
    plan();
    if (!selection.isEmpty())
        wantTexts();
    view.viewport()->update();
    m_rest.start();
    updatePage();
    Q_EMIT view.visibleAreaChanged();
}

void PDFViewParts::plan() {
    const ViewScroller& scroller = columnOfPages.scroller();
    TilePlan::Situation situation;
    situation.view = deviceView();
    if (view.isVisible() && !situation.view.isEmpty())
        situation.pages = pages(true);
    situation.direction = scroller.direction();
    situation.fast = scroller.speed() > fastScreens * situation.view.height();
    tiles.plan(std::move(situation));
}

void PDFViewParts::tileArrived(const TileKey& key) {
    const double ratio = columnOfPages.devicePixelRatio();
    for (const PlacedPage& page : pages(false)) {
        if (page.look.content != key.look.content)
            continue;
        const QRectF rect =
            page.look == key.look ? QRectF(key.deviceRect()).translated(page.rect.topLeft()) : page.rect;
        const QRectF seen = rect & deviceView();
        if (!seen.isEmpty())
            view.viewport()->update(
                QRectF(seen.topLeft() / ratio, seen.size() / ratio).toAlignedRect().adjusted(-1, -1, 1, 1));
    }
}

void PDFViewParts::updatePage() {
    const int index = columnOfPages.currentPage();
    const std::shared_ptr<PDFPage> page = index < 0 ? nullptr : columnOfPages.document()->page(index);
    const int count = columnOfPages.pageCount();
    if (index == m_currentIndex && count == m_pageCount && page == m_currentPage.lock())
        return;
    m_currentIndex = index;
    m_pageCount = count;
    m_currentPage = page;
    describe();
    Q_EMIT view.pageChanged();
}

void PDFViewParts::describe() {
    if (const auto link = links.focused())
        view.setAccessibleDescription(PDFView::tr("Link: %1").arg(links.describe(*link->annotation)));
    else if (const auto remark = remarks.focused())
        view.setAccessibleDescription(
            PDFView::tr("Comment: %1").arg(RemarkText::description(Remark::of(*remark->annotation))));
    else if (const QString field = forms.description(); !field.isEmpty())
        view.setAccessibleDescription(field);
    else if (m_currentIndex < 0)
        view.setAccessibleDescription(PDFView::tr("No pages"));
    else
        view.setAccessibleDescription(PDFView::tr("Page %1 of %2").arg(m_currentIndex + 1).arg(m_pageCount));
}

bool PDFViewParts::moveFocus(bool forward) {
    PageColumn& pagesNow = column();
    const auto link = links.focused();
    const auto remark = remarks.focused();
    const auto present = link ? link->annotation : remark ? remark->annotation : forms.focused();
    const auto next = focusOrder.next(present, forward, forms.isEnabled());
    leaveFocus();
    if (!next)
        return false;
    pagesNow.reveal(pagesNow.document()->index(next->page().get()), next->bounds());
    if (next->type() == PDFAnnotationSubtype::link)
        links.focus(next);
    else if (next->type() == PDFAnnotationSubtype::widget)
        forms.focus(next);
    else
        remarks.focus(next);
    describe();
    return true;
}

void PDFViewParts::leaveFocus() {
    links.clearFocus();
    remarks.clearFocus();
    forms.clearFocus();
    describe();
    view.viewport()->update();
}

void PDFViewParts::wantTexts() {
    const auto [first, last] = columnOfPages.visiblePages();
    std::vector<PDFPageContent> contents;
    for (const PlacedPage& page : columnOfPages.placedPages(first - 1, last + 1))
        contents.push_back(page.look.content);
    texts.want(contents);
}

void PDFViewParts::rested() {
    wantTexts();
    forms.readFields();
    if (pointer && !drag.isRunning())
        view.updateCursor(*pointer);
    plan(); // no longer fast
    announceText();
}

/// Tells a screen reader of the text of the page that is now current.
void PDFViewParts::announceText() {
    const std::shared_ptr<PDFPage> page = m_currentPage.lock();
    if (!QAccessible::isActive() || page == m_announcedPage.lock())
        return;
    const std::shared_ptr<const PageText> text = page ? texts.text(page->content()) : nullptr;
    if (page && !text)
        return;
    const QString former = std::exchange(m_announcedText, text ? FlowingText(*text).string() : QString());
    m_announcedPage = page;
    QAccessibleTextUpdateEvent event(&view, 0, former, m_announcedText);
    QAccessible::updateAccessibility(&event);
}

void PDFViewParts::zoomTo(double scale, QPointF viewPoint) {
    PageColumn& pagesNow = column();
    if (!std::isfinite(scale))
        return;
    const double fitting = pagesNow.scaleToFitWidth();
    const double wanted = std::clamp(scale, std::min({minScale, fitting, maxScale}), maxScale);
    pagesNow.setFitsWidth(false);
    pagesNow.setScaleFactor(wanted, viewPoint);
    if (wanted == fitting)
        pagesNow.setFitsWidth(true);
}

void PDFViewParts::keepScaleWithinLimits() {
    if (view.autoScales())
        view.setAutoScales(true);
    else
        view.setScaleFactor(view.scaleFactor());
}

void PDFViewParts::bringBack(const std::optional<JumpHistory::Place>& place) {
    if (!place)
        return;
    columnOfPages.bringTo(*place, {0, 0});
    Q_EMIT view.historyChanged();
}

void PDFViewParts::follow(const PDFAnnotation& link) {
    if (!link.url().isEmpty())
        Q_EMIT view.linkActivated(QUrl(link.url()));
    else if (const auto destination = link.destination())
        view.goToDestination(*destination);
}

void PDFViewParts::read(const RemarkNavigator::Place& remark, const std::optional<QPointF>& near) {
    constexpr double largestAnchor = 160; // device-independent pixels; beside more it would be far from the pointer
    const double half = largestAnchor / 8;
    const bool isLarge = near && std::max(remark.rect.width(), remark.rect.height()) > largestAnchor;
    remarkPanel->open(remark.annotation,
                      isLarge ? QRectF(near->x() - half, near->y() - half, 2 * half, 2 * half) : remark.rect);
}

bool PDFViewParts::showRemarkTip(QPoint viewPoint, QPoint globalPoint) {
    const auto remark = remarks.at(viewPoint, false);
    const std::shared_ptr<PDFPage> page = remark && !remarkPanel->isOpen() ? remark->annotation->page() : nullptr;
    if (!page)
        return false;
    // Where the pointer goes further, another annotation may be meant.
    constexpr int reach = 12; // device-independent pixels
    const QRect around = QRect(viewPoint, QSize(1, 1)).adjusted(-reach, -reach, reach, reach);
    QToolTip::showText(globalPoint,
                       RemarkText::toolTip(RemarkThreads(*page).thread(remark->annotation), QToolTip::font()),
                       view.viewport(), around);
    return true;
}
