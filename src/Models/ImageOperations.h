#pragma once

#include <QByteArray>
#include <QImage>

#include <optional>

/// What is done with the picture of a signature.
namespace ImageOperations {

/// The image as a PNG file; none for a null image.
[[nodiscard]] std::optional<QByteArray> pngData(const QImage& image);

/// The part of the image that has ink, with a margin of 6 pixels where the image has room for it; one pixel is one
/// point of the result. A pixel counts as ink from an alpha of 11 of 255, so that the faint fringe of a line doesn't
/// widen the box. None when there is no ink. An image whose pixels have no alpha byte comes back as it is.
[[nodiscard]] std::optional<QImage> trimmedToOpaqueContent(const QImage& image);

} // namespace ImageOperations
