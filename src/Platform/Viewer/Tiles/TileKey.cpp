#include "TileKey.h"

#include <QHashFunctions>

QRect TileKey::deviceRect() const {
    const QPoint corner(cell.x() * tileSize.width(), cell.y() * tileSize.height());
    return QRect(corner, tileSize) & QRect(QPoint(0, 0), look.pixels);
}

std::size_t PageContentHash::operator()(const PDFPageContent& content) const noexcept {
    return qHashMulti(0, content.source.get(), content.pageNumber);
}

std::size_t TileKeyHash::operator()(const TileKey& key) const noexcept {
    const PageLook& look = key.look;
    return qHashMulti(PageContentHash()(look.content), look.pixels.width(), look.pixels.height(), look.rotation,
                      key.cell.x(), key.cell.y());
}
