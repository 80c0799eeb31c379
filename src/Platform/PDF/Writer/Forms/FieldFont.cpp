#include "FieldFont.h"

#include "HelveticaWidths.h"
#include "PdfValues.h"

#include <qpdf/QUtil.hh>

#include <algorithm>

namespace {

bool isAscii(const QString& text) {
    return std::all_of(text.begin(), text.end(), [](QChar c) { return c.unicode() >= 32 && c.unicode() < 127; });
}

QByteArray shown(const QByteArray& codes) {
    return QByteArray::fromStdString(QPDFObjectHandle::newString(codes.toStdString()).unparse()) + " Tj\n";
}

} // namespace

QPDFObjectHandle FieldFont::helvetica() {
    return QPDFObjectHandle::parse("<< /Type /Font /Subtype /Type1 /BaseFont /Helvetica /Encoding /WinAnsiEncoding >>");
}

FieldFont::FieldFont(QPDFObjectHandle font) : m_dictionary(font), m_widths(256, 0) {
    std::copy(helveticaWidths.begin(), helveticaWidths.end(), m_widths.begin() + 32);
    const std::string subtype =
        font.isDictionary() && font.getKey("/Subtype").isName() ? font.getKey("/Subtype").getName() : std::string();
    const QByteArray name = font.isDictionary() && font.getKey("/BaseFont").isName()
                                ? QByteArray::fromStdString(font.getKey("/BaseFont").getName())
                                : QByteArray();
    const bool isPart = name.size() > 8 && name[7] == '+'; // "/ABCDEF+Name"
    const bool isSymbolic = name == "/ZapfDingbats" || name == "/Symbol";
    if ((subtype != "/Type1" && subtype != "/TrueType") || isPart || isSymbolic) {
        m_dictionary = helvetica();
        return;
    }
    QPDFObjectHandle encoding = font.getKey("/Encoding");
    m_latin1 = encoding.isDictionary() || encoding.isNameAndEquals("/WinAnsiEncoding");
    QPDFObjectHandle widths = font.getKey("/Widths");
    int first = 0;
    if (!widths.isArray() || !font.getKey("/FirstChar").getValueAsInt(first) || first < 0)
        return;
    for (int i = 0; i < widths.getArrayNItems() && first + i < 256; ++i)
        m_widths[std::size_t(first) + std::size_t(i)] = PdfValues::toNumber(widths.getArrayItem(i));
}

std::optional<QByteArray> FieldFont::encode(const QString& text) const {
    QString plain = text;
    plain.replace(QLatin1Char('\t'), QLatin1Char(' '));
    if (!m_latin1 && !isAscii(plain))
        return std::nullopt;
    std::string codes;
    if (!QUtil::utf8_to_win_ansi(plain.toStdString(), codes))
        return std::nullopt;
    return QByteArray::fromStdString(codes);
}

double FieldFont::width(const QString& text) const {
    double sum = 0;
    for (const char code : encode(text).value_or(QByteArray()))
        sum += m_widths[static_cast<unsigned char>(code)];
    return sum / 1000;
}

std::optional<QByteArray> FieldFont::operators(const FieldText::Layout& layout, const QByteArray& fontName,
                                               const QByteArray& colorOperators) const {
    QByteArray result = "BT\n" + colorOperators + '\n' + fontName + ' ' + PdfValues::real(layout.size) + " Tf\n";
    QPointF at;
    for (const FieldText::Line& line : layout.lines) {
        const auto codes = encode(line.text);
        if (!codes)
            return std::nullopt;
        result += PdfValues::real(line.at.x() - at.x()) + ' ' + PdfValues::real(line.at.y() - at.y()) + " Td\n" +
                  shown(*codes);
        at = line.at;
    }
    return result + "ET\n";
}
