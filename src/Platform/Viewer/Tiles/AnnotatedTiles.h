#pragma once

#include "TileKey.h"
#include "TilePlan.h"

#include <QImage>
#include <QRegion>
#include <QTransform>

#include <memory>
#include <vector>

class PDFAnnotation;

/// Sharp tiles with the live annotations of their page drawn in, so that scrolling draws none again and a change draws
/// only what lies where it happened. Main thread only.
class AnnotatedTiles {
public:
    explicit AnnotatedTiles(qint64 byteLimit) : m_limit(byteLimit) {}

    /// What is asked for from now on belongs to a new frame; what the last ones used stays within the limit.
    void beginFrame();

    /// The tile as it is to be shown: `plain` itself where no annotation reaches it. Valid until the next call.
    /// `live` are those of the page.
    [[nodiscard]] const QImage& picture(const PlacedPage& page, const TileKey& key, const QImage& plain,
                                        const std::vector<std::shared_ptr<PDFAnnotation>>& live);

    /// What the page shows changed within `area` (page coordinates; everywhere when it is null).
    void noteChange(const PDFPage& page, const QRectF& area);

    [[nodiscard]] qint64 bytes() const;
    /// How many tiles it knows, those that are shown as they are among them.
    [[nodiscard]] std::size_t count() const { return m_entries.size(); }
    void clear() { m_entries.clear(); }

private:
    struct Entry {
        std::weak_ptr<PDFPage> page;
        TileKey key;
        QTransform pageToTile; ///< page coordinates to pixels of the tile
        QImage image;          ///< null where the plain one will do
        QRegion stale;         ///< pixels of the tile
        quint64 frame = 0;     ///< that used it last
    };

    [[nodiscard]] Entry& entry(const PlacedPage& page, const TileKey& key);
    static void refresh(Entry& entry, const QImage& plain, PDFDisplayBox box,
                        const std::vector<std::shared_ptr<PDFAnnotation>>& live);

    qint64 m_limit;
    quint64 m_frame = 0;
    std::vector<Entry> m_entries;
};
