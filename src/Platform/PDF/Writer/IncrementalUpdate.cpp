#include "IncrementalUpdate.h"

#include "CrossReferences.h"
#include "ObjectStore.h"
#include "ObjectStreams.h"

#include <QCryptographicHash>
#include <QRegularExpression>

#include <set>
#include <string>
#include <vector>

namespace {

constexpr qsizetype tailLength = 2048; // bytes at the end in which the last offset must stand
constexpr qsizetype longestTrailer = 65536;
constexpr std::size_t mostSections = 10000;

enum class SectionKind { none, table, stream };

SectionKind sectionAt(const QByteArray& file, qint64 offset) {
    if (offset <= 0 || offset >= file.size())
        return SectionKind::none;
    const QByteArray start = file.mid(offset, 32).trimmed();
    if (start.startsWith("xref"))
        return SectionKind::table;
    static const QRegularExpression object(QStringLiteral("^\\d+\\s+\\d+\\s+obj\\b"));
    return object.match(QString::fromLatin1(start)).hasMatch() ? SectionKind::stream : SectionKind::none;
}

/// The offset of the section before the one at `offset`; 0 when that is the first.
qint64 previousSection(const QByteArray& file, qint64 offset) {
    const bool isTable = sectionAt(file, offset) == SectionKind::table;
    const qsizetype start = isTable ? file.indexOf("trailer", offset) : qsizetype(offset);
    if (start < 0)
        return 0;
    qsizetype end = file.indexOf(isTable ? "startxref" : "stream", start);
    if (end < 0 || end - start > longestTrailer)
        end = start + longestTrailer;
    static const QRegularExpression previous(QStringLiteral("/Prev\\s+(\\d+)"));
    const auto match = previous.match(QString::fromLatin1(file.mid(start, end - start)));
    return match.hasMatch() ? match.captured(1).toLongLong() : 0;
}

/// Where the first version of the file ends.
qint64 firstVersionEnd(const QByteArray& file, qint64 lastOffset) {
    qint64 oldest = lastOffset;
    std::set<qint64> seen{lastOffset};
    while (seen.size() < mostSections) {
        const qint64 previous = previousSection(file, oldest);
        if (sectionAt(file, previous) == SectionKind::none || !seen.insert(previous).second)
            break;
        oldest = previous;
    }
    // A file for fast web view has two sections from the start, the older of them at its end.
    const qsizetype end = file.indexOf("%%EOF", oldest);
    return end < 0 ? file.size() : end + 5;
}

/// Few objects take more room packed than as they are.
constexpr std::size_t fewestPacked = 8;
constexpr std::size_t packedTogether = 100;

/// Streams to pack the objects in that may stand in one, numbered from `number` on.
std::vector<ObjectStreams::Stream> packable(const UpdateObjects& objects, int number) {
    std::vector<ObjectStreams::Stream> streams;
    std::size_t count = 0;
    for (const auto& [id, entry] : objects.entries()) {
        if (entry.bytes || id.getGen() != 0)
            continue;
        if (count++ % packedTogether == 0)
            streams.push_back({number++, {}});
        streams.back().members.push_back(id.getObj());
    }
    return count < fewestPacked ? std::vector<ObjectStreams::Stream>() : streams;
}

QByteArray serialized(QPDFObjGen id, const UpdateObjects::Entry& entry) {
    QPDFObjectHandle object = entry.object;
    QByteArray bytes = QByteArray::number(id.getObj()) + ' ' + QByteArray::number(id.getGen()) + " obj\n";
    if (entry.bytes) {
        QPDFObjectHandle dictionary = object.shallowCopy();
        dictionary.replaceKey("/Length", QPDFObjectHandle::newInteger(entry.bytes->size()));
        bytes += QByteArray::fromStdString(dictionary.unparse()) + "\nstream\n" + *entry.bytes + "\nendstream";
    } else {
        bytes += QByteArray::fromStdString(object.unparseResolved());
    }
    return bytes + "\nendobj\n";
}

QPDFObjectHandle newTrailer(const UpdateObjects& objects, qint64 previous, int size, const QByteArray& fingerprint) {
    QPDFObjectHandle trailer = CrossReferences::plainTrailer(objects.pdf());
    trailer.replaceKey("/Size", QPDFObjectHandle::newInteger(size));
    trailer.replaceKey("/Prev", QPDFObjectHandle::newInteger(previous));
    CrossReferences::setIds(trailer, fingerprint);
    return trailer;
}

QByteArray table(const CrossReferences::Places& places) {
    QByteArray bytes = "xref\n";
    CrossReferences::forEachRun(places, [&bytes](auto entry, int count) {
        bytes += QByteArray::number(entry->first) + ' ' + QByteArray::number(count) + '\n';
        for (; count > 0; --count, ++entry)
            bytes += QByteArray::number(entry->second.position).rightJustified(10, '0') + ' ' +
                     QByteArray::number(entry->second.detail).rightJustified(5, '0') + " n \n";
    });
    return bytes;
}

} // namespace

