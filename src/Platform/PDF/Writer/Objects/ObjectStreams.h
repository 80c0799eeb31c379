#pragma once

#include <qpdf/QPDF.hh>

#include <QByteArray>

#include <functional>
#include <string>
#include <unordered_map>
#include <vector>

/// Objects that are packed together in a stream (ISO 32000-1, 7.5.7).
namespace ObjectStreams {

struct Stream {
    int number = 0;           ///< of the stream's own object
    std::vector<int> members; ///< the object numbers, in the order of the stream
};

/// Those of the file, with the members that are in use by the file's cross-references.
[[nodiscard]] std::vector<Stream> of(QPDF& pdf);

/// The pages of packed objects that are plainly places on a page (ISO 32000-1, 12.3.2.2), by the objects' numbers. They
/// are found in the bytes of the file, as long as none of the objects was changed, which is a fraction of the time that
/// it takes to read the objects.
[[nodiscard]] std::unordered_map<int, QPDFObjGen> pagesOfPlaces(QPDF& pdf);

/// The bytes of the stream's object when they may be taken over: they hold the members, each with the value that
/// `value` gives for its number, and nothing else. Empty otherwise.
[[nodiscard]] QByteArray unchanged(QPDF& pdf, const Stream& stream,
                                   const std::function<const std::string&(int number)>& value);

/// The bytes of a new one.
[[nodiscard]] QByteArray packed(const Stream& stream, const std::function<const std::string&(int number)>& value);

} // namespace ObjectStreams
