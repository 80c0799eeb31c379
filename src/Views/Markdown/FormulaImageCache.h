#pragma once

#include "MathImageRenderer.h"

#include <QHash>
#include <QRgba64>
#include <QString>

#include <list>

/// Images of formulas by what decides their look. When there are too many, or they take too much memory, those that
/// were not asked for longest go first.
class FormulaImageCache {
public:
    struct Key {
        QString latex;
        double fontSize; ///< points
        QRgba64 color;
        double devicePixelRatio;

        bool operator==(const Key&) const = default;
        friend size_t qHash(const Key& key, size_t seed = 0) {
            return qHashMulti(seed, key.latex, key.fontSize, quint64(key.color), key.devicePixelRatio);
        }
    };

    FormulaImageCache(qsizetype maximumCount, qsizetype maximumBytes)
        : m_maximumCount(maximumCount), m_maximumBytes(maximumBytes) {}

    /// Null when it isn't kept. Valid until the next `insert` or `clear`.
    [[nodiscard]] const MathImageRenderer::RenderedFormula* find(const Key& key);
    /// For a key that isn't kept. An image that is too large by itself isn't either.
    void insert(const Key& key, const MathImageRenderer::RenderedFormula& formula);
    void clear();

    [[nodiscard]] qsizetype count() const { return m_places.size(); }
    [[nodiscard]] qsizetype bytes() const { return m_bytes; }

private:
    struct Entry {
        Key key;
        MathImageRenderer::RenderedFormula formula;
    };

    qsizetype m_maximumCount;
    qsizetype m_maximumBytes;
    qsizetype m_bytes = 0;
    std::list<Entry> m_entries; ///< what was asked for last is at the front
    QHash<Key, std::list<Entry>::iterator> m_places;
};
