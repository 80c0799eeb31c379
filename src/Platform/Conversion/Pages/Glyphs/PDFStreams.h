#pragma once

#include <QByteArray>

#include <qpdf/Buffer.hh>
#include <qpdf/QPDFObjectHandle.hh>

/// The bytes of streams, unpacked. Throws std::exception.
namespace PDFStreams {

[[nodiscard]] inline QByteArray bytesOf(QPDFObjectHandle stream) {
    const auto bytes = stream.getStreamData();
    return {reinterpret_cast<const char*>(bytes->getBuffer()), qsizetype(bytes->getSize())};
}

/// Keeps the bytes packed, since those of all pages wait in memory for the file to be written.
inline void replace(QPDFObjectHandle stream, const QByteArray& bytes) {
    constexpr qsizetype sizeInFront = 4; // which only Qt reads
    stream.replaceStreamData(qCompress(bytes).sliced(sizeInFront).toStdString(),
                             QPDFObjectHandle::newName("/FlateDecode"), QPDFObjectHandle::newNull());
}

} // namespace PDFStreams
