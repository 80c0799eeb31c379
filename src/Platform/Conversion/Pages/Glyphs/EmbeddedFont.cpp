#include "EmbeddedFont.h"

#include "PDFStreams.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr double perEm = 1000; // of widths in a PDF

QPDFObjectHandle descendant(QPDFObjectHandle font) {
    return font.getKey("/DescendantFonts").getArrayItem(0);
}

QPDFObjectHandle outlines(const QPDFObjectHandle& font) {
    return descendant(font).getKey("/FontDescriptor").getKey("/FontFile2");
}

/// In ems; Qt writes one list from the first glyph on, or nothing where all are as wide as the default says.
std::vector<double> widths(const QPDFObjectHandle& font, std::size_t count) {
    QPDFObjectHandle usual = descendant(font).getKey("/DW");
    std::vector<double> widths(count, usual.isNumber() ? usual.getNumericValue() / perEm : 1);
    QPDFObjectHandle list = descendant(font).getKey("/W");
    if (!list.isArray() || list.getArrayNItems() < 2 || !list.getArrayItem(1).isArray())
        return widths;
    list = list.getArrayItem(1);
    for (std::size_t i = 0; i < std::min(count, std::size_t(list.getArrayNItems())); ++i)
        if (QPDFObjectHandle width = list.getArrayItem(int(i)); width.isNumber())
            widths[i] = width.getNumericValue() / perEm;
    return widths;
}

} // namespace

bool EmbeddedFont::isOne(QPDFObjectHandle font) {
    return font.isDictionary() && font.getKey("/ToUnicode").isStream() && font.getKey("/DescendantFonts").isArray() &&
           font.getKey("/DescendantFonts").getArrayNItems() == 1 && outlines(font).isStream();
}

EmbeddedFont::EmbeddedFont(QPDFObjectHandle font)
    : m_font(font), m_texts(GlyphText::read(PDFStreams::bytesOf(font.getKey("/ToUnicode")))),
      m_outlines(PDFStreams::bytesOf(outlines(font))) {
    m_texts.remove(GlyphText::missingGlyph);
    for (QString& text : m_texts)
        text = GlyphText::typed(text);
    m_firstAdded = std::size_t(m_outlines.glyphCount());
    m_widths = widths(font, m_firstAdded);
}

bool EmbeddedFont::claim(int code, const QString& text) {
    if (code == GlyphText::missingGlyph)
        return false;
    const auto known = m_texts.constFind(code);
    if (known != m_texts.constEnd())
        return *known == text;
    m_texts[code] = text;
    return true;
}

double EmbeddedFont::width(int code) const {
    return std::size_t(code) < m_widths.size() ? m_widths[std::size_t(code)] : 0;
}

int EmbeddedFont::joined(const std::vector<Part>& parts, double width, const QString& text) {
    const int em = m_outlines.unitsPerEm();
    std::vector<SubsetFont::Part> ofFont;
    QByteArray key;
    const auto addToKey = [&key](int number) { key.append(reinterpret_cast<const char*>(&number), sizeof number); };
    addToKey(int(std::lround(width * perEm)));
    for (const Part& part : parts) {
        ofFont.push_back({part.code, int(std::lround(part.x * em)), int(std::lround(part.y * em))});
        for (const int number : {ofFont.back().glyph, ofFont.back().x, ofFont.back().y})
            addToKey(number);
    }
    key.append(reinterpret_cast<const char*>(text.utf16()), text.size() * qsizetype(sizeof(char16_t)));
    if (const auto known = m_joined.constFind(key); known != m_joined.constEnd())
        return *known;
    const int code = m_outlines.add(ofFont, int(std::lround(width * em)));
    if (code >= 0) {
        m_widths.push_back(width);
        m_texts[code] = text;
    }
    m_joined[key] = code;
    return code;
}

void EmbeddedFont::writeBack() {
    PDFStreams::replace(m_font.getKey("/ToUnicode"), GlyphText::written(m_texts));
    if (m_widths.size() == m_firstAdded)
        return;
    const QByteArray font = m_outlines.written();
    PDFStreams::replace(outlines(m_font), font);
    outlines(m_font).getDict().replaceKey("/Length1", QPDFObjectHandle::newInteger(font.size()));
    QPDFObjectHandle added = QPDFObjectHandle::newArray();
    for (std::size_t i = m_firstAdded; i < m_widths.size(); ++i)
        added.appendItem(QPDFObjectHandle::newInteger(std::lround(m_widths[i] * perEm)));
    if (!descendant(m_font).getKey("/W").isArray())
        descendant(m_font).replaceKey("/W", QPDFObjectHandle::newArray());
    QPDFObjectHandle list = descendant(m_font).getKey("/W");
    list.appendItem(QPDFObjectHandle::newInteger(qint64(m_firstAdded)));
    list.appendItem(added);
}
