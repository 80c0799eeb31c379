#include "GlyphlessFont.h"

#include "FontTables.h"
#include "PackedStream.h"
#include "VisualOrder.h"

#include <QChar>
#include <QList>
#include <QtEndian>

#include <algorithm>
#include <utility>

namespace {

constexpr int unitsPerEm = 1000;
constexpr int ascentUnits = int(GlyphlessFont::ascent * unitsPerEm);
constexpr int descentUnits = -1; // for zero, engines put a guess of their own

void append16(QByteArray& bytes, int value) {
    bytes += char((value >> 8) & 0xFF);
    bytes += char(value & 0xFF);
}

void append32(QByteArray& bytes, quint32 value) {
    append16(bytes, int(value >> 16));
    append16(bytes, int(value & 0xFFFF));
}

QByteArray numbers16(std::initializer_list<int> values) {
    QByteArray bytes;
    for (const int value : values)
        append16(bytes, value);
    return bytes;
}

quint32 checksum(QByteArray table) {
    table.append((4 - table.size() % 4) % 4, '\0');
    quint32 sum = 0;
    for (qsizetype at = 0; at < table.size(); at += 4)
        sum += qFromBigEndian<quint32>(table.constData() + at);
    return sum;
}

/// There and back on one line: no ink, and yet an extent, without which engines pass a letter over.
QByteArray glyphWithoutInk() {
    constexpr int points = 3;
    QByteArray glyph = numbers16({1, 0, 0, unitsPerEm, ascentUnits, points - 1, 0});
    glyph.append(points, '\x01'); // all on the line
    glyph += numbers16({0, unitsPerEm, -unitsPerEm / 2});
    glyph += numbers16({0, ascentUnits, -ascentUnits / 2});
    return glyph + '\0';
}

/// A TrueType file (ISO/IEC 14496-22) of two glyphs, the first empty: no reader has to make do with another font, and
/// all agree how high a line is.
QByteArray trueTypeFile() {
    constexpr int checksumAdjustment = 8; // its offset in the table "head"
    QByteArray head = numbers16({1, 0, 1, 0, 0, 0, 0x5F0F, 0x3CF5, 0, unitsPerEm});
    head.append(16, '\0'); // dates
    head += numbers16({0, descentUnits, unitsPerEm, ascentUnits, 0, 8, 2, 0, 0});
    const QByteArray hhea =
        numbers16({1, 0, ascentUnits, descentUnits, 0, unitsPerEm, 0, 0, unitsPerEm, 1, 0, 0, 0, 0, 0, 0, 0, 2});
    const QByteArray maxp = numbers16({1, 0, 2, 3, 1, 0, 0, 2, 0, 0, 0, 0, 0, 0, 0, 0});
    const QByteArray glyph = glyphWithoutInk();
    const std::pair<const char*, QByteArray> tables[] = {
        {"glyf", glyph},
        {"head", head},
        {"hhea", hhea},
        {"hmtx", numbers16({unitsPerEm, 0, unitsPerEm, 0})},
        {"loca", numbers16({0, 0, int(glyph.size()) / 2})},
        {"maxp", maxp},
    };
    constexpr int count = 6;
    constexpr int directoryEntry = 16;
    QByteArray file = numbers16({1, 0, count, 64, 2, directoryEntry * count - 64});
    QByteArray data;
    int headAt = 0;
    for (const auto& [tag, table] : tables) {
        const qsizetype at = 12 + directoryEntry * count + data.size();
        if (QByteArray(tag) == "head")
            headAt = int(at);
        file += tag;
        append32(file, checksum(table));
        append32(file, quint32(at));
        append32(file, quint32(table.size()));
        data += table;
        data.append((4 - data.size() % 4) % 4, '\0');
    }
    file += data;
    qToBigEndian<quint32>(0xB1B0AFBA - checksum(file), file.data() + headAt + checksumAdjustment);
    return file;
}

QByteArray hex16(int value) {
    return QByteArray::number(value, 16).rightJustified(4, '0');
}

QByteArray utf16Hex(char32_t character) {
    QByteArray hex;
    for (const char16_t unit : QString::fromUcs4(&character, 1).toStdU16String())
        hex += hex16(unit);
    return hex;
}

/// Characters that Helvetica lacks are as wide as most letters of others' scripts are in fonts that go with it.
double widthOf(char32_t character, double ofHelvetica) {
    if (ofHelvetica > 0)
        return ofHelvetica;
    switch (QChar::category(character)) {
    case QChar::Mark_NonSpacing:
    case QChar::Mark_Enclosing:
    case QChar::Other_Format:
        return 0;
    default:
        break;
    }
    // From the radicals on, scripts are written in squares; so are wide forms of letters and pictures.
    const bool isSquare = (character >= 0x2E80 && character < 0xA4D0) || (character >= 0xAC00 && character < 0xD7A4) ||
                          (character >= 0xF900 && character < 0xFB00) || (character >= 0xFF01 && character < 0xFF61) ||
                          character >= 0x1F000;
    return isSquare ? 1000 : 556;
}

std::vector<int> widthsOf(const std::vector<char32_t>& characters) {
    const std::vector<double> ofHelvetica = FontTables::widths("Helvetica", characters);
    std::vector<int> widths;
    for (std::size_t i = 0; i < characters.size(); ++i)
        widths.push_back(qRound(widthOf(characters[i], ofHelvetica[i])));
    return widths;
}

} // namespace

