#pragma once

#include <QByteArray>

class QColorSpace;

/// Colour profiles of the International Color Consortium, as pictures carry them.
namespace PictureProfile {

/// The profile when it is one for so many components (1 grey, 3 RGB, 4 CMYK), else nothing: a reader that meets another
/// doesn't show the picture.
[[nodiscard]] QByteArray fitting(const QByteArray& profile, int components);

/// That of an RGB colour space; empty for sRGB, which needs none.
[[nodiscard]] QByteArray of(const QColorSpace& space);

} // namespace PictureProfile
