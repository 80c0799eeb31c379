#include "TilePlan.h"

#include <algorithm>
#include <cmath>

/// The longer side of a stand-in, in pixels: readable as a page, and some 300 kB.
static constexpr int standInSide = 360;
/// How far ahead of the screen sharp tiles are drawn, and how far behind it they are kept wanted; in screen heights.
static constexpr double screensAhead = 2.0;
static constexpr double screensBehind = 0.5;

namespace {

/// Collects jobs, each once, and watches the memory that sharp tiles will take.
class Collector {
public:
    Collector(qint64 byteLimit, const std::function<bool(const TileKey&)>& isDrawn)
        : m_bytesLeft(byteLimit), m_isDrawn(isDrawn) {}

    void addStandIn(const PlacedPage& page) {
        const TileKey key = TilePlan::standIn(page.look);
        if (key.look.pixels != page.look.pixels && !m_isDrawn(key))
            add(page, key);
    }

    /// Tiles on the screen are wanted whatever they take.
    void addTiles(const PlacedPage& page, const QRectF& area, bool onScreen) {
        for (const TileKey& key : TilePlan::tilesIn(page, area)) {
            const QSize size = key.deviceRect().size();
            m_bytesLeft -= qint64(size.width()) * size.height() * 4;
            if (!onScreen && m_bytesLeft < 0)
                return;
            if (!m_isDrawn(key))
                add(page, key);
        }
    }

    [[nodiscard]] std::vector<TileJob> take() { return std::move(m_jobs); }

private:
    void add(const PlacedPage& page, const TileKey& key) {
        if (std::none_of(m_jobs.begin(), m_jobs.end(), [&](const TileJob& job) { return job.key == key; }))
            m_jobs.push_back(TilePlan::job(page, key));
    }

    qint64 m_bytesLeft;
    const std::function<bool(const TileKey&)>& m_isDrawn;
    std::vector<TileJob> m_jobs;
};

} // namespace

TileKey TilePlan::standIn(const PageLook& look) {
    TileKey key{look, {0, 0}};
    const QSizeF fitted = QSizeF(look.pixels).scaled(standInSide, standInSide, Qt::KeepAspectRatio);
    if (fitted.width() < look.pixels.width())
        key.look.pixels = fitted.toSize().expandedTo({1, 1});
    return key;
}

std::vector<TileKey> TilePlan::tilesIn(const PlacedPage& page, const QRectF& area) {
    const QRectF part = (page.rect & area).translated(-page.rect.topLeft());
    std::vector<TileKey> tiles;
    if (part.isEmpty())
        return tiles;
    const auto cellAfter = [](double edge, int side) { return static_cast<int>(std::ceil(edge / side)); };
    const int firstColumn = static_cast<int>(part.left()) / TileKey::tileSize.width();
    const int firstRow = static_cast<int>(part.top()) / TileKey::tileSize.height();
    for (int row = firstRow; row < cellAfter(part.bottom(), TileKey::tileSize.height()); ++row) {
        for (int column = firstColumn; column < cellAfter(part.right(), TileKey::tileSize.width()); ++column)
            tiles.push_back({page.look, {column, row}});
    }
    return tiles;
}

TileJob TilePlan::job(const PlacedPage& page, const TileKey& key) {
    const QRect part = key.deviceRect();
    PageRenderRequest request;
    request.content = key.look.content;
    request.hiddenAnnotations = key.look.hiddenAnnotations;
    // The tile's corner becomes the origin: the engine doesn't count pixels as far as a huge page needs it.
    request.pageToDevice = page.pageToPixels *
                           QTransform::fromScale(double(key.look.pixels.width()) / page.look.pixels.width(),
                                                 double(key.look.pixels.height()) / page.look.pixels.height()) *
                           QTransform::fromTranslate(-part.left(), -part.top());
    request.deviceRect = QRect(QPoint(0, 0), part.size());
    return {key, std::move(request)};
}

std::vector<TileJob> TilePlan::make(const Situation& situation, const std::function<bool(const TileKey&)>& isDrawn) {
    Collector collector(situation.byteLimit, isDrawn);
    const QRectF& view = situation.view;

    // In the order in which the reader comes to them; pages behind come last, nearest first.
    std::vector<const PlacedPage*> visible;
    std::vector<const PlacedPage*> ahead;
    std::vector<const PlacedPage*> behind;
    for (const PlacedPage& page : situation.pages) {
        const bool above = page.rect.bottom() <= view.top();
        if (!above && page.rect.top() < view.bottom())
            visible.push_back(&page);
        else
            (above == (situation.direction < 0) ? ahead : behind).push_back(&page);
    }
    if (situation.direction < 0) {
        std::reverse(visible.begin(), visible.end());
        std::reverse(ahead.begin(), ahead.end());
    } else {
        std::reverse(behind.begin(), behind.end());
    }

    if (situation.fast) {
        for (const PlacedPage* page : visible) {
            const std::vector<TileKey> tiles = tilesIn(*page, view);
            if (!std::all_of(tiles.begin(), tiles.end(), isDrawn))
                collector.addStandIn(*page);
        }
    }
    for (const PlacedPage* page : visible)
        collector.addTiles(*page, view, true);
    if (situation.fast) {
        for (const PlacedPage* page : ahead)
            collector.addStandIn(*page);
    }
    const double forward = view.height() * screensAhead * situation.direction;
    const double backward = -view.height() * screensBehind * situation.direction;
    for (const double reach : {forward, backward}) {
        const QRectF strip = reach > 0 ? QRectF(0, view.bottom(), view.width(), reach)
                                       : QRectF(0, view.top() + reach, view.width(), -reach);
        const auto addStrip = [&](const std::vector<const PlacedPage*>& pages) {
            for (const PlacedPage* page : pages)
                collector.addTiles(*page, strip, false);
        };
        addStrip(visible);
        addStrip(reach == forward ? ahead : behind);
    }
    for (const auto* pages : {&visible, &ahead, &behind}) {
        for (const PlacedPage* page : *pages)
            collector.addStandIn(*page);
    }
    return collector.take();
}
