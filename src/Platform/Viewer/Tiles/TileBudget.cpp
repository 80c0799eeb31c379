#include "TileBudget.h"

#include "TileCache.h"

TileBudget& TileBudget::ofProgram() {
    static TileBudget budget(qint64(256) << 20);
    return budget;
}

qint64 TileBudget::bytes() const {
    qint64 sum = 0;
    for (const TileCache* cache : m_caches)
        sum += cache->bytes();
    return sum;
}

void TileBudget::makeRoom() {
    for (qint64 excess = bytes() - m_limit; excess > 0;) {
        TileCache* oldest = nullptr;
        for (TileCache* cache : m_caches)
            if (cache->hasUnused() && (!oldest || cache->oldestUse() < oldest->oldestUse()))
                oldest = cache;
        if (!oldest)
            return;
        excess -= oldest->removeOldest();
    }
}
