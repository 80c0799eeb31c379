#pragma once

#include <QHash>
#include <QPointF>
#include <QString>

#include <vector>

/// The text of glyphs on the pages of a document whose fonts don't tell it: letters that a font joins, puts in another
/// order or takes apart. A cluster is the shortest text whose glyphs stand for it together.
class GlyphPlaces {
public:
    struct Glyph {
        float x;         ///< of its origin on the page, in points
        float y;         ///< upwards
        quint32 cluster; ///< on the page
    };

    struct Page {
        std::vector<Glyph> glyphs;  ///< in the order in which a line draws them
        std::vector<quint32> texts; ///< of the clusters
    };

    /// `places` are those of the cluster's glyphs, in points. Pages may come in any order.
    void add(int page, const QString& text, const std::vector<QPointF>& places);

    /// Null for a page without such glyphs.
    [[nodiscard]] const Page* page(int number) const;
    /// As a person types it.
    [[nodiscard]] const QString& text(quint32 number) const { return m_texts[number]; }

private:
    std::vector<Page> m_pages;
    std::vector<QString> m_texts; ///< each once
    QHash<QString, quint32> m_numbers;
};