int GlyphlessFont::codeOf(char32_t character) {
    constexpr std::size_t mostCharacters = 0xFFFE;
    if (QChar::category(character) == QChar::Other_Control || QChar::isSurrogate(character))
        return 0;
    const auto known = m_codes.find(character);
    if (known != m_codes.end())
        return known->second;
    if (m_characters.size() == mostCharacters)
        return 0;
    m_characters.push_back(character);
    return m_codes[character] = int(m_characters.size());
}

QByteArray GlyphlessFont::shown(const QString& text) {
    std::vector<char32_t> line;
    QByteArray codes;
    for (const char32_t character : text.toUcs4()) {
        if (const int code = codeOf(character)) {
            line.push_back(character);
            codes += hex16(code);
        }
    }
    const std::vector<int> order = VisualOrder::of(line);
    if (line.empty() || order.empty())
        return line.empty() ? QByteArray() : '<' + codes + "> Tj";

    const std::vector<int> widths = widthsOf(line);
    std::vector<int> starts(line.size()); // from the left edge
    int right = 0;
    for (const int place : order) {
        starts[std::size_t(place)] = right;
        right += widths[std::size_t(place)];
    }
    QByteArray parts;
    int pen = 0;
    for (std::size_t i = 0; i < line.size(); ++i) {
        if (pen != starts[i])
            parts += QByteArray::number(pen - starts[i]);
        parts += '<' + codes.mid(4 * qsizetype(i), 4) + '>';
        pen = starts[i] + widths[i];
    }
    return '[' + parts + "] TJ";
}

QByteArray GlyphlessFont::toUnicode() const {
    QByteArray map = "/CIDInit /ProcSet findresource begin\n12 dict begin\nbegincmap\n/CIDSystemInfo << /Registry "
                     "(Adobe) /Ordering (UCS) /Supplement 0 >> def\n/CMapName /Adobe-Identity-UCS def\n/CMapType 2 "
                     "def\n1 begincodespacerange\n<0000> <ffff>\nendcodespacerange\n";
    constexpr std::size_t mostOfBlock = 100;
    for (std::size_t at = 0; at < m_characters.size(); at += mostOfBlock) {
        const std::size_t count = std::min(mostOfBlock, m_characters.size() - at);
        map += QByteArray::number(qulonglong(count)) + " beginbfchar\n";
        for (std::size_t i = at; i < at + count; ++i)
            map += '<' + hex16(int(i) + 1) + "> <" + utf16Hex(m_characters[i]) + ">\n";
        map += "endbfchar\n";
    }
    return map + "endcmap\nCMapName currentdict /CMap defineresource pop\nend\nend\n";
}

QPDFObjectHandle GlyphlessFont::widths() const {
    QPDFObjectHandle list = QPDFObjectHandle::newArray();
    for (const int width : widthsOf(m_characters))
        list.appendItem(QPDFObjectHandle::newInteger(width));
    QPDFObjectHandle all = QPDFObjectHandle::newArray();
    all.appendItem(QPDFObjectHandle::newInteger(1)); // the first code
    all.appendItem(list);
    return all;
}

QPDFObjectHandle GlyphlessFont::dictionary(QPDF& file) const {
    static const QByteArray trueType = trueTypeFile();
    QPDFObjectHandle program = PackedStream::add(file, trueType);
    program.getDict().replaceKey("/Length1", QPDFObjectHandle::newInteger(trueType.size()));
    QPDFObjectHandle descriptor =
        QPDFObjectHandle::parse("<< /Type /FontDescriptor /FontName /Helvetica /Flags 4 /ItalicAngle 0 /StemV 80 >>");
    descriptor.replaceKey("/FontBBox", QPDFObjectHandle::newFromRectangle({0, descentUnits, unitsPerEm, ascentUnits}));
    descriptor.replaceKey("/Ascent", QPDFObjectHandle::newInteger(ascentUnits));
    descriptor.replaceKey("/Descent", QPDFObjectHandle::newInteger(descentUnits));
    descriptor.replaceKey("/CapHeight", QPDFObjectHandle::newInteger(ascentUnits));
    descriptor.replaceKey("/FontFile2", program);

    QByteArray glyphs; // every code, zero too, shows the second glyph
    for (std::size_t code = 0; code <= m_characters.size(); ++code)
        append16(glyphs, 1);
    QPDFObjectHandle descendant =
        QPDFObjectHandle::parse("<< /Type /Font /Subtype /CIDFontType2 /BaseFont /Helvetica /DW 1000 /CIDSystemInfo << "
                                "/Registry (Adobe) /Ordering (Identity) /Supplement 0 >> >>");
    descendant.replaceKey("/FontDescriptor", file.makeIndirectObject(descriptor));
    descendant.replaceKey("/W", widths());
    descendant.replaceKey("/CIDToGIDMap", PackedStream::add(file, glyphs));

    QPDFObjectHandle font =
        QPDFObjectHandle::parse("<< /Type /Font /Subtype /Type0 /BaseFont /Helvetica /Encoding /Identity-H >>");
    QPDFObjectHandle descendants = QPDFObjectHandle::newArray();
    descendants.appendItem(file.makeIndirectObject(descendant));
    font.replaceKey("/DescendantFonts", descendants);
    font.replaceKey("/ToUnicode", PackedStream::add(file, toUnicode()));
    return file.makeIndirectObject(font);
}
