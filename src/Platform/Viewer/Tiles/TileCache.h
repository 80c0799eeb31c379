#pragma once

#include "TileBudget.h"
#include "TileKey.h"

#include <QImage>

#include <list>
#include <unordered_map>
#include <utility>
#include <vector>

/// Drawn tiles, bounded in bytes: past its own limit, or that of a budget shared with others, the tiles that were not
/// used for the longest time leave. What the current frame used or brought never leaves, so a limit below one screenful
/// doesn't make the screen flicker.
class TileCache {
public:
    /// `budget` must outlive this.
    explicit TileCache(qint64 byteLimit, TileBudget& budget = TileBudget::ofProgram());
    ~TileCache() { m_budget.remove(*this); }
    TileCache(const TileCache&) = delete;
    TileCache& operator=(const TileCache&) = delete;

    [[nodiscard]] qint64 byteLimit() const { return m_limit; }
    void setByteLimit(qint64 bytes);
    [[nodiscard]] qint64 bytes() const { return m_bytes; }

    /// What is looked up or inserted from now on belongs to a new frame.
    void beginFrame() { ++m_frame; }

    /// The tile's picture, counted as used by this frame. Null when it isn't here; valid until the next change.
    [[nodiscard]] const QImage* find(const TileKey& key);
    [[nodiscard]] bool contains(const TileKey& key) const { return m_entries.contains(key); }
    /// All tiles of the same sheet that are of another look, in no order; not counted as used.
    [[nodiscard]] std::vector<std::pair<TileKey, QImage>> otherLooks(const PageLook& look) const;

    void insert(const TileKey& key, const QImage& image);
    /// Drops what the current frame hasn't used.
    void dropUnused();
    void clear();

    /// True when it holds a tile that the current frame hasn't used.
    [[nodiscard]] bool hasUnused() const { return !m_byUse.empty() && m_byUse.back().frame != m_frame; }
    /// Of the tile unused for the longest time, in the order of the budget. There must be a tile.
    [[nodiscard]] quint64 oldestUse() const { return m_byUse.back().use; }
    /// Drops that tile, and returns its size in bytes.
    qint64 removeOldest();

private:
    struct Entry {
        TileKey key;
        QImage image;
        quint64 frame;
        quint64 use;
    };
    using Entries = std::list<Entry>;

    void makeRoom();
    void remove(Entries::iterator entry);

    TileBudget& m_budget;
    qint64 m_limit;
    qint64 m_bytes = 0;
    quint64 m_frame = 0;
    Entries m_byUse; // last used first
    std::unordered_map<TileKey, Entries::iterator, TileKeyHash> m_entries;
    std::unordered_map<PDFPageContent, std::vector<Entries::iterator>, PageContentHash> m_byPage;
};
