#pragma once

#include "CGGlyph.h"
#include "GlyphBox.h"

#include <QString>

#include <memory>

class QByteArray;
class QPainterPath;

/// A font file at no particular size: all measures are in font units, `unitsPerEm` to the em, y up. It never changes,
/// and every operation may be called on any number of threads at once. Boxes and outlines are read from the file when
/// a glyph is first asked for and kept; from then on, and for all else, no lock is taken. A glyph outside of the font
/// counts as glyph 0.
class CGFont {
public:
    /// Reads the font at `path` as a whole: the file may be replaced or removed afterwards. Throws `FontError`
    /// (`fontPathNotFound`, `invalidFontFile`, `initFontError` or `registerFailed`).
    [[nodiscard]] static std::shared_ptr<const CGFont> read(const QString& path);

    /// `name` stands in for the file's name in errors. Throws as `read`.
    CGFont(const QByteArray& bytes, const QString& name);
    ~CGFont();
    CGFont(const CGFont&) = delete;
    CGFont& operator=(const CGFont&) = delete;

    [[nodiscard]] int unitsPerEm() const { return m_unitsPerEm; }
    [[nodiscard]] int numberOfGlyphs() const { return m_numberOfGlyphs; }

    /// The glyph of a Unicode character; 0 when the font has none. No substitution or composition is done.
    [[nodiscard]] CGGlyph glyph(char32_t character) const;
    /// The glyph of that name; 0 when the font has none (see `GlyphNames`).
    [[nodiscard]] CGGlyph glyphWithName(const QString& name) const;
    /// Unique in the font, and never empty.
    [[nodiscard]] const QString& glyphName(CGGlyph glyph) const;

    [[nodiscard]] int advance(CGGlyph glyph) const;
    [[nodiscard]] GlyphBox boundingBox(CGGlyph glyph) const;
    /// The closed contours in font units with the origin at (0, 0), to be filled by the winding rule. Lives as long as
    /// the font.
    [[nodiscard]] const QPainterPath& glyphPath(CGGlyph glyph) const;

private:
    struct Contents;

    /// The glyph itself, or 0 when it is outside of the font.
    [[nodiscard]] CGGlyph known(CGGlyph glyph) const { return glyph < m_numberOfGlyphs ? glyph : CGGlyph{0}; }

    int m_unitsPerEm = 0;
    int m_numberOfGlyphs = 0;
    std::unique_ptr<Contents> m_contents;
};
