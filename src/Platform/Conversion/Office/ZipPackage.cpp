#include "ZipPackage.h"

#include <QtEndian>

#include <algorithm>
#include <numeric>

#include <zlib.h>

namespace {

constexpr quint32 memberMark = 0x04034b50;
constexpr quint32 entryMark = 0x02014b50;
constexpr char endMark[] = "PK\x05\x06";
constexpr qsizetype memberHeader = 30;
constexpr qsizetype entryHeader = 46;
constexpr qsizetype endHeader = 22;
constexpr qsizetype longestComment = 0xffff;
constexpr qint64 largestTable = 16 << 20; // bytes: some hundred thousand members
constexpr quint32 inLongForm = 0xffffffff;

template <typename Number>
Number numberAt(const QByteArray& bytes, qsizetype offset) {
    return qFromLittleEndian<Number>(bytes.constData() + offset);
}

/// Sizes above four gigabytes stand behind the entry.
quint64 longSize(const QByteArray& extra) {
    for (qsizetype i = 0; i + 4 <= extra.size(); i += 4 + numberAt<quint16>(extra, i + 2)) {
        if (numberAt<quint16>(extra, i) == 1 && i + 12 <= extra.size())
            return numberAt<quint64>(extra, i + 4);
    }
    return inLongForm;
}

/// None for broken data, and for more than `size` bytes.
std::optional<QByteArray> inflated(const QByteArray& packed, qsizetype size) {
    QByteArray bytes(size, Qt::Uninitialized);
    z_stream stream{};
    stream.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(packed.constData()));
    stream.avail_in = uInt(packed.size());
    stream.next_out = reinterpret_cast<Bytef*>(bytes.data());
    stream.avail_out = uInt(size);
    if (inflateInit2(&stream, -MAX_WBITS) != Z_OK) // without a header of its own
        return std::nullopt;
    const int ending = inflate(&stream, Z_FINISH);
    inflateEnd(&stream);
    if (ending != Z_STREAM_END || stream.avail_out != 0)
        return std::nullopt;
    return bytes;
}

} // namespace

std::unique_ptr<ZipPackage> ZipPackage::open(const QString& path) {
    std::unique_ptr<ZipPackage> package(new ZipPackage);
    package->m_file.setFileName(path);
    if (!package->m_file.open(QIODevice::ReadOnly) || !package->readTable())
        return nullptr;
    return package;
}

bool ZipPackage::readTable() {
    const qint64 tailStart = std::max<qint64>(0, m_file.size() - endHeader - longestComment);
    if (m_file.peek(4).size() < 4 || numberAt<quint32>(m_file.peek(4), 0) != memberMark || !m_file.seek(tailStart))
        return false;
    const QByteArray tail = m_file.readAll();
    const qsizetype end = tail.lastIndexOf(endMark);
    if (end < 0 || end + endHeader > tail.size())
        return false;
    const qint64 size = numberAt<quint32>(tail, end + 12);
    if (size > largestTable || !m_file.seek(numberAt<quint32>(tail, end + 16)))
        return false;
    const QByteArray table = m_file.read(size);
    for (qsizetype i = 0; i + entryHeader <= table.size() && numberAt<quint32>(table, i) == entryMark;) {
        const qsizetype nameSize = numberAt<quint16>(table, i + 28);
        const qsizetype extraSize = numberAt<quint16>(table, i + 30);
        Member member;
        member.isEncrypted = numberAt<quint16>(table, i + 8) & 1U;
        member.method = numberAt<quint16>(table, i + 10);
        member.packedSize = numberAt<quint32>(table, i + 20);
        member.size = numberAt<quint32>(table, i + 24);
        member.offset = numberAt<quint32>(table, i + 42);
        member.name = table.mid(i + entryHeader, nameSize);
        if (member.size == inLongForm)
            member.size = longSize(table.mid(i + entryHeader + nameSize, extraSize));
        m_members.push_back(std::move(member));
        i += entryHeader + nameSize + extraSize + numberAt<quint16>(table, i + 32);
    }
    return !m_members.empty();
}

const ZipPackage::Member* ZipPackage::find(const QByteArray& name) const {
    const auto member = std::find_if(m_members.begin(), m_members.end(),
                                     [&name](const Member& candidate) { return candidate.name == name; });
    return member == m_members.end() ? nullptr : &*member;
}

bool ZipPackage::containsFolder(const QByteArray& name) const {
    return std::any_of(m_members.begin(), m_members.end(),
                       [start = name + '/'](const Member& member) { return member.name.startsWith(start); });
}

bool ZipPackage::isEncrypted() const {
    return std::any_of(m_members.begin(), m_members.end(), [](const Member& member) { return member.isEncrypted; });
}

quint64 ZipPackage::unpackedSize() const {
    return std::accumulate(m_members.begin(), m_members.end(), quint64(0),
                           [](quint64 sum, const Member& member) { return sum + member.size; });
}

std::optional<QByteArray> ZipPackage::read(const QByteArray& name, qsizetype most) {
    const Member* member = find(name);
    if (!member || member->isEncrypted || member->size > quint64(most) || member->packedSize > quint64(most) ||
        !m_file.seek(qint64(member->offset)))
        return std::nullopt;
    const QByteArray header = m_file.read(memberHeader);
    if (header.size() < memberHeader || numberAt<quint32>(header, 0) != memberMark)
        return std::nullopt;
    m_file.skip(numberAt<quint16>(header, 26) + numberAt<quint16>(header, 28));
    const QByteArray packed = m_file.read(qint64(member->packedSize));
    if (packed.size() != qsizetype(member->packedSize))
        return std::nullopt;
    if (member->method == 0)
        return packed;
    return member->method == 8 ? inflated(packed, qsizetype(member->size)) : std::nullopt;
}
