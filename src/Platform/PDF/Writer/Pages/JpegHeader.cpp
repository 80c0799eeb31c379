#include "JpegHeader.h"

#include "ExifData.h"
#include "PictureProfile.h"

#include <algorithm>
#include <map>

namespace {

/// A colour profile comes in numbered parts, since a segment holds 64 KB.
class ProfileParts {
public:
    void add(QByteArrayView segment) {
        constexpr QByteArrayView mark("ICC_PROFILE\0", 12);
        constexpr qsizetype start = 14; // behind the mark, the part's number and how many there are
        if (!segment.startsWith(mark) || segment.size() < start)
            return;
        m_parts[static_cast<unsigned char>(segment[12])] = segment.sliced(start);
        m_count = static_cast<unsigned char>(segment[13]);
    }

    /// Empty when some are missing.
    [[nodiscard]] QByteArray whole() const {
        QByteArray profile;
        if (m_parts.size() == m_count)
            for (const auto& [number, part] : m_parts)
                profile += part;
        return profile;
    }

private:
    std::map<int, QByteArrayView> m_parts;
    std::size_t m_count = 0;
};

} // namespace

std::optional<JpegHeader> JpegHeader::read(const QByteArray& bytes) {
    if (!bytes.startsWith("\xFF\xD8"))
        return std::nullopt;
    JpegHeader header;
    ProfileParts profile;
    bool byAdobe = false;
    qsizetype at = 2;
    while (at + 4 <= bytes.size()) {
        const auto byte = [&bytes](qsizetype i) { return int(static_cast<unsigned char>(bytes[i])); };
        if (byte(at) != 0xFF)
            return std::nullopt;
        const int marker = byte(at + 1);
        if (marker == 0xFF) { // filling
            ++at;
            continue;
        }
        if (marker == 0x01 || (marker >= 0xD0 && marker <= 0xD8)) { // without a segment
            at += 2;
            continue;
        }
        const qsizetype length = byte(at + 2) << 8 | byte(at + 3);
        if (length < 2 || at + 2 + length > bytes.size())
            return std::nullopt;
        const QByteArrayView segment = QByteArrayView(bytes).sliced(at + 4, length - 2);
        if (marker == 0xE1) {
            const ExifData exif = ExifData::read(segment);
            header.orientation = std::max(header.orientation, exif.orientation);
            header.exifDensity = exif.density.isEmpty() ? header.exifDensity : exif.density;
        }
        if (marker == 0xE2)
            profile.add(segment);
        if (marker == 0xEE && segment.startsWith("Adobe"))
            byAdobe = true;
        const bool isFrame = marker >= 0xC0 && marker <= 0xCF && marker != 0xC4 && marker != 0xC8 && marker != 0xCC;
        if (isFrame) {
            if (marker > 0xC2 || segment.size() < 6 || segment[0] != 8)
                return std::nullopt;
            header.height = byte(at + 5) << 8 | byte(at + 6);
            header.width = byte(at + 7) << 8 | byte(at + 8);
            header.components = byte(at + 9);
            header.isInverted = header.components == 4 && byAdobe;
            header.iccProfile = PictureProfile::fitting(profile.whole(), header.components);
            const bool known = header.components == 1 || header.components == 3 || header.components == 4;
            return known && header.width > 0 && header.height > 0 ? std::optional(header) : std::nullopt;
        }
        if (marker == 0xDA || marker == 0xD9) // the picture before its header
            return std::nullopt;
        at += 2 + length;
    }
    return std::nullopt;
}

QTransform JpegHeader::uprightTransform() const {
    switch (orientation) {
    case 2: // mirrored left to right
        return {-1, 0, 0, 1, 1, 0};
    case 3:
        return {-1, 0, 0, -1, 1, 1};
    case 4:
        return {1, 0, 0, -1, 0, 1};
    case 5: // mirrored at the falling diagonal
        return {0, -1, -1, 0, 1, 1};
    case 6: // to be turned clockwise
        return {0, -1, 1, 0, 0, 1};
    case 7:
        return {0, 1, 1, 0, 0, 0};
    case 8:
        return {0, 1, -1, 0, 1, 0};
    default:
        return {};
    }
}
