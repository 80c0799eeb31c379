#include "AnnotatedTiles.h"

#include "LiveAnnotations.h"
#include "PDFAnnotation.h"

#include <QPainter>

#include <algorithm>
#include <utility>

/// The parts to redraw one by one: a single one when there are many or when they lie close together.
static QRegion placesOf(const QRegion& stale) {
    constexpr int most = 8;
    qint64 area = 0;
    for (const QRect& part : stale)
        area += qint64(part.width()) * part.height();
    const QRect around = stale.boundingRect();
    const bool areClose = qint64(around.width()) * around.height() < 3 * area;
    return stale.rectCount() > most || areClose ? QRegion(around) : stale;
}

void AnnotatedTiles::beginFrame() {
    std::erase_if(m_entries, [this](const Entry& entry) {
        // One without an image takes nothing of the limit, so there could be any number.
        return entry.page.expired() || (entry.image.isNull() && entry.frame < m_frame);
    });
    qint64 taken = bytes();
    while (taken > m_limit) {
        const auto oldest =
            std::min_element(m_entries.begin(), m_entries.end(),
                             [](const Entry& one, const Entry& other) { return one.frame < other.frame; });
        if (oldest == m_entries.end() || oldest->frame >= m_frame)
            break;
        taken -= oldest->image.sizeInBytes();
        m_entries.erase(oldest);
    }
    ++m_frame;
}

qint64 AnnotatedTiles::bytes() const {
    qint64 sum = 0;
    for (const Entry& entry : m_entries)
        sum += entry.image.sizeInBytes();
    return sum;
}

AnnotatedTiles::Entry& AnnotatedTiles::entry(const PlacedPage& page, const TileKey& key) {
    const auto found = std::find_if(m_entries.begin(), m_entries.end(), [&](const Entry& entry) {
        return entry.key.cell == key.cell && entry.page.lock() == page.page && entry.key == key;
    });
    if (found != m_entries.end())
        return *found;
    const QPoint corner = key.deviceRect().topLeft();
    Entry& made = m_entries.emplace_back();
    made.page = page.page;
    made.key = key;
    made.pageToTile = page.pageToPixels * QTransform::fromTranslate(-corner.x(), -corner.y());
    made.stale = QRect(QPoint(0, 0), key.deviceRect().size());
    return made;
}

const QImage& AnnotatedTiles::picture(const PlacedPage& page, const TileKey& key, const QImage& plain,
                                      const std::vector<std::shared_ptr<PDFAnnotation>>& live) {
    Entry& shown = entry(page, key);
    shown.frame = m_frame;
    if (!shown.stale.isEmpty())
        refresh(shown, plain, page.look.box, live);
    return shown.image.isNull() ? plain : shown.image;
}

void AnnotatedTiles::refresh(Entry& entry, const QImage& plain, PDFDisplayBox box,
                             const std::vector<std::shared_ptr<PDFAnnotation>>& live) {
    const QRegion stale = std::exchange(entry.stale, {});
    const QRect around = stale.boundingRect();
    const auto nearby = LiveAnnotations::reaching(live, entry.pageToTile, around);
    if (entry.image.isNull() && nearby.empty())
        return;
    if (entry.image.isNull())
        entry.image = plain.copy();
    QPainter painter(&entry.image);
    for (const QRect& place : placesOf(stale)) {
        painter.resetTransform();
        painter.setClipRect(place);
        painter.drawImage(place.topLeft(), plain, place);
        painter.setTransform(entry.pageToTile);
        PDFAnnotation::drawAll(LiveAnnotations::reaching(nearby, entry.pageToTile, place), box, painter);
    }
}

void AnnotatedTiles::noteChange(const PDFPage& page, const QRectF& area) {
    for (Entry& entry : m_entries) {
        if (entry.page.lock().get() != &page)
            continue;
        const QRect tile(QPoint(0, 0), entry.key.deviceRect().size());
        constexpr int blur = 2; // pixels that smooth edges reach past their geometry
        entry.stale += area.isNull()
                           ? tile
                           : entry.pageToTile.mapRect(area).toAlignedRect().adjusted(-blur, -blur, blur, blur) & tile;
    }
}
