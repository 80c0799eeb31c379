#pragma once

#include <QByteArray>
#include <QSize>

/// Keys of the dictionary of an image, each piece with a space before it.
namespace ImageKeys {

/// `colorSpace` is a value; empty where a profile takes its place.
[[nodiscard]] QByteArray of(QSize pixels, int bitsPerSample, const QByteArray& colorSpace);

/// Each row begins with the number of what it is told by (ISO/IEC 15948, clause 9).
[[nodiscard]] QByteArray predictor(int columns, int components, int bitsPerSample);

/// The colour space of a palette: three bytes an entry, at least one.
[[nodiscard]] QByteArray palette(const QByteArray& entries);

} // namespace ImageKeys
