#pragma once

#include <qpdf/Buffer.hh>
#include <qpdf/QPDF.hh>

#include <QByteArray>

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

/// Objects that are packed together in a stream (ISO 32000-1, 7.5.7).
namespace ObjectStreams {

struct Stream {
    int number = 0;           ///< of the stream's own object
    std::vector<int> members; ///< the object numbers, in the order of the stream
};

/// What such a stream holds.
struct Content {
    QPDFObjectHandle dictionary; ///< of its own, so that the stream's may be changed
    std::shared_ptr<Buffer> packed;
    std::shared_ptr<Buffer> unpacked;
    std::size_t first = 0;            ///< where the first object begins in `unpacked`
    std::vector<std::size_t> offsets; ///< of the objects, from the first one on

    /// What stands from one object on until the next; empty for offsets that don't fit.
    [[nodiscard]] std::string_view bytes(std::size_t index) const;
};

/// Those of the file, with the members that are in use by the file's cross-references.
[[nodiscard]] std::vector<Stream> of(QPDF& pdf);

/// None when that can't be read, or holds anything besides the members. Throws nothing that isn't `std::bad_alloc`.
[[nodiscard]] std::optional<Content> read(QPDF& pdf, const Stream& stream);

/// The pages of packed objects that are plainly places on a page (ISO 32000-1, 12.3.2.2), by the objects' numbers. They
/// are found in the bytes of the file, as long as none of the objects was changed, which is a fraction of the time that
/// it takes to read the objects.
[[nodiscard]] std::unordered_map<int, QPDFObjGen> pagesOfPlaces(QPDF& pdf);

/// What becomes of the content of a stream when it is written; none leaves it.
using Encode = std::function<QByteArray(const QByteArray& content)>;

/// The bytes of the stream's object when they may be taken over: they hold the members, each with the value that
/// `value` gives for its number, one after the other. Empty otherwise.
[[nodiscard]] QByteArray unchanged(const Stream& stream, const Content& content,
                                   const std::function<const std::string&(int number)>& value, const Encode& encode);

/// The bytes of a new one.
[[nodiscard]] QByteArray packed(const Stream& stream, const std::function<const std::string&(int number)>& value,
                                const Encode& encode);

} // namespace ObjectStreams
