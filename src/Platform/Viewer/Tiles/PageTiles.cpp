#include "PageTiles.h"

#include "LiveAnnotations.h"
#include "PDFAnnotation.h"
#include "PDFPage.h"

#include <QPainter>

#include <algorithm>
#include <cmath>
#include <optional>

static constexpr qint64 megabyte = 1 << 20;
static constexpr qint64 standInBytes = 12 * megabyte;
static constexpr qint64 annotatedBytes = 24 * megabyte;
/// Sharp tiles that are wanted leave room for some that were on the screen a moment ago.
static constexpr double wantedShare = 0.75;
/// More layers of older tiles than this cost more time than they show.
static constexpr int layerLimit = 3;
/// Before a page that couldn't be drawn is tried again.
static constexpr std::chrono::seconds firstPause(1);
static constexpr std::chrono::seconds longestPause(60);

PageTiles::PageTiles(QObject* parent)
    : QObject(parent), m_sharp(72 * megabyte), m_standIns(standInBytes), m_annotated(annotatedBytes) {
    connect(&m_renderer, &TileRenderer::rendered, this, &PageTiles::take);
    m_retry.setSingleShot(true);
    connect(&m_retry, &QTimer::timeout, this, &PageTiles::retryDue);
}

void PageTiles::setByteLimit(qint64 bytes) {
    m_sharp.setByteLimit(bytes);
}

bool PageTiles::isDrawn(const TileKey& key) const {
    if (m_sharp.contains(key) || m_standIns.contains(key))
        return true;
    const auto failure = m_unreadable.find(key.look.content);
    return failure != m_unreadable.end() && Clock::now() < failure->second.nextTry;
}

void PageTiles::noteFailure(const PDFPageContent& content) {
    const auto [failure, isFirst] = m_unreadable.try_emplace(content, Failure{{}, firstPause});
    const Clock::time_point now = Clock::now();
    if (!isFirst && now < failure->second.nextTry)
        return; // another tile of the same try
    if (!isFirst)
        failure->second.pause = std::min<Clock::duration>(2 * failure->second.pause, longestPause);
    failure->second.nextTry = now + failure->second.pause;
}

void PageTiles::scheduleRetry(const std::vector<PlacedPage>& wanted) {
    std::optional<Clock::time_point> next;
    for (const PlacedPage& page : wanted) {
        const auto failure = m_unreadable.find(page.look.content);
        // One that is due is being tried now.
        if (failure != m_unreadable.end() && Clock::now() < failure->second.nextTry)
            next = std::min(next.value_or(failure->second.nextTry), failure->second.nextTry);
    }
    if (next)
        m_retry.start(std::chrono::ceil<std::chrono::milliseconds>(*next - Clock::now()));
    else
        m_retry.stop();
}

void PageTiles::beginFrame(const std::vector<PlacedPage>& pages, const QRectF& view) {
    m_sharp.beginFrame();
    m_standIns.beginFrame();
    m_annotated.beginFrame();
    for (const PlacedPage& page : pages) {
        for (const TileKey& key : TilePlan::tilesIn(page, view))
            (void)m_sharp.find(key); // used by this frame, so it stays
    }
}

void PageTiles::plan(TilePlan::Situation situation) {
    beginFrame(situation.pages, situation.view);
    situation.byteLimit = static_cast<qint64>(wantedShare * double(m_sharp.byteLimit()));
    m_renderer.setWanted(TilePlan::make(situation, [this](const TileKey& key) { return isDrawn(key); }));
    scheduleRetry(situation.pages);
}

void PageTiles::take(const TileKey& key, const QImage& image) {
    if (image.isNull())
        noteFailure(key.look.content);
    else if (key == TilePlan::standIn(key.look))
        m_standIns.insert(key, image);
    else
        m_sharp.insert(key, image);
    if (!image.isNull())
        m_unreadable.erase(key.look.content);
    else if (!m_retry.isActive())
        m_retry.start(firstPause);
    Q_EMIT tileArrived(key);
}

