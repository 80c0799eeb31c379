#include "SubsetFont.h"

#include <QtEndian>

#include <algorithm>
#include <utility>

namespace {

constexpr int mostGlyphs = 0xFFFF;
constexpr int mostParts = 64;

template <typename Number>
Number numberAt(QByteArrayView bytes, qsizetype offset) {
    return offset + qsizetype(sizeof(Number)) <= bytes.size() ? qFromBigEndian<Number>(bytes.data() + offset)
                                                              : Number(0);
}

template <typename Number>
void append(QByteArray& bytes, int value) {
    const Number number = qToBigEndian(Number(value));
    bytes.append(reinterpret_cast<const char*>(&number), qsizetype(sizeof(Number)));
}

void set(QByteArray& bytes, qsizetype offset, int value) {
    QByteArray number;
    append<quint16>(number, value);
    if (offset + number.size() <= bytes.size())
        bytes.replace(offset, number.size(), number);
}

quint32 sumOf(const QByteArray& padded) {
    quint32 sum = 0;
    for (qsizetype i = 0; i + 4 <= padded.size(); i += 4)
        sum += numberAt<quint32>(padded, i);
    return sum;
}

} // namespace

SubsetFont::SubsetFont(QByteArray bytes) : m_bytes(std::move(bytes)) {
    if (!readTables())
        m_glyphs = 0;
}

bool SubsetFont::readTables() {
    constexpr qsizetype directory = 12;
    constexpr qsizetype entrySize = 16;
    for (qsizetype i = 0; i < numberAt<quint16>(m_bytes, 4); ++i) {
        const qsizetype entry = directory + i * entrySize;
        const auto offset = numberAt<quint32>(m_bytes, entry + 8);
        const auto size = numberAt<quint32>(m_bytes, entry + 12);
        if (qsizetype(offset) + qsizetype(size) > m_bytes.size())
            return false;
        m_tables[m_bytes.mid(entry, 4)] = m_bytes.mid(qsizetype(offset), qsizetype(size));
    }
    for (const char* tag : {"head", "maxp", "loca", "glyf", "hhea", "hmtx"})
        if (!m_tables.contains(tag))
            return false;
    m_unitsPerEm = numberAt<quint16>(table("head"), 18);
    m_glyphs = numberAt<quint16>(table("maxp"), 4);
    const bool isLong = numberAt<quint16>(table("head"), 50) == 1;
    const QByteArray& offsets = table("loca");
    for (qsizetype i = 0; i <= m_glyphs; ++i)
        m_offsets.push_back(isLong ? numberAt<quint32>(offsets, i * 4) : numberAt<quint16>(offsets, i * 2) * 2U);
    return m_unitsPerEm > 0 && std::is_sorted(m_offsets.begin(), m_offsets.end()) &&
           qsizetype(m_offsets.back()) <= table("glyf").size() && numberAt<quint16>(table("hhea"), 34) == m_glyphs &&
           table("hmtx").size() == qsizetype(m_glyphs) * 4;
}

const QByteArray& SubsetFont::table(const char* tag) const {
    return m_tables.at(tag);
}

QByteArrayView SubsetFont::outline(int glyph) const {
    const auto index = std::size_t(glyph);
    return QByteArrayView(table("glyf"))
        .sliced(qsizetype(m_offsets[index]), qsizetype(m_offsets[index + 1] - m_offsets[index]));
}

int SubsetFont::add(const std::vector<Part>& parts, int advance) {
    if (!isSound() || glyphCount() >= mostGlyphs || int(parts.size()) > mostParts)
        return -1;
    enum Flag : quint16 { wordsFollow = 1, wordsAreOffsets = 2, moreFollow = 0x20 };
    QByteArray list;
    QRect box;
    int count = 0;
    for (auto part = parts.rbegin(); part != parts.rend(); ++part) { // the last one is known from the start that way
        if (part->glyph < 0 || part->glyph >= m_glyphs)
            return -1;
        const QByteArrayView drawn = outline(part->glyph);
        if (drawn.size() < boxSize)
            continue;
        const auto side = [drawn](qsizetype offset) { return int(numberAt<qint16>(drawn, offset)); };
        box |= QRect(QPoint(side(2) + part->x, side(4) + part->y), QPoint(side(6) + part->x, side(8) + part->y));
        QByteArray entry;
        append<quint16>(entry, wordsFollow | wordsAreOffsets | (count > 0 ? moreFollow : 0));
        append<quint16>(entry, part->glyph);
        append<qint16>(entry, part->x);
        append<qint16>(entry, part->y);
        list.prepend(entry);
        ++count;
    }
    Added added;
    if (count > 0) {
        append<qint16>(added.outline, -1);
        for (const int side : {box.left(), box.top(), box.right(), box.bottom()})
            append<qint16>(added.outline, side);
        added.outline += list;
    }
    append<quint16>(added.metrics, advance);
    append<qint16>(added.metrics, count > 0 ? box.left() : 0); // so that nothing is shifted
    m_added.push_back(added);
    m_mostParts = std::max(m_mostParts, count);
    return glyphCount() - 1;
}

QByteArray SubsetFont::written() const {
    std::map<QByteArray, QByteArray> tables = m_tables;
    QByteArray& outlines = tables["glyf"];
    QByteArray& offsets = tables["loca"];
    offsets.clear();
    for (const quint32 offset : m_offsets)
        append<quint32>(offsets, int(offset));
    outlines.truncate(qsizetype(m_offsets.back()));
    for (const Added& added : m_added) {
        outlines += added.outline;
        outlines.append((4 - outlines.size() % 4) % 4, '\0');
        append<quint32>(offsets, int(outlines.size()));
        tables["hmtx"] += added.metrics;
    }
    set(tables["head"], 50, 1);
    set(tables["hhea"], 34, glyphCount());
    QByteArray& limits = tables["maxp"];
    set(limits, 4, glyphCount());
    const auto composite = [&limits, this](qsizetype ofOne) {
        return std::min(mostGlyphs, numberAt<quint16>(limits, ofOne) * std::max(m_mostParts, 1));
    };
    set(limits, 10, composite(6));
    set(limits, 12, composite(8));
    set(limits, 28, m_mostParts);
    set(limits, 30, 1);

    QByteArray directory = m_bytes.left(12);
    QByteArray body;
    const qsizetype start = directory.size() + qsizetype(tables.size()) * 16;
    for (const auto& [tag, bytes] : tables) {
        const QByteArray padded = bytes + QByteArray((4 - bytes.size() % 4) % 4, '\0');
        directory += tag;
        append<quint32>(directory, int(sumOf(padded)));
        append<quint32>(directory, int(start + body.size()));
        append<quint32>(directory, int(bytes.size()));
        body += padded;
    }
    return directory + body;
}
