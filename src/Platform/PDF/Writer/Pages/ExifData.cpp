#include "ExifData.h"

#include <QtEndian>

#include <algorithm>

namespace {

class Directory {
public:
    explicit Directory(QByteArrayView tiff) : m_tiff(tiff), m_isBigEndian(tiff.startsWith("MM")) {}

    [[nodiscard]] quint32 word(qsizetype at) const {
        if (at < 0 || at + 2 > m_tiff.size())
            return 0;
        return m_isBigEndian ? qFromBigEndian<quint16>(m_tiff.data() + at)
                             : qFromLittleEndian<quint16>(m_tiff.data() + at);
    }

    [[nodiscard]] quint32 longWord(qsizetype at) const {
        return m_isBigEndian ? word(at) << 16 | word(at + 2) : word(at + 2) << 16 | word(at);
    }

    /// Where the value of a tag is, or its place; 0 when there is no such tag.
    [[nodiscard]] qsizetype find(quint32 tag) const {
        constexpr qsizetype entrySize = 12;
        const qsizetype directory = qsizetype(longWord(4));
        const quint32 count = word(directory);
        for (quint32 i = 0; i < count; ++i) {
            const qsizetype entry = directory + 2 + qsizetype(i) * entrySize;
            if (entry + entrySize > m_tiff.size())
                break;
            if (word(entry) == tag)
                return entry + 8;
        }
        return 0;
    }

    /// A fraction; 0 where it isn't told.
    [[nodiscard]] double number(quint32 tag) const {
        const qsizetype value = find(tag);
        const qsizetype place = value == 0 ? 0 : qsizetype(longWord(value));
        const quint32 divisor = place == 0 ? 0 : longWord(place + 4);
        return divisor == 0 ? 0 : double(longWord(place)) / divisor;
    }

private:
    QByteArrayView m_tiff;
    bool m_isBigEndian;
};

} // namespace

ExifData ExifData::read(QByteArrayView segment) {
    constexpr QByteArrayView mark("Exif\0\0", 6);
    ExifData data;
    if (!segment.startsWith(mark))
        return data;
    const Directory directory(segment.sliced(mark.size()));
    if (const qsizetype orientation = directory.find(0x0112))
        data.orientation = int(std::clamp(directory.word(orientation), quint32(1), quint32(8)));
    constexpr quint32 centimetres = 3;
    const qsizetype unit = directory.find(0x0128);
    const double unitsInInch = unit != 0 && directory.word(unit) == centimetres ? 2.54 : 1;
    data.density = QSizeF(directory.number(0x011A), directory.number(0x011B)) * unitsInInch;
    return data;
}
