#pragma once

#include "GlyphText.h"
#include "SubsetFont.h"

#include <QByteArray>
#include <QHash>
#include <QString>

#include <vector>

#include <qpdf/QPDFObjectHandle.hh>

/// A font that Qt has embedded in a PDF, with the texts of its glyphs. Each glyph has its number as its code. One
/// thread at a time.
class EmbeddedFont {
public:
    /// `font` is a composite font with a map to texts.
    explicit EmbeddedFont(QPDFObjectHandle font);

    [[nodiscard]] static bool isOne(QPDFObjectHandle font);

    /// A glyph, and where its origin is, in ems.
    struct Part {
        int code = 0;
        double x = 0;
        double y = 0;
    };

    [[nodiscard]] QString text(int code) const { return m_texts.value(code); }
    /// Gives a glyph a text that has none; false when it has another one.
    bool claim(int code, const QString& text);
    /// Whether a glyph shows nothing.
    [[nodiscard]] bool isBlank(int code) const { return m_outlines.isBlank(code); }
    /// In ems.
    [[nodiscard]] double width(int code) const;
    /// The code of a glyph that looks like these parts and stands for that text; -1 when the font has no room for it.
    int joined(const std::vector<Part>& parts, double width, const QString& text);

    void writeBack();

private:
    QPDFObjectHandle m_font;
    GlyphText::Texts m_texts;
    SubsetFont m_outlines;
    std::vector<double> m_widths;
    std::size_t m_firstAdded = 0; ///< among the widths
    QHash<QByteArray, int> m_joined;
};
