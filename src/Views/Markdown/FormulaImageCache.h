#pragma once

#include "MathImageRenderer.h"

#include <QHash>
#include <QRgba64>
#include <QString>

#include <list>
#include <mutex>
#include <optional>

/// Images of formulas by what decides their look. When there are too many, or they take too much memory, those that
/// were not asked for longest go first. Any thread.
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

    /// None when it isn't kept.
    [[nodiscard]] std::optional<MathImageRenderer::RenderedFormula> find(const Key& key);
    /// Of two images for a key the first is kept. One that is too large by itself isn't.
    void insert(const Key& key, const MathImageRenderer::RenderedFormula& formula);
    void clear();

    [[nodiscard]] qsizetype count() const;
    [[nodiscard]] qsizetype bytes() const;

private:
    struct Entry {
        Key key;
        MathImageRenderer::RenderedFormula formula;
    };

    const qsizetype m_maximumCount;
    const qsizetype m_maximumBytes;
    mutable std::mutex m_mutex; ///< of all below
    qsizetype m_bytes = 0;
    std::list<Entry> m_entries; ///< what was asked for last is at the front
    QHash<Key, std::list<Entry>::iterator> m_places;
};