std::optional<IncrementalUpdate::Sections> IncrementalUpdate::inspect(const QByteArray& file) {
    if (!file.startsWith("%PDF-"))
        return std::nullopt;
    const qsizetype keyword = file.lastIndexOf("startxref");
    if (keyword < 0 || keyword < file.size() - tailLength)
        return std::nullopt;
    const QByteArray rest = file.mid(keyword + 9);
    Sections sections;
    bool isNumber = false;
    sections.lastOffset = rest.trimmed().split('\n').first().split('\r').first().trimmed().toLongLong(&isNumber);
    const SectionKind kind = isNumber ? sectionAt(file, sections.lastOffset) : SectionKind::none;
    if (kind == SectionKind::none || !rest.contains("%%EOF"))
        return std::nullopt;
    sections.isStream = kind == SectionKind::stream;
    sections.updatedBytes = std::max(qint64(0), file.size() - firstVersionEnd(file, sections.lastOffset));
    return sections;
}

QByteArray IncrementalUpdate::compose(const QByteArray& file, const Sections& sections, const UpdateObjects& objects) {
    using enum CrossReferences::Place::Kind;
    QByteArray update = file.endsWith('\n') || file.endsWith('\r') ? "" : "\n";
    CrossReferences::Places places;
    int number = objects.size();
    if (sections.isStream) {
        std::string text;
        const auto value = [&](int member) -> const std::string& {
            QPDFObjectHandle object = objects.entries().at(QPDFObjGen(member, 0)).object;
            return text = object.unparseResolved();
        };
        for (const ObjectStreams::Stream& stream : packable(objects, number)) {
            places[stream.number] = {inFile, file.size() + update.size(), 0};
            for (std::size_t i = 0; i < stream.members.size(); ++i)
                places[stream.members[i]] = {inObjectStream, stream.number, int(i)};
            update += ObjectStreams::packed(stream, value, {});
            number = stream.number + 1;
        }
    }
    for (const auto& [id, entry] : objects.entries()) {
        if (places.count(id.getObj()) > 0)
            continue; // packed
        places[id.getObj()] = {inFile, file.size() + update.size(), id.getGen()};
        update += serialized(id, entry);
    }
    const QByteArray fingerprint = QCryptographicHash::hash(update, QCryptographicHash::Md5);
    const qint64 offset = file.size() + update.size();
    if (sections.isStream) {
        places[number] = {inFile, offset, 0};
        update += CrossReferences::streamObject(places, number,
                                                newTrailer(objects, sections.lastOffset, number + 1, fingerprint));
    } else {
        QPDFObjectHandle trailer = newTrailer(objects, sections.lastOffset, number, fingerprint);
        update += table(places) + "trailer\n" + QByteArray::fromStdString(trailer.unparse()) + '\n';
    }
    return update + "startxref\n" + QByteArray::number(offset) + "\n%%EOF\n";
}
