#pragma once

#include "PDFPageContent.h"
#include "PDFTypes.h"

#include <QPoint>
#include <QRect>
#include <QSize>

#include <cstddef>
#include <vector>

/// All that decides how a page's own picture looks: two pages with equal looks have the same pixels.
struct PageLook {
    PDFPageContent content;
    std::vector<int> hiddenAnnotations; ///< see `PDFPage::hiddenFileAnnotations`
    PDFDisplayBox box = PDFDisplayBox::cropBox;
    int rotation = 0;
    QSize pixels; ///< of the whole page

    /// True when `other` shows the same sheet the same way up, at another size or with other annotations.
    [[nodiscard]] bool showsSameSheet(const PageLook& other) const {
        return content == other.content && box == other.box && rotation == other.rotation;
    }

    bool operator==(const PageLook&) const = default;
};

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
