#include "TileCache.h"

#include <algorithm>

TileCache::TileCache(qint64 byteLimit, TileBudget& budget) : m_budget(budget), m_limit(byteLimit) {
    m_budget.add(*this);
}

void TileCache::setByteLimit(qint64 bytes) {
    m_limit = bytes;
    makeRoom();
}

const QImage* TileCache::find(const TileKey& key) {
    const auto found = m_entries.find(key);
    if (found == m_entries.end())
        return nullptr;
    const Entries::iterator entry = found->second;
    entry->frame = m_frame;
    entry->use = m_budget.nextUse();
    m_byUse.splice(m_byUse.begin(), m_byUse, entry);
    return &entry->image;
}

std::vector<std::pair<TileKey, QImage>> TileCache::otherLooks(const PageLook& look) const {
    std::vector<std::pair<TileKey, QImage>> tiles;
    const auto page = m_byPage.find(look.content);
    if (page == m_byPage.end())
        return tiles;
    for (const Entries::iterator entry : page->second) {
        if (entry->key.look != look && entry->key.look.showsSameSheet(look))
            tiles.emplace_back(entry->key, entry->image);
    }
    return tiles;
}

void TileCache::insert(const TileKey& key, const QImage& image) {
    if (const auto found = m_entries.find(key); found != m_entries.end())
        remove(found->second);
    m_byUse.push_front({key, image, m_frame, m_budget.nextUse()});
    m_entries.emplace(key, m_byUse.begin());
    m_byPage[key.look.content].push_back(m_byUse.begin());
    m_bytes += image.sizeInBytes();
    makeRoom();
    m_budget.makeRoom();
}

void TileCache::makeRoom() {
    while (m_bytes > m_limit && hasUnused())
        removeOldest();
}

void TileCache::dropUnused() {
    while (hasUnused())
        removeOldest();
}

qint64 TileCache::removeOldest() {
    const qint64 before = m_bytes;
    remove(std::prev(m_byUse.end()));
    return before - m_bytes;
}

void TileCache::remove(Entries::iterator entry) {
    m_bytes -= entry->image.sizeInBytes();
    const auto page = m_byPage.find(entry->key.look.content);
    std::erase(page->second, entry);
    if (page->second.empty())
        m_byPage.erase(page);
    m_entries.erase(entry->key);
    m_byUse.erase(entry);
}

void TileCache::clear() {
    m_entries.clear();
    m_byPage.clear();
    m_byUse.clear();
    m_bytes = 0;
}
