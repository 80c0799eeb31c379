#pragma once

#include <qpdf/QPDF.hh>

#include <QByteArray>

#include <map>

/// The end of a file whose cross-references stand in a stream (ISO 32000-1, 7.5.8), and the dictionary at the end of
/// any.
namespace CrossReferences {

/// Where an object is.
struct Place {
    enum class Kind : char { free, inFile, inObjectStream };
    Kind kind = Kind::inFile;
    qint64 position = 0; ///< the offset in bytes, the object stream's number, or the next free number
    int detail = 0;      ///< the generation, or the index in the object stream
};
using Places = std::map<int, Place>; // by object number

/// A copy of the file's trailer without what describes a section of cross-references.
[[nodiscard]] QPDFObjectHandle plainTrailer(QPDF& pdf);

/// The two names of a file: the first stays as it is where there is one, the second becomes `fingerprint`.
void setIds(QPDFObjectHandle trailer, const QByteArray& fingerprint);

/// Calls `run(first, count)` for each run of consecutive object numbers, `first` being an iterator.
template <typename Run>
void forEachRun(const Places& places, Run run) {
    for (auto at = places.begin(); at != places.end();) {
        const auto first = at;
        int count = 0;
        while (at != places.end() && at->first == first->first + count) {
            ++at;
            ++count;
        }
        run(first, count);
    }
}

/// The bytes of the stream object with that number; its own place is among `places`. Changes `trailer`, which becomes
/// the stream's dictionary.
[[nodiscard]] QByteArray streamObject(const Places& places, int number, QPDFObjectHandle trailer);

} // namespace CrossReferences
