#pragma once

#include "PlacedPage.h"

#include <QPoint>
#include <QRect>
#include <QSize>

#include <cstddef>

/// One tile of a page's picture: the cell of a grid that starts at the page's upper left corner.
struct TileKey {
    /// Tiles are wide, since a page as wide as the window should be one column of them: each replay of a page costs
    /// time of its own, and pages scroll down.
    static constexpr QSize tileSize{2048, 512};

    PageLook look;
    QPoint cell;

    /// In device pixels of the page; smaller than a tile at the right and lower edge of the page.
    [[nodiscard]] QRect deviceRect() const;

    bool operator==(const TileKey&) const = default;
};

/// Hashes for unordered containers. Contents with equal hashes are compared in full.
struct PageContentHash {
    [[nodiscard]] std::size_t operator()(const PDFPageContent& content) const noexcept;
};
struct TileKeyHash {
    [[nodiscard]] std::size_t operator()(const TileKey& key) const noexcept;
};
