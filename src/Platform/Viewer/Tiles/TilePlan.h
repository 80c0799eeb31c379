#pragma once

#include "PlacedPage.h"
#include "TileRenderer.h"

#include <QRectF>

#include <functional>
#include <vector>

/// Which tiles are wanted, and in which order.
namespace TilePlan {

struct Situation {
    std::vector<PlacedPage> pages; ///< in order; those on the screen and some on either side
    QRectF view;                   ///< device pixels, origin zero
    int direction = 1;             ///< 1 scrolling down the document, -1 up
    bool fast = false;             ///< scrolling so fast that a page is gone in a moment
    qint64 byteLimit = 0;          ///< what wanted sharp tiles may take in all
};

/// The small picture of a whole page that stands in until sharp tiles arrive.
[[nodiscard]] TileKey standIn(const PageLook& look);

/// The tiles of a page that `area` (device pixels of the view) touches, row by row.
[[nodiscard]] std::vector<TileKey> tilesIn(const PlacedPage& page, const QRectF& area);

[[nodiscard]] TileJob job(const PlacedPage& page, const TileKey& key);

/// The most wanted first: what is on the screen, then what is about to come, then stand-ins of the pages around.
/// `isDrawn` tells which tiles need no work.
[[nodiscard]] std::vector<TileJob> make(const Situation& situation, const std::function<bool(const TileKey&)>& isDrawn);

} // namespace TilePlan
