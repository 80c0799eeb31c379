#include "CompoundFile.h"

#include <QtEndian>

#include <array>

namespace {

constexpr qsizetype headerSize = 512;
constexpr qsizetype entrySize = 128;
constexpr quint32 lastRegularSector = 0xfffffffa;
constexpr int sectorsInHeader = 109; // of the table that chains the sectors
constexpr int mostDirectorySectors = 4096;
constexpr quint32 smallestOwnStream = 4096; // bytes

quint32 numberAt(const QByteArray& bytes, qsizetype offset) {
    return qFromLittleEndian<quint32>(bytes.constData() + offset);
}

} // namespace

std::unique_ptr<CompoundFile> CompoundFile::open(const QString& path) {
    std::unique_ptr<CompoundFile> file(new CompoundFile);
    file->m_file.setFileName(path);
    if (!file->m_file.open(QIODevice::ReadOnly) || !file->readDirectory())
        return nullptr;
    return file;
}

QByteArray CompoundFile::sector(quint32 number) {
    if (number > lastRegularSector || !m_file.seek((qint64(number) + 1) * m_sectorSize))
        return {};
    const QByteArray bytes = m_file.read(m_sectorSize);
    return bytes.size() == m_sectorSize ? bytes : QByteArray();
}

bool CompoundFile::readDirectory() {
    const QByteArray header = m_file.read(headerSize);
    if (header.size() < headerSize || !header.startsWith("\xd0\xcf\x11\xe0\xa1\xb1\x1a\xe1"))
        return false;
    const auto shift = qFromLittleEndian<quint16>(header.constData() + 30);
    if (shift != 9 && shift != 12)
        return false;
    m_sectorSize = qint64(1) << shift;
    // The directory stands near the start in all but huge files, so the part of the table in the header tells enough.
    const auto numbersInSector = quint32(m_sectorSize / 4);
    quint32 number = numberAt(header, 48);
    for (int i = 0; i < mostDirectorySectors; ++i) {
        const QByteArray entries = sector(number);
        for (qsizetype at = 0; at + entrySize <= entries.size(); at += entrySize) {
            const auto nameBytes = qFromLittleEndian<quint16>(entries.constData() + at + 64);
            if (nameBytes < 4 || nameBytes > 64)
                continue;
            std::array<char16_t, 32> name{};
            qFromLittleEndian<char16_t>(entries.constData() + at, nameBytes / 2 - 1, name.data());
            m_streams.insert({QString::fromUtf16(name.data(), nameBytes / 2 - 1),
                              {numberAt(entries, at + 116), numberAt(entries, at + 120)}});
        }
        const quint32 table = number / numbersInSector;
        if (entries.isEmpty() || table >= sectorsInHeader)
            break;
        const QByteArray chain = sector(numberAt(header, 76 + qsizetype(table) * 4));
        if (chain.isEmpty())
            break;
        number = numberAt(chain, qsizetype(number % numbersInSector) * 4);
    }
    return !m_streams.empty();
}

QByteArray CompoundFile::beginning(const QString& name) {
    const auto stream = m_streams.find(name);
    return stream == m_streams.end() || stream->second.size < smallestOwnStream ? QByteArray()
                                                                                : sector(stream->second.firstSector);
}
