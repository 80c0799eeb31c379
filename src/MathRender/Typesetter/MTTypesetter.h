#pragma once

#include "CGGlyph.h"
#include "MTGlyphDisplay.h"
#include "MTLineStyle.h"
#include "MTMathAtomType.h"
#include "MTMathListDisplay.h"
#include "MTStyleFonts.h"
#include "MTTextRun.h"

#include <QPointF>
#include <QStringView>

#include <memory>
#include <optional>
#include <vector>

class MTAccent;
class MTColoredAtom;
class MTDisplay;
class MTDisplayDS;
class MTFont;
class MTFontMathTable;
class MTFraction;
class MTInner;
class MTInnerListAtom;
class MTLargeOperator;
class MTMathAtom;
class MTMathList;
class MTMathTable;
class MTRadical;
struct GlyphPart;

/// Lays a formula out: a list becomes a tree of boxes, by the rules of appendix G of the TeXbook with the constants of
/// the OpenType MATH table. There is one typesetter for each list, short-lived; sublists get their own. It is usable on
/// any thread, and threads may share a font. The stack that it takes grows with the nesting of the formula, which the
/// parser limits; the time is about linear in the parts of the formula.
///
/// Each construction is in a source file of its own, MTTypesetter and its name.
class MTTypesetter {
public:
    using ListDisplay = std::unique_ptr<MTMathListDisplay>;
    using ListPointer = std::shared_ptr<MTMathList>;
    using AtomPointer = std::shared_ptr<MTMathAtom>;

    /// `list` is not changed. `font` has the size of text style. `cramped` is TeX's cramped style: superscripts are
    /// less high. `spaced` sets room at the ends, as between the list and delimiters around it.
    [[nodiscard]] static ListDisplay createLineForMathList(const MTMathList& list, std::shared_ptr<const MTFont> font,
                                                           MTLineStyle style, bool cramped = false,
                                                           bool spaced = false);

    MTTypesetter(const MTTypesetter&) = delete;
    MTTypesetter& operator=(const MTTypesetter&) = delete;

private:
    /// `fonts` is what the typesetters of one formula share; it outlives them.
    MTTypesetter(MTStyleFonts& fonts, MTLineStyle style, bool cramped, bool spaced);
    ~MTTypesetter();

    // The list (MTTypesetter.cpp)

    /// Lays out a list that is finalized, and leaves it as it is. Null counts as empty.
    [[nodiscard]] static ListDisplay layOut(MTStyleFonts& fonts, const MTMathList* list, MTLineStyle style,
                                            bool cramped, bool spaced);
    [[nodiscard]] ListDisplay layOut(const ListPointer& list, MTLineStyle style, bool cramped, bool spaced = false) {
        return layOut(m_fonts, list.get(), style, cramped, spaced);
    }
    /// What was added so far, as the boxes of `list`, which has atoms.
    [[nodiscard]] ListDisplay takeList(const MTMathList& list);
    /// The atoms with letters styled and neighbouring ordinary ones made one (rule 14). Those of `list` stay as they
    /// are: what differs from them is a copy.
    [[nodiscard]] static std::vector<AtomPointer> preprocessMathList(const MTMathList& list);
    void createDisplayAtoms(const std::vector<AtomPointer>& preprocessed);
    void createDisplayAtom(const AtomPointer& atom);
    void setStyle(MTLineStyle style);
    [[nodiscard]] const MTFontMathTable& styleMetrics() const;
    [[nodiscard]] MTLineStyle scriptStyle() const;
    [[nodiscard]] MTLineStyle fractionStyle() const;

    [[nodiscard]] double getInterElementSpace(MTMathAtomType left, MTMathAtomType right) const;
    /// Moves on by the space between the atom before, or the list's start, and one that counts as `type`.
    void addLeftSpace(MTMathAtomType type);
    /// Adds a box of an atom that now counts as `type`, and its scripts.
    void addBox(std::unique_ptr<MTDisplay> display, const MTMathAtom& atom, MTMathAtomType type);
    void addDisplay(std::unique_ptr<MTDisplay> display);

    // Text (MTTypesetterText.cpp)
    void addText(const AtomPointer& atom);
    MTDisplay& addDisplayLine();
    void flushLine();
    /// None for an empty text.
    [[nodiscard]] std::optional<CGGlyph> findGlyphForLastCharacter(QStringView text) const;

    // Scripts (MTTypesetterScripts.cpp)
    [[nodiscard]] static bool hasScripts(const MTMathAtom& atom);
    /// `delta` is the italic correction of what the scripts are put on: it moves the superscript when there are both.
    void makeScripts(const MTMathAtom& atom, MTDisplay& display, int index, double delta);
    [[nodiscard]] ListDisplay makeSubscript(const MTMathAtom& atom, int index);
    [[nodiscard]] ListDisplay makeSuperscript(const MTMathAtom& atom, int index);
    [[nodiscard]] double superScriptShiftUp() const;

    // Colours (MTTypesetterColors.cpp)
    void addColored(const MTColoredAtom& atom);

