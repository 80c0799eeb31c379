#pragma once

#include "CTFont.h"
#include "MTFontMathTable.h"

#include <QString>

#include <memory>

/// A math font at a size: its glyphs (`ctFont`) and its math table, both in points. It never changes and may be used on
/// any number of threads at once.
class MTFont {
public:
    /// Reads the font `name` (see `MathFontNames`) and its property list from the bundle folder that comes with the
    /// program, or from `bundleFolder`. This takes some milliseconds; `MTFontManager` keeps fonts. Throws `FontError`,
    /// and `MTException` when the property list is of another version.
    MTFont(const QString& name, double size);
    MTFont(const QString& name, double size, const QString& bundleFolder);
    virtual ~MTFont();
    MTFont(const MTFont&) = delete;
    MTFont& operator=(const MTFont&) = delete;

    /// The same font at another size, with a table of its own. What was read from the files is shared: nothing is read
    /// again.
    [[nodiscard]] virtual std::shared_ptr<MTFont> copy(double size) const;

    [[nodiscard]] double fontSize() const { return m_ctFont->size(); }
    [[nodiscard]] const std::shared_ptr<const CGFont>& defaultCGFont() const { return m_ctFont->cgFont(); }
    [[nodiscard]] const std::shared_ptr<const CTFont>& ctFont() const { return m_ctFont; }
    /// Lives as long as the font.
    [[nodiscard]] virtual const MTFontMathTable& mathTable() const;
    [[nodiscard]] virtual std::shared_ptr<const MTRawMathTable> rawMathTable() const;

    [[nodiscard]] const QString& nameForGlyph(CGGlyph glyph) const { return defaultCGFont()->glyphName(glyph); }
    /// 0 when the font has no glyph of that name.
    [[nodiscard]] CGGlyph glyphWithName(const QString& name) const { return defaultCGFont()->glyphWithName(name); }

protected:
    /// For a font that gets its table elsewhere: `mathTable`, `rawMathTable` and `copy` are to be overridden.
    explicit MTFont(std::shared_ptr<const CTFont> ctFont);

private:
    MTFont(std::shared_ptr<const CTFont> ctFont, std::shared_ptr<const MTRawMathTable> rawMathTable);

    std::shared_ptr<const CTFont> m_ctFont;
    std::shared_ptr<const MTRawMathTable> m_rawMathTable;
    std::unique_ptr<const MTFontMathTable> m_mathTable;
};
