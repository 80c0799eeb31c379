#include "MTCharacterReader.h"

namespace {

/// The first unit that can join another one into a cluster, but for a line feed behind a carriage return.
constexpr char16_t firstJoiningUnit = 0x0300;

} // namespace

QStringView MTCharacterReader::next() {
    m_previousIndex = m_index;
    const char16_t unit = m_text[m_index].unicode();
    const char16_t following = m_index + 1 < m_text.size() ? m_text[m_index + 1].unicode() : u'\0';
    if (unit < firstJoiningUnit && following < firstJoiningUnit && unit != u'\r') {
        ++m_index;
    } else {
        if (!m_clusters)
            m_clusters.emplace(QTextBoundaryFinder::Grapheme, m_text);
        m_clusters->setPosition(m_index);
        const qsizetype boundary = m_clusters->toNextBoundary();
        m_index = boundary > m_index ? boundary : m_text.size();
    }
    return m_text.sliced(m_previousIndex, m_index - m_previousIndex);
}
