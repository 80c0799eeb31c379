#pragma once

#include <qpdf/QPDFObjectHandle.hh>

#include <QRectF>
#include <QString>

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
    /// In thousandths of the font size.
    [[nodiscard]] double width(const QByteArray& codes) const;

    [[nodiscard]] static QPDFObjectHandle helvetica();

private:
    QPDFObjectHandle m_dictionary;
    std::vector<double> m_widths; // by code
    bool m_latin1 = true;         // false: ASCII alone is known to be where it belongs
};

/// The text of a field, set in its box.
struct FieldText {
    QString text;
    QSizeF box;        ///< of the widget, before turning
    double inset = 2;  ///< free space at each side, points
    double size = 12;  ///< points; 0 chooses one that fits
    int alignment = 0; ///< the Q key: 0 left, 1 centred, 2 right
    bool multiline = false;
    int comb = 0; ///< number of equal cells; 0 for none

    /// Operators from BT to ET that show it; `fontName` has its slash, `colorOperators` set the colour. None when the
    /// font can't show the text.
    [[nodiscard]] std::optional<QByteArray> operators(const FieldFont& font, const QByteArray& fontName,
                                                      const QByteArray& colorOperators) const;
};
