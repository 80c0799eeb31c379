#include "FormulaImageCache.h"

std::optional<MathImageRenderer::RenderedFormula> FormulaImageCache::find(const Key& key) {
    const std::lock_guard lock(m_mutex);
    const auto place = m_places.constFind(key);
    if (place == m_places.constEnd())
        return std::nullopt;
    m_entries.splice(m_entries.begin(), m_entries, *place);
    return m_entries.front().formula;
}

void FormulaImageCache::insert(const Key& key, const MathImageRenderer::RenderedFormula& formula) {
    const std::lock_guard lock(m_mutex);
    if (m_places.contains(key))
        return;
    m_entries.push_front({key, formula});
    m_places.insert(key, m_entries.begin());
    m_bytes += formula.image.sizeInBytes();
    while (m_places.size() > m_maximumCount || m_bytes > m_maximumBytes) {
        m_bytes -= m_entries.back().formula.image.sizeInBytes();
        m_places.remove(m_entries.back().key);
        m_entries.pop_back();
    }
}

void FormulaImageCache::clear() {
    const std::lock_guard lock(m_mutex);
    m_places.clear();
    m_entries.clear();
    m_bytes = 0;
}

qsizetype FormulaImageCache::count() const {
    const std::lock_guard lock(m_mutex);
    return m_places.size();
}

qsizetype FormulaImageCache::bytes() const {
    const std::lock_guard lock(m_mutex);
    return m_bytes;
}