    // Fractions (MTTypesetterFraction.cpp)
    [[nodiscard]] std::unique_ptr<MTDisplay> makeFraction(const MTFraction& frac);
    [[nodiscard]] std::unique_ptr<MTDisplay> addDelimitersToFractionDisplay(std::unique_ptr<MTDisplay> display,
                                                                            const MTFraction& frac);

    // Radicals (MTTypesetterRadical.cpp)
    [[nodiscard]] std::unique_ptr<MTDisplay> makeRadical(const MTRadical& radical);
    [[nodiscard]] std::unique_ptr<MTDisplayDS> getRadicalGlyphWithHeight(double height) const;

    // Large operators (MTTypesetterLargeOperator.cpp)
    /// `atom` is the owner of `op`.
    void makeLargeOp(const MTLargeOperator& op, const AtomPointer& atom);
    void addLimitsToDisplay(std::unique_ptr<MTDisplay> display, const MTLargeOperator& op, double delta);

    // Delimiters (MTTypesetterDelimiters.cpp)
    [[nodiscard]] std::unique_ptr<MTDisplay> makeInner(const MTInner& inner);
    [[nodiscard]] std::unique_ptr<MTDisplay> makeLeftRight(const MTInner& inner);
    /// Centred on the axis. At least `height` points high in all when the font can do that.
    [[nodiscard]] std::unique_ptr<MTDisplayDS> findGlyphForBoundary(QStringView delimiter, double height) const;

    // Glyphs that grow (MTTypesetterGlyphs.cpp)
    struct FoundGlyph {
        CGGlyph glyph = 0;
        MTGlyphExtent extent;
    };
    [[nodiscard]] static MTGlyphExtent extentOf(CGGlyph glyph, const MTFont& font);
    /// The first vertical variant that is at least `height` points high in all, or the last.
    [[nodiscard]] FoundGlyph findGlyph(CGGlyph glyph, double height) const;
    /// A variant, or when none is high enough a construction, of the character.
    [[nodiscard]] std::unique_ptr<MTDisplayDS> stretchedGlyph(CGGlyph glyph, double height, MTRange range) const;
    /// Null when the font can't build the glyph.
    [[nodiscard]] std::unique_ptr<MTDisplayDS> constructGlyph(CGGlyph glyph, double height) const;

    // Accents (MTTypesetterAccent.cpp)
    struct Extent {
        double ascent;
        double width;
    };
    /// With the scripts of `accent` beside the letter, if that is a single one, and else beside the whole.
    void addAccent(const MTAccent& accent);
    /// The same with the scripts of `scripted`, an accent above this one. Gives how far it reaches without them.
    Extent addAccent(const MTAccent& accent, const MTMathAtom& scripted);
    /// The single letter, or accented letter, under an accent with the scripts of `scripted`, and in `bare` how far it
    /// reaches without them.
    [[nodiscard]] ListDisplay layOutScriptedLetter(const MTAccent& accent, const MTMathAtom& scripted, Extent& bare);
    [[nodiscard]] FoundGlyph findVariantGlyph(CGGlyph glyph, double maxWidth) const;
    [[nodiscard]] double getSkew(const MTAccent& accent, double accenteeWidth, CGGlyph accentGlyph) const;
    /// The letter at the bottom of a pile of accents; none when that is a longer list.
    [[nodiscard]] std::optional<CGGlyph> accentedLetter(const MTAccent& accent) const;
    [[nodiscard]] static bool isSingleCharAccentee(const MTAccent& accent);

    // Lines over and under (MTTypesetterLines.cpp)
    [[nodiscard]] std::unique_ptr<MTDisplay> makeUnderline(const MTInnerListAtom& under);
    [[nodiscard]] std::unique_ptr<MTDisplay> makeOverline(const MTInnerListAtom& over);

    // Tables (MTTypesetterTable.cpp)
    using Cells = std::vector<ListDisplay>;
    [[nodiscard]] std::unique_ptr<MTDisplay> makeTable(const MTMathTable& table);
    [[nodiscard]] std::vector<Cells> typesetCells(const MTMathTable& table, std::vector<double>& columnWidths);
    [[nodiscard]] ListDisplay makeRowWithColumns(Cells cells, const MTMathTable& table,
                                                 const std::vector<double>& columnWidths) const;
    void positionRows(const std::vector<std::unique_ptr<MTDisplay>>& rows, const MTMathTable& table) const;

    MTStyleFonts& m_fonts;
    MTLineStyle m_style = MTLineStyle::display;
    std::shared_ptr<const MTFont> m_styleFont; ///< the font at the size of `m_style`
    bool m_cramped;
    bool m_spaced;

    std::vector<std::unique_ptr<MTDisplay>> m_displayAtoms; ///< so far
    QPointF m_currentPosition;                              ///< x grows as boxes are added
    MTTextRun m_currentLine;                                ///< the text that is being gathered
    std::vector<AtomPointer> m_currentAtoms;                ///< what that is made of
    std::optional<MTRange> m_currentLineIndexRange;
    /// How the last atom counts for the space behind it; none at the start.
    std::optional<MTMathAtomType> m_lastType;
};