bool PageTiles::paint(QPainter& painter, const PlacedPage& page, const QRectF& area) {
    const auto live = page.page ? page.page->liveAnnotations() : std::vector<std::shared_ptr<PDFAnnotation>>();
    QRegion holes;
    for (const TileKey& key : TilePlan::tilesIn(page, area)) {
        const QImage* image = m_sharp.find(key);
        if (!image)
            image = m_standIns.find(key); // a page so small that its stand-in is as good as it gets
        const QRectF rect = QRectF(key.deviceRect()).translated(page.rect.topLeft());
        if (!image) {
            holes += rect.toAlignedRect();
            continue;
        }
        const QImage& shown = live.empty() ? *image : m_annotated.picture(page, key, *image, live);
        const QRectF seen = rect & QRectF(area.toAlignedRect());
        painter.drawImage(seen.topLeft(), shown, seen.translated(-rect.topLeft()));
    }
    if (holes.isEmpty())
        return true;
    painter.save();
    painter.setClipRegion(holes, Qt::IntersectClip);
    painter.fillRect(holes.boundingRect(), Qt::white);
    paintStandIns(painter, page, holes);
    painter.setClipRect(page.rect & area, Qt::IntersectClip);
    const QTransform toView = page.pageToPixels * QTransform::fromTranslate(page.rect.left(), page.rect.top());
    painter.setTransform(toView, true);
    PDFAnnotation::drawAll(LiveAnnotations::reaching(live, toView, QRectF(holes.boundingRect()) & area), page.look.box,
                           painter);
    painter.restore();
    return isUnreadable(page.look.content);
}

bool PageTiles::isSharp(const PlacedPage& page, const QRectF& area) const {
    const std::vector<TileKey> tiles = TilePlan::tilesIn(page, area);
    return std::all_of(tiles.begin(), tiles.end(), [this](const TileKey& key) { return isDrawn(key); });
}

void PageTiles::paintStandIns(QPainter& painter, const PlacedPage& page, const QRegion& holes) {
    std::vector<std::pair<TileKey, QImage>> others = m_standIns.otherLooks(page.look);
    const std::size_t small = others.size();
    std::vector<std::pair<TileKey, QImage>> older = m_sharp.otherLooks(page.look);
    // The nearest in size is painted last, over the others.
    const auto unlikeness = [&](const PageLook& look) {
        return std::abs(std::log(double(look.pixels.width()) / page.look.pixels.width()));
    };
    std::stable_sort(older.begin(), older.end(), [&](const auto& left, const auto& right) {
        return unlikeness(left.first.look) > unlikeness(right.first.look);
    });
    int layers = 0;
    auto first = older.end();
    for (const PageLook* previous = nullptr; first != older.begin(); --first) {
        const PageLook& look = std::prev(first)->first.look;
        if (!previous || *previous != look)
            ++layers;
        if (layers > layerLimit)
            break;
        previous = &look;
    }
    others.insert(others.begin() + static_cast<std::ptrdiff_t>(small), first, older.end());
    if (others.empty())
        return;

    painter.save();
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    const QRectF wanted(holes.boundingRect());
    for (const auto& [key, image] : others) {
        const double across = page.rect.width() / key.look.pixels.width();
        const double down = page.rect.height() / key.look.pixels.height();
        const QRectF part(key.deviceRect());
        const QPointF corner = page.rect.topLeft() + QPointF(part.left() * across, part.top() * down);
        // Only what is seen: the whole may be larger than the painter can count.
        const QRectF target = QRectF(corner, QSizeF(part.width() * across, part.height() * down)) & wanted;
        if (!target.isEmpty())
            painter.drawImage(target, image,
                              QRectF((target.left() - corner.x()) / across, (target.top() - corner.y()) / down,
                                     target.width() / across, target.height() / down));
    }
    painter.restore();
}

void PageTiles::dropUnseen(const std::vector<PlacedPage>& visible, const QRectF& view) {
    m_renderer.setWanted({});
    beginFrame(visible, view);
    m_sharp.dropUnused();
    m_standIns.clear();
    m_annotated.clear();
    m_unreadable.clear();
}

void PageTiles::keepStandIns() {
    m_renderer.reset();
    m_sharp.clear();
    m_standIns.beginFrame(); // nothing of it is on the screen: others may take its room
    m_annotated.clear();
    m_unreadable.clear();
}

void PageTiles::clear() {
    m_renderer.reset();
    m_sharp.clear();
    m_standIns.clear();
    m_annotated.clear();
    m_unreadable.clear();
}
