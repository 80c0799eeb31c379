#pragma once

#include "CGGlyph.h"

#include <QColor>
#include <QString>

#include <vector>

class MTFont;

/// Characters of one font set side by side: their glyphs, where each begins, and how far they reach, in points and y
/// up.
struct MTTextRun {
    struct Glyph {
        CGGlyph glyph;
        double x; ///< from the start of the run
    };
    /// Glyphs from `first` up to and without `end` that have a colour of their own.
    struct ColoredGlyphs {
        std::size_t first;
        std::size_t end;
        QColor color;
    };

    QString text;
    std::vector<Glyph> glyphs;
    std::vector<ColoredGlyphs> colors; ///< in order
    double width = 0;
    double ascent = 0;  ///< of the outlines; never negative
    double descent = 0; ///< likewise

    [[nodiscard]] bool isEmpty() const { return text.isEmpty(); }

    /// A glyph for each character; those that the font lacks show its missing glyph. A letter of mathematics keeps its
    /// italic correction from a next one among `characters`, since the two are factors and no word (TeXbook, appendix
    /// G, rule 17). All else stands at its advance.
    void append(const MTFont& font, QStringView characters);
    void append(const MTFont& font, QStringView characters, const QColor& color);
    /// Adds room behind the last character.
    void kern(double space) { width += space; }
};
