#pragma once

#include <QImage>

/// Pages are mostly black on white, and their pictures then take a quarter of the memory.
namespace GrayPicture {

/// The picture in `Format_Grayscale8`; null for one in which anything is coloured. Of pictures of 32 bits, opaque ones,
/// that is told in one pass. Any thread.
[[nodiscard]] QImage of(const QImage& picture);

} // namespace GrayPicture
