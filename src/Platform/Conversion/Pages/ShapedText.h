#pragma once

#include <QHash>
#include <QPointF>
#include <QString>
#include <QStringView>

#include <vector>

class LetterPages;
class QTextLayout;
class QTextLine;

/// Text in which a glyph is more or less than a letter. One thread at a time.
class ShapedText {
public:
    /// `mayJoin`: whether the fonts join Latin letters, too. `pages` has to outlive this.
    ShapedText(LetterPages& pages, bool mayJoin) : m_pages(pages), m_mayJoin(mayJoin) {}

    /// Where a line is drawn.
    struct Place {
        int page = 0;
        QPointF origin;  ///< of the line's layout within the page's frame, before it is scaled
        qreal scale = 1; ///< of the layout's pixels
    };

    /// Tells the pages which text the glyphs of that line stand for, as far as their font may not tell. `text` is that
    /// of the whole layout. Takes time for such words only.
    void add(const QTextLayout& layout, const QTextLine& line, QStringView text, const Place& place);

private:
    struct Cluster {
        qsizetype length = 0;            ///< of its text
        std::vector<std::size_t> glyphs; ///< among those of its word
    };
    struct Word {
        std::vector<quint32> glyphs; ///< their numbers in their fonts
        std::vector<Cluster> clusters;
    };

    [[nodiscard]] static Word divided(const QTextLayout& layout, const QTextLine& line, qsizetype from, qsizetype to);

    LetterPages& m_pages;
    bool m_mayJoin;
    QHash<QString, Word> m_words; ///< those that were divided already: it takes long
};
