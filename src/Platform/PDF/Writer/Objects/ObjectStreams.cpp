#include "ObjectStreams.h"

#include "Logging.h"
#include "ObjectSyntax.h"

#include <qpdf/Buffer.hh>

#include <charconv>
#include <exception>
#include <map>
#include <optional>
#include <string_view>

namespace {

using Value = std::function<const std::string&(int number)>;

struct Header {
    std::vector<int> numbers;
    std::vector<std::size_t> offsets; // from the first object on
};

/// What stands before the first object: nothing but so many pairs of numbers. None for anything else.
std::optional<Header> headerOf(std::string_view bytes, std::size_t count) {
    Header header;
    std::size_t at = 0;
    const auto next = [&]() -> std::optional<int> {
        at = std::min(bytes.find_first_not_of(" \r\n\t", at), bytes.size());
        int number = 0;
        const auto [end, error] = std::from_chars(bytes.data() + at, bytes.data() + bytes.size(), number);
        if (error != std::errc() || number < 0)
            return std::nullopt;
        at = std::size_t(end - bytes.data());
        return number;
    };
    for (std::size_t i = 0; i < count; ++i) {
        const std::optional<int> number = next();
        const std::optional<int> offset = next();
        if (!number || !offset)
            return std::nullopt;
        header.numbers.push_back(*number);
        header.offsets.push_back(std::size_t(*offset));
    }
    return bytes.find_first_not_of(" \r\n\t", at) == std::string_view::npos ? std::optional(header) : std::nullopt;
}

/// The bytes of the objects; empty for a header that doesn't fit.
std::string_view bytesOf(std::string_view objects, const Header& header, std::size_t i) {
    const bool isLast = i + 1 == header.numbers.size();
    const std::size_t start = header.offsets[i];
    const std::size_t end = isLast ? objects.size() : header.offsets[i + 1];
    return start <= end && end <= objects.size() ? objects.substr(start, end - start) : std::string_view();
}

/// True when the objects follow one another without anything between them, each with the value that it should have.
bool holdsValues(std::string_view objects, const Header& header, const Value& value) {
    for (std::size_t i = 0; i < header.numbers.size(); ++i) {
        if (i == 0 && header.offsets[i] != 0)
            return false;
        const auto text = ObjectSyntax::canonical(bytesOf(objects, header, i));
        if (!text || *text != value(header.numbers[i]))
            return false;
    }
    return true;
}

/// Of a stream with `rest` as the other keys of its dictionary.
QByteArray streamObject(const ObjectStreams::Stream& stream, std::size_t first, const QByteArray& rest,
                        const QByteArray& bytes) {
    return QByteArray::number(stream.number) + " 0 obj\n<< /Type /ObjStm /N " +
           QByteArray::number(qsizetype(stream.members.size())) + " /First " + QByteArray::number(qsizetype(first)) +
           rest + " /Length " + QByteArray::number(bytes.size()) + " >>\nstream\n" + bytes + "\nendstream\nendobj\n";
}

} // namespace

std::vector<ObjectStreams::Stream> ObjectStreams::of(QPDF& pdf) {
    constexpr int inObjectStream = 2;
    std::map<int, std::map<int, int>> numbers; // by stream and index
    for (const auto& [id, place] : pdf.getXRefTable())
        if (place.getType() == inObjectStream)
            numbers[place.getObjStreamNumber()][place.getObjStreamIndex()] = id.getObj();
    std::vector<Stream> streams;
    for (const auto& [number, members] : numbers) {
        Stream& stream = streams.emplace_back(Stream{number, {}});
        for (const auto& [index, member] : members)
            stream.members.push_back(member);
    }
    return streams;
}

std::unordered_map<int, QPDFObjGen> ObjectStreams::pagesOfPlaces(QPDF& pdf) {
    std::unordered_map<int, QPDFObjGen> pages;
    for (const Stream& stream : of(pdf)) {
        try {
            QPDFObjectHandle object = pdf.getObject(stream.number, 0);
            int count = 0;
            int first = 0;
            if (!object.isStream() || !object.getDict().getKey("/N").getValueAsInt(count) ||
                !object.getDict().getKey("/First").getValueAsInt(first) || count <= 0 || first <= 0)
                continue;
            const auto buffer = object.getStreamData(qpdf_dl_generalized);
            const std::string_view bytes(reinterpret_cast<const char*>(buffer->getBuffer()), buffer->getSize());
            if (std::size_t(first) > bytes.size())
                continue;
            const auto header = headerOf(bytes.substr(0, std::size_t(first)), std::size_t(count));
            if (!header || header->numbers != stream.members)
                continue;
            for (std::size_t i = 0; i < header->numbers.size(); ++i)
                if (const auto page = ObjectSyntax::pageOfPlace(bytesOf(bytes.substr(std::size_t(first)), *header, i)))
                    pages[header->numbers[i]] = *page;
        } catch (const std::exception& error) {
            qCWarning(Logging::pdf) << "reading packed objects failed:" << Logging::causes(error);
        }
    }
    return pages;
}

QByteArray ObjectStreams::unchanged(QPDF& pdf, const Stream& stream, const Value& value) {
    try {
        QPDFObjectHandle object = pdf.getObject(stream.number, 0);
        if (!object.isStream())
            return {};
        QPDFObjectHandle dictionary = object.getDict();
        int first = 0;
        if (!dictionary.getKey("/N").isInteger() || !dictionary.getKey("/First").getValueAsInt(first) || first <= 0)
            return {};
        const auto buffer = object.getStreamData(qpdf_dl_generalized);
        const std::string_view bytes(reinterpret_cast<const char*>(buffer->getBuffer()), buffer->getSize());
        if (std::size_t(first) > bytes.size())
            return {};
        // One more pair than members are in use would show here as something that doesn't belong.
        const std::optional<Header> header = headerOf(bytes.substr(0, std::size_t(first)), stream.members.size());
        if (!header || header->numbers != stream.members ||
            !holdsValues(bytes.substr(std::size_t(first)), *header, value))
            return {};
        QByteArray rest;
        for (const char* key : {"/Filter", "/DecodeParms"}) {
            const QByteArray entry = QByteArray::fromStdString(dictionary.getKey(key).unparseResolved());
            if (entry != "null")
                rest += QByteArray(" ") + key + ' ' + entry;
        }
        bool refers = false;
        ObjectSyntax::forEachReference(rest.toStdString(), [&refers](QPDFObjGen) { refers = true; });
        if (refers)
            return {};
        const auto raw = object.getRawStreamData();
        return streamObject(stream, std::size_t(first), rest,
                            {reinterpret_cast<const char*>(raw->getBuffer()), qsizetype(raw->getSize())});
    } catch (const std::exception& error) {
        qCWarning(Logging::pdf) << "reading packed objects failed:" << Logging::causes(error);
        return {};
    }
}

QByteArray ObjectStreams::packed(const Stream& stream, const Value& value) {
    QByteArray header;
    QByteArray objects;
    for (const int number : stream.members) {
        header += QByteArray::number(number) + ' ' + QByteArray::number(objects.size()) + ' ';
        objects += QByteArray::fromStdString(value(number)) + '\n';
    }
    const QByteArray bytes = qCompress(header + objects).mid(4); // Qt puts the length before the zlib data
    return streamObject(stream, std::size_t(header.size()), " /Filter /FlateDecode", bytes);
}
