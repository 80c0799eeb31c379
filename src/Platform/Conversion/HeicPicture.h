#pragma once

#include <QByteArray>
#include <QImage>

/// Pictures of phones (ISO/IEC 23008-12), which Qt has no reader for. Any thread.
namespace HeicPicture {

/// By the bytes at the start.
[[nodiscard]] bool isOne(const QByteArray& bytes);

/// The chief picture of the file, upright, with its colour space, in 8 bits. Null when it can't be read, or has more
/// than `mostPixels`, which is seen before anything is unpacked.
[[nodiscard]] QImage read(const QByteArray& bytes, qint64 mostPixels);

} // namespace HeicPicture
