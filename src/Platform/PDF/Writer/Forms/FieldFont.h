#pragma once

#include "FieldText.h"

#include <qpdf/QPDFObjectHandle.hh>

#include <optional>
#include <vector>

/// A font of a form's default resources, as far as it serves to show new text.
class FieldFont {
public:
    /// Helvetica when `font` is null or can't be written with: a composite font, a part of a font, an odd encoding.
    explicit FieldFont(QPDFObjectHandle font);

    /// The font's dictionary, for the resources of an appearance.
    [[nodiscard]] QPDFObjectHandle dictionary() const { return m_dictionary; }
    /// The codes for the text; none when the font lacks a character.
    [[nodiscard]] std::optional<QByteArray> encode(const QString& text) const;
    /// In parts of the font size.
    [[nodiscard]] double width(const QString& text) const;

    /// Operators from BT to ET that show the lines; `fontName` has its slash, `colorOperators` set the colour. None
    /// when the font can't show one of them.
    [[nodiscard]] std::optional<QByteArray> operators(const FieldText::Layout& layout, const QByteArray& fontName,
                                                      const QByteArray& colorOperators) const;

    [[nodiscard]] static QPDFObjectHandle helvetica();

private:
    QPDFObjectHandle m_dictionary;
    std::vector<double> m_widths; // by code, in thousandths of the font size
    bool m_latin1 = true;         // false: ASCII alone is known to be where it belongs
};
