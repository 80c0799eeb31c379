#include "FormulaImageCache.h"

const MathImageRenderer::RenderedFormula* FormulaImageCache::find(const Key& key) {
    const auto place = m_places.constFind(key);
    if (place == m_places.constEnd())
        return nullptr;
    m_entries.splice(m_entries.begin(), m_entries, *place);
    return &m_entries.front().formula;
}

void FormulaImageCache::insert(const Key& key, const MathImageRenderer::RenderedFormula& formula) {
    m_entries.push_front({key, formula});
    m_places.insert(key, m_entries.begin());
    m_bytes += formula.image.sizeInBytes();
    while (count() > m_maximumCount || m_bytes > m_maximumBytes) {
        m_bytes -= m_entries.back().formula.image.sizeInBytes();
        m_places.remove(m_entries.back().key);
        m_entries.pop_back();
    }
}

void FormulaImageCache::clear() {
    m_places.clear();
    m_entries.clear();
    m_bytes = 0;
}
