#pragma once

#include "PictureFile.h"

class QImage;

/// Pixels without loss in the smallest form that holds them: in black and white, with a palette, in grey or in RGB.
namespace PackedPicture {

/// What shows through is shown opaque.
[[nodiscard]] PictureFile::Image of(const QImage& image);

/// How much of what is behind each pixel it hides, as a soft mask.
[[nodiscard]] PictureFile::Image opacity(const QImage& image);

} // namespace PackedPicture
