#include "FieldFont.h"

#include "FontTables.h"
#include "FormFont.h"
#include "PdfValues.h"

namespace {

QByteArray shown(const QByteArray& codes) {
    return QByteArray::fromStdString(QPDFObjectHandle::newString(codes.toStdString()).unparse()) + " Tj\n";
}

QByteArray nameAt(QPDFObjectHandle dictionary, const char* key) {
    QPDFObjectHandle value = PdfValues::entry(dictionary, key);
    return value.isName() ? QByteArray::fromStdString(value.getName()).mid(1) : QByteArray();
}

FormFont described(QPDFObjectHandle font, const QByteArray& name) {
    FormFont description;
    description.resource = QString::fromUtf8(name);
    description.baseFont = QString::fromUtf8(nameAt(font, "/BaseFont"));
    const QByteArray subtype = nameAt(font, "/Subtype");
    description.isSimple = subtype == "Type1" || subtype == "TrueType";
    QPDFObjectHandle descriptor = PdfValues::entry(font, "/FontDescriptor");
    description.flags = int(PdfValues::toNumber(PdfValues::entry(descriptor, "/Flags")));
    for (const char* key : {"/FontFile", "/FontFile2", "/FontFile3"})
        description.isEmbedded = description.isEmbedded || PdfValues::entry(descriptor, key).isStream();
    description.hasEncoding = !PdfValues::entry(font, "/Encoding").isNull();
    return description;
}

std::vector<char32_t> baseEncoding(const QByteArray& name) {
    using FontTables::Encoding;
    return FontTables::characters(name == "WinAnsiEncoding"    ? Encoding::winAnsi
                                  : name == "MacRomanEncoding" ? Encoding::macRoman
                                                               : Encoding::standard);
}

/// The characters of a font by code; zero where none is known.
std::vector<char32_t> charactersOf(QPDFObjectHandle font, const FormFont& description) {
    QPDFObjectHandle encoding = font.getKey("/Encoding");
    if (!encoding.isDictionary())
        return baseEncoding(nameAt(font, "/Encoding"));
    // Without a base the differences are from what is built into the font, of which only some fonts tell.
    const QByteArray base = nameAt(encoding, "/BaseEncoding");
    std::vector<char32_t> characters =
        base.isEmpty() && !description.isLettered() ? std::vector<char32_t>(256, 0) : baseEncoding(base);
    QPDFObjectHandle differences = encoding.getKey("/Differences");
    std::size_t code = 0;
    for (int i = 0; differences.isArray() && i < differences.getArrayNItems(); ++i) {
        QPDFObjectHandle item = differences.getArrayItem(i);
        if (item.isName()) {
            if (code < characters.size())
                characters[code] = FontTables::character(QByteArray::fromStdString(item.getName()).mid(1));
            ++code;
        } else {
            code = std::size_t(std::max(0.0, PdfValues::toNumber(item)));
        }
    }
    return characters;
}

/// What may stand for a character that an encoding lacks, with the same look; zero for none.
char32_t alike(char32_t character) {
    switch (character) {
    case 0x09: // tab
    case 0xA0: // no break
    case 0x202F:
        return ' ';
    case 0xAD: // soft hyphen
    case 0x2010:
    case 0x2011:
        return '-';
    case 0x3BC: // mu, which is the micro sign in Latin encodings
        return 0xB5;
    case 0x3A9: // Omega, the ohm sign
        return 0x2126;
    default:
        return 0;
    }
}

} // namespace

QPDFObjectHandle FieldFont::standard(const QByteArray& name) {
    QPDFObjectHandle font = QPDFObjectHandle::parse("<< /Type /Font /Subtype /Type1 /Encoding /WinAnsiEncoding >>");
    font.replaceKey("/BaseFont", PdfValues::name(name.constData()));
    return font;
}

FieldFont::FieldFont(QPDFObjectHandle font, const QByteArray& name) : m_dictionary(font) {
    const FormFont description = described(font, name);
    if (!description.isWritable())
        m_dictionary = standard(description.standardName());
    std::vector<char32_t> characters = charactersOf(m_dictionary, description);
    QPDFObjectHandle widths = m_dictionary.getKey("/Widths");
    int first = 0;
    if (widths.isArray() && m_dictionary.getKey("/FirstChar").getValueAsInt(first)) {
        m_widths.resize(characters.size());
        for (int code = 0; code < int(characters.size()); ++code) {
            // What it gives no width it hardly has.
            const bool isThere = code >= first && code - first < widths.getArrayNItems();
            m_widths[std::size_t(code)] = isThere ? PdfValues::toNumber(widths.getArrayItem(code - first)) : 0;
            characters[std::size_t(code)] = isThere ? characters[std::size_t(code)] : 0;
        }
    } else {
        m_widths = FontTables::widths(description.standardName(), characters);
    }
    for (std::size_t code = 0; code < characters.size(); ++code)
        if (characters[code] != 0 && !m_codes.contains(characters[code]))
            m_codes.insert(characters[code], char(code));
}

std::optional<QByteArray> FieldFont::encode(const QString& text) const {
    QByteArray codes;
    for (const uint character : text.normalized(QString::NormalizationForm_C).toUcs4()) {
        auto found = m_codes.constFind(character);
        if (found == m_codes.cend())
            found = m_codes.constFind(alike(character));
        if (found == m_codes.cend())
            return std::nullopt;
        codes += *found;
    }
    return codes;
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
