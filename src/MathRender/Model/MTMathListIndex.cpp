#include "MTMathListIndex.h"

#include <QHashFunctions>

QString MTMathListIndex::description() const {
    if (!m_subIndex)
        return QStringLiteral("[%1]").arg(m_atomIndex);
    return QStringLiteral("[%1, %2:%3]")
        .arg(m_atomIndex)
        .arg(static_cast<int>(m_subIndexType))
        .arg(m_subIndex->description());
}

std::size_t MTMathListIndex::hash() const {
    return qHashMulti(0, m_atomIndex, static_cast<int>(m_subIndexType));
}

bool operator==(const MTMathListIndex& left, const MTMathListIndex& right) {
    if (left.m_atomIndex != right.m_atomIndex || left.m_subIndexType != right.m_subIndexType)
        return false;
    if (!left.m_subIndex || !right.m_subIndex)
        return left.m_subIndex == right.m_subIndex;
    return *left.m_subIndex == *right.m_subIndex;
}
