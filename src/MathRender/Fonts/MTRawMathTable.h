#pragma once

#include "CGGlyph.h"
#include "MTMathConstant.h"

#include <QString>
#include <QVariantMap>

#include <array>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <span>
#include <vector>

class CGFont;

/// The property list of a math font, in font units: the MATH table as it was extracted when the program was built. The
/// list names glyphs; the names are turned into the font's glyphs once, here, so that a look-up is an array access. One
/// table serves all sizes of its font. It never changes and may be used on any number of threads at once. A glyph
/// outside of the font has no entries.
class MTRawMathTable {
public:
    /// A part of a glyph assembly as the list has it; see `GlyphPart`.
    struct AssemblyPart {
        CGGlyph glyph;
        int advance;
        int startConnector;
        int endConnector;
        bool isExtender;
    };

    /// The list in the file at `path`, for `font`. Throws `FontError` (`fontPathNotFound`, `invalidMathTable`), and
    /// `MTException` when the list is of another version.
    [[nodiscard]] static std::shared_ptr<const MTRawMathTable> read(const QString& path, const CGFont& font);

    /// A list of any version. A name that the font does not have stands for glyph 0. Throws `FontError`
    /// (`invalidMathTable`) when an entry is not of its kind.
    MTRawMathTable(const QVariantMap& propertyList, const CGFont& font);

    /// Throws `MTException` unless the list is of the version that is read here.
    void checkVersion() const;

    /// 0 when the list doesn't have it.
    [[nodiscard]] int constant(MTMathConstant which) const { return m_constants[static_cast<std::size_t>(which)]; }
    /// None when the list doesn't have it. Slower than by constant, and meant for names that come from outside.
    [[nodiscard]] std::optional<int> constant(QStringView name) const;

    /// `glyph` alone when the list has no entry for it: never empty.
    [[nodiscard]] std::span<const CGGlyph> verticalVariants(CGGlyph glyph) const;
    [[nodiscard]] std::span<const CGGlyph> horizontalVariants(CGGlyph glyph) const;
    /// 0 when the list has no entry for the glyph.
    [[nodiscard]] int italicCorrection(CGGlyph glyph) const;
    [[nodiscard]] std::optional<int> topAccent(CGGlyph glyph) const;
    /// From bottom to top; empty when the list has no entry for the glyph.
    [[nodiscard]] std::span<const AssemblyPart> verticalAssembly(CGGlyph glyph) const;

private:
    /// A stretch of one of the common arrays.
    struct Slice {
        quint32 start = 0;
        quint32 count = 0;
    };
    struct GlyphEntry {
        Slice verticalVariants;
        Slice horizontalVariants;
        Slice verticalAssembly;
        std::optional<int> topAccent;
        int italicCorrection = 0;
    };
    class Reader;

    [[nodiscard]] std::span<const CGGlyph> variants(CGGlyph glyph, Slice GlyphEntry::*kind) const;

    QString m_version;
    std::array<int, mathConstantNames.size()> m_constants{};
    std::map<QString, int, std::less<>> m_constantsByName;
    std::vector<GlyphEntry> m_entries; ///< indexed by glyph
    std::vector<CGGlyph> m_variants;
    std::vector<AssemblyPart> m_parts;
};
