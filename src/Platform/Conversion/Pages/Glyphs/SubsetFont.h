#pragma once

#include <QByteArray>
#include <QByteArrayView>
#include <QRect>

#include <map>
#include <vector>

/// A TrueType font (ISO/IEC 14496-22) as it is embedded in a PDF, to which glyphs are added that are made of its own.
/// One thread at a time.
class SubsetFont {
public:
    /// A glyph of the font and where its origin is, in units of the font.
    struct Part {
        int glyph = 0;
        int x = 0;
        int y = 0;
    };

    explicit SubsetFont(QByteArray bytes);

    /// False for what isn't such a font: then there is no adding.
    [[nodiscard]] bool isSound() const { return m_glyphs > 0; }
    [[nodiscard]] int unitsPerEm() const { return m_unitsPerEm; }
    /// Whether it has that glyph, without an outline.
    [[nodiscard]] bool isBlank(int glyph) const {
        return glyph >= 0 && glyph < m_glyphs && outline(glyph).size() < boxSize;
    }
    [[nodiscard]] int glyphCount() const { return m_glyphs + int(m_added.size()); }

    /// Adds a glyph that shows these parts, or nothing, and returns its number; -1 when the font has no room for it, or
    /// has no such parts.
    int add(const std::vector<Part>& parts, int advance);

    /// The font with the added glyphs.
    [[nodiscard]] QByteArray written() const;

private:
    static constexpr qsizetype boxSize = 10; ///< of a glyph's head: the count of its contours and its box

    struct Added {
        QByteArray outline;
        QByteArray metrics;
    };

    [[nodiscard]] bool readTables();
    [[nodiscard]] const QByteArray& table(const char* tag) const; ///< one of those that each font has
    [[nodiscard]] QByteArrayView outline(int glyph) const;

    QByteArray m_bytes;
    std::map<QByteArray, QByteArray> m_tables; ///< by their tags
    int m_unitsPerEm = 0;
    int m_glyphs = 0; ///< of the font itself
    std::vector<quint32> m_offsets;
    std::vector<Added> m_added;
    int m_mostParts = 0;
};
