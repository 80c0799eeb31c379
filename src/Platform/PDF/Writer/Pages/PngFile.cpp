#include "PngFile.h"

#include <QByteArrayView>
#include <QtEndian>

#include <algorithm>
#include <array>
#include <cstdlib>

#include <zlib.h>

namespace {

quint32 longWord(QByteArrayView bytes, qsizetype at = 0) {
    return qFromBigEndian<quint32>(bytes.data() + at);
}

/// Without a row between others and without translucency.
bool readHeader(QByteArrayView header, PngFile& file) {
    constexpr qsizetype size = 13;
    constexpr char grey = 0;
    constexpr char colour = 2;
    constexpr char indexed = 3;
    if (header.size() != size)
        return false;
    const char kind = header[9];
    file.width = int(longWord(header));
    file.height = int(longWord(header, 4));
    file.bitDepth = static_cast<unsigned char>(header[8]);
    file.components = kind == colour ? 3 : 1;
    const std::array<int, 5> depths{1, 2, 4, 8, 16};
    const bool isKnown =
        std::find(depths.begin(), depths.end(), file.bitDepth) != depths.end() &&
        (kind == grey || (kind == colour && file.bitDepth >= 8) || (kind == indexed && file.bitDepth <= 8));
    const bool isPlain = header[10] == 0 && header[11] == 0 && header[12] == 0;
    return isKnown && isPlain && file.width > 0 && file.height > 0;
}

} // namespace

std::optional<PngFile> PngFile::read(const QByteArray& bytes) {
    constexpr QByteArrayView signature("\x89PNG\r\n\x1A\n");
    constexpr qsizetype frame = 12; // length, name and check sum of a chunk
    constexpr char indexed = 3;
    if (!bytes.startsWith(signature))
        return std::nullopt;
    PngFile file;
    bool isIndexed = false;
    qsizetype at = signature.size();
    while (at + frame <= bytes.size()) {
        const quint32 length = longWord(bytes, at);
        if (length > quint32(bytes.size() - at - frame))
            return std::nullopt;
        const QByteArrayView named = QByteArrayView(bytes).sliced(at + 4, 4 + qsizetype(length));
        const QByteArrayView name = named.first(4);
        const QByteArrayView chunk = named.sliced(4);
        const uLong sum = crc32(0, reinterpret_cast<const Bytef*>(named.data()), uInt(named.size()));
        if (sum != longWord(bytes, at + 8 + qsizetype(length)))
            return std::nullopt;
        if (at == signature.size()) {
            if (name != "IHDR" || !readHeader(chunk, file))
                return std::nullopt;
            isIndexed = chunk[9] == indexed;
        } else if (name == "PLTE" && isIndexed) {
            file.palette = chunk.toByteArray();
        } else if (name == "IDAT") {
            file.data += chunk;
        } else if (name == "tRNS" || name == "iCCP") {
            return std::nullopt;
        } else if (name == "gAMA") {
            constexpr int ofScreens = 45455; // what writers of sRGB pictures say
            if (chunk.size() != 4 || std::abs(int(longWord(chunk)) - ofScreens) > 10)
                return std::nullopt;
        } else if (name == "IEND") {
            const qsizetype entries = file.palette.size() / 3;
            const bool hasPalette = !isIndexed || (file.palette.size() % 3 == 0 && entries > 0 &&
                                                   entries <= (qsizetype(1) << file.bitDepth));
            return hasPalette && !file.data.isEmpty() ? std::optional(file) : std::nullopt;
        }
        at += frame + qsizetype(length);
    }
    return std::nullopt;
}
