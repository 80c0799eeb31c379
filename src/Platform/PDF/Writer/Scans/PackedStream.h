#pragma once

#include <qpdf/QPDF.hh>

#include <QByteArray>

#include <string>

/// Streams of a file that is being made.
namespace PackedStream {

/// Small or soon there.
enum class Packing { quick = 1, best = 9 };

[[nodiscard]] inline QByteArray deflated(const QByteArray& bytes, Packing packing = Packing::best) {
    constexpr int sizeOfLength = 4; // that Qt puts before the data
    return qCompress(bytes, int(packing)).mid(sizeOfLength);
}

/// A new stream with these bytes as they are; its filter is to be set by whoever packed them.
[[nodiscard]] inline QPDFObjectHandle addRaw(QPDF& file, const QByteArray& bytes) {
    return QPDFObjectHandle::newStream(&file, std::string(bytes.constData(), std::size_t(bytes.size())));
}

/// A new stream that is packed.
[[nodiscard]] inline QPDFObjectHandle add(QPDF& file, const QByteArray& bytes) {
    QPDFObjectHandle stream = addRaw(file, deflated(bytes));
    stream.getDict().replaceKey("/Filter", QPDFObjectHandle::newName("/FlateDecode"));
    return stream;
}

} // namespace PackedStream
