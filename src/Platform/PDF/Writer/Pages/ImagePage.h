#pragma once

#include <QByteArray>
#include <QSizeF>

class QImage;

/// Makes the bytes of a one-page PDF that shows one picture. Any thread.
namespace ImagePage {

/// The picture without loss; `points` is the page's size. Empty for a null picture or a size that isn't above zero.
[[nodiscard]] QByteArray fromImage(const QImage& image, QSizeF points);

/// The bytes of a JPEG file, stored as they are. Empty when they are no JPEG.
[[nodiscard]] QByteArray fromJpeg(const QByteArray& jpeg, QSizeF points);

} // namespace ImagePage
