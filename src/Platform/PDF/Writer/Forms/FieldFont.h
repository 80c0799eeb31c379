#pragma once

#include "FieldText.h"

#include <qpdf/QPDFObjectHandle.hh>

#include <QHash>

#include <optional>
#include <vector>

/// A font of a form's default resources, as far as it serves to show new text.
class FieldFont {
public:
    /// `font` is the dictionary at `name` (without a slash) in the resources, or null. The standard font nearest to it
    /// takes its place when it can't be written with (`FormFont::isWritable`).
    FieldFont(QPDFObjectHandle font, const QByteArray& name);

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

    /// A standard text font ("Times-Bold") in the encoding of Windows.
    [[nodiscard]] static QPDFObjectHandle standard(const QByteArray& name);

private:
    QPDFObjectHandle m_dictionary;
    std::vector<double> m_widths; // by code, in thousandths of the font size
    QHash<char32_t, char> m_codes;
};
