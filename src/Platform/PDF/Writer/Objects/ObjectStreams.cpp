#include "ObjectStreams.h"

#include "Logging.h"
#include "ObjectSyntax.h"

#include <charconv>
#include <exception>
#include <map>
#include <new>

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

std::string_view view(const Buffer& buffer) {
    return {reinterpret_cast<const char*>(buffer.getBuffer()), buffer.getSize()};
}

/// True when the objects follow one another without anything between them, each with the value that it should have.
bool holdsValues(const ObjectStreams::Stream& stream, const ObjectStreams::Content& content, const Value& value) {
    if (!content.offsets.empty() && content.offsets.front() != 0)
        return false;
    for (std::size_t i = 0; i < stream.members.size(); ++i) {
        const auto text = ObjectSyntax::canonical(content.bytes(i));
        if (!text || *text != value(stream.members[i]))
            return false;
    }
    return true;
}

/// Of a stream with `rest` as the other keys of its dictionary.
QByteArray streamObject(const ObjectStreams::Stream& stream, std::size_t first, const QByteArray& rest,
                        const QByteArray& content, const ObjectStreams::Encode& encode) {
    const QByteArray bytes = encode ? encode(content) : content;
    return QByteArray::number(stream.number) + " 0 obj\n<< /Type /ObjStm /N " +
           QByteArray::number(qsizetype(stream.members.size())) + " /First " + QByteArray::number(qsizetype(first)) +
           rest + " /Length " + QByteArray::number(bytes.size()) + " >>\nstream\n" + bytes + "\nendstream\nendobj\n";
}

} // namespace

std::string_view ObjectStreams::Content::bytes(std::size_t index) const {
    const std::string_view objects = view(*unpacked).substr(first);
    const std::size_t start = offsets[index];
    const std::size_t end = index + 1 == offsets.size() ? objects.size() : offsets[index + 1];
    return start <= end && end <= objects.size() ? objects.substr(start, end - start) : std::string_view();
}

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

std::optional<ObjectStreams::Content> ObjectStreams::read(QPDF& pdf, const Stream& stream) {
    try {
        QPDFObjectHandle object = pdf.getObject(stream.number, 0);
        long long count = 0;
        long long first = 0;
        if (!object.isStream() || !object.getDict().getKey("/N").getValueAsInt(count) ||
            count != static_cast<long long>(stream.members.size()) ||
            !object.getDict().getKey("/First").getValueAsInt(first) || first <= 0)
            return std::nullopt;
        Content content{object.getDict().shallowCopy(),
                        object.getRawStreamData(),
                        object.getStreamData(qpdf_dl_generalized),
                        std::size_t(first),
                        {}};
        if (content.first > content.unpacked->getSize())
            return std::nullopt;
        std::optional<Header> header = headerOf(view(*content.unpacked).substr(0, content.first), std::size_t(count));
        if (!header || header->numbers != stream.members)
            return std::nullopt;
        content.offsets = std::move(header->offsets);
        return content;
    } catch (const std::bad_alloc&) {
        throw;
    } catch (const std::exception& error) {
        qCWarning(Logging::pdf) << "reading packed objects failed:" << Logging::causes(error);
        return std::nullopt;
    }
}

std::unordered_map<int, QPDFObjGen> ObjectStreams::pagesOfPlaces(QPDF& pdf) {
    std::unordered_map<int, QPDFObjGen> pages;
    for (const Stream& stream : of(pdf))
        if (const std::optional<Content> content = read(pdf, stream))
            for (std::size_t i = 0; i < stream.members.size(); ++i)
                if (const auto page = ObjectSyntax::pageOfPlace(content->bytes(i)))
                    pages[stream.members[i]] = *page;
    return pages;
}

QByteArray ObjectStreams::unchanged(const Stream& stream, const Content& content, const Value& value,
                                    const Encode& encode) {
    if (!holdsValues(stream, content, value))
        return {};
    QByteArray rest;
    for (const char* key : {"/Filter", "/DecodeParms"}) {
        const QByteArray entry =
            QByteArray::fromStdString(QPDFObjectHandle(content.dictionary).getKey(key).unparseResolved());
        if (entry != "null")
            rest += QByteArray(" ") + key + ' ' + entry;
    }
    bool refers = false;
    ObjectSyntax::forEachReference(rest.toStdString(), [&refers](QPDFObjGen) { refers = true; });
    if (refers)
        return {};
    const std::string_view bytes = view(*content.packed);
    return streamObject(stream, content.first, rest, {bytes.data(), qsizetype(bytes.size())}, encode);
}

QByteArray ObjectStreams::packed(const Stream& stream, const Value& value, const Encode& encode) {
    QByteArray header;
    QByteArray objects;
    for (const int number : stream.members) {
        header += QByteArray::number(number) + ' ' + QByteArray::number(objects.size()) + ' ';
        objects += QByteArray::fromStdString(value(number)) + '\n';
    }
    const QByteArray bytes = qCompress(header + objects).mid(4); // Qt puts the length before the zlib data
    return streamObject(stream, std::size_t(header.size()), " /Filter /FlateDecode", bytes, encode);
}
