#pragma once

#include <qpdf/QPDF.hh>

#include <QByteArray>
#include <QString>

#include <unordered_map>
#include <vector>

/// A font whose letters show nothing, for text that lies over a picture of itself: any character of Unicode can be
/// written with it and is read again by whoever takes text out of the file. Letters are as wide as Helvetica's.
class GlyphlessFont {
public:
    /// How far a line reaches above its baseline, for one unit of font size. Nothing reaches below it.
    static constexpr double ascent = 1 / 0.85;

    /// The operator that shows the text, with its operand, in the order in which it is read. Words that run from the
    /// right to the left do so on the page as well, since readers put what they find there in order by its place.
    /// Characters that no text has (controls, halves of a pair) are left out. Empty when nothing is left, or when the
    /// font has no codes left.
    [[nodiscard]] QByteArray shown(const QString& text);

    /// True while nothing has been written with it.
    [[nodiscard]] bool isUnused() const { return m_characters.empty(); }

    /// The font's dictionary with all that it needs for what has been written, in `file`.
    [[nodiscard]] QPDFObjectHandle dictionary(QPDF& file) const;

private:
    /// 0 for a character that gets none.
    int codeOf(char32_t character);
    [[nodiscard]] QByteArray toUnicode() const;
    [[nodiscard]] QPDFObjectHandle widths() const;

    std::vector<char32_t> m_characters; // by code, the first of which is 1
    std::unordered_map<char32_t, int> m_codes;
};
