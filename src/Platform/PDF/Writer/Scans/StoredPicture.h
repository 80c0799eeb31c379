#pragma once

#include <qpdf/QPDF.hh>

#include <QImage>

/// Pictures as images of a file.
namespace StoredPicture {

/// The picture, without its transparency, as the smallest image that shows it without loss: black and white, grey, a
/// palette or full colour. What would take more than twice as much as a JPEG of high quality is a photograph, and
/// becomes that JPEG. `picture` must not be null.
[[nodiscard]] QPDFObjectHandle add(QPDF& file, const QImage& picture);

} // namespace StoredPicture
