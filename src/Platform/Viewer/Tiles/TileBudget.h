#pragma once

#include <QtGlobal>

#include <vector>

class TileCache;

/// One limit in bytes for several tile caches: past it, the tiles leave that were unused for the longest time,
/// whichever cache has them. What the current frame of a cache uses never leaves. Main thread only.
class TileBudget {
public:
    explicit TileBudget(qint64 byteLimit) : m_limit(byteLimit) {}
    TileBudget(const TileBudget&) = delete;
    TileBudget& operator=(const TileBudget&) = delete;

    /// That of all views of the program.
    [[nodiscard]] static TileBudget& ofProgram();

    [[nodiscard]] qint64 bytes() const;

private:
    friend class TileCache;

    void add(TileCache& cache) { m_caches.push_back(&cache); }
    void remove(TileCache& cache) { std::erase(m_caches, &cache); }
    /// Grows with every use, so that uses of different caches can be put in order.
    [[nodiscard]] quint64 nextUse() { return ++m_uses; }
    void makeRoom();

    qint64 m_limit;
    quint64 m_uses = 0;
    std::vector<TileCache*> m_caches; // not owned; each removes itself
};
