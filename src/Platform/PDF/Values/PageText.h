#pragma once

#include "PDFTypes.h"

#include <QColor>
#include <QString>

#include <cstdint>
#include <vector>

/// The text of one page in reading order, with the place of every character. An immutable value that any thread may
/// hold and read. Offsets count UTF-16 units of `string`; lines are separated by one "\n" each, which has no glyph.
class PageText {
public:
    struct Font {
        QString name; ///< PostScript name without the subset tag, "Helvetica-Bold"
        bool bold = false;
        bool italic = false;
        bool serif = false;
        bool monospaced = false;
        bool operator==(const Font&) const = default;
    };

    struct Glyph {
        PDFQuad quad;           ///< from descender to ascender, page coordinates
        QPointF origin;         ///< on the baseline, page coordinates
        float size = 0;         ///< points
        QRgb color = 0;         ///< opaque sRGB
        std::uint16_t font = 0; ///< index into `fonts`
    };

    struct Line {
        int start = 0;     ///< first offset
        int end = 0;       ///< one past the last offset; the newline isn't part of the line
        QRectF bounds;     ///< around the glyphs, page coordinates
        QPointF direction; ///< unit vector of the writing direction; (1, 0) for upright text
        int block = 0;     ///< lines of one paragraph or column share it
        /// How far the font that most of it is set in reaches, from descender to ascender, as distances from the origin
        /// across the direction (upwards for upright text). A bullet or a superscript doesn't count.
        double low = 0;
        double high = 0;
    };

    QString string;
    std::vector<Glyph> glyphs; ///< one for each UTF-16 unit of `string`; that of a newline is empty
    std::vector<Line> lines;
    std::vector<Font> fonts;

    /// The line that holds the offset, or that ends there; -1 when there is none.
    [[nodiscard]] int lineAt(int offset) const;

    /// The line whose box holds the point; -1 when there is none.
    [[nodiscard]] int lineContaining(QPointF point) const;

    /// The offset of the gap between two characters that is nearest to the point, for the end of a drag: the nearest
    /// line first, then the nearest gap in it. 0 for a page without text.
    [[nodiscard]] int gapNearest(QPointF point) const;

    /// The offset of the character whose box holds the point; -1 when there is none.
    [[nodiscard]] int characterAt(QPointF point) const;

    /// The word (letters, digits, marks and apostrophes; or one symbol) around the offset, as [start, end).
    [[nodiscard]] std::pair<int, int> wordAround(int offset) const;

    /// One rectangle for each line that [start, end) touches, around its glyphs there.
    [[nodiscard]] std::vector<QRectF> lineRects(int start, int end) const;

    /// For marking the text: quadrilaterals that follow the direction of each line, as high as the line's own font,
    /// and where lines stand so close that these would overlap, up to halfway.
    [[nodiscard]] std::vector<PDFQuad> lineQuads(int start, int end) const;

    /// Sets `low` and `high` of a line whose glyphs are in place, for who builds the value.
    void measureHeight(Line& line) const;

private:
    [[nodiscard]] std::pair<double, double> ownHeight(std::size_t line) const;
};
