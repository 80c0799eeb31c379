#pragma once

#include "PDFPageGeometry.h"

#include <QByteArray>

class PictureFile;
class QImage;

/// Makes the bytes of a one-page PDF that shows one picture. Any thread.
namespace ImagePage {

/// A page of that size, not turned.
[[nodiscard]] PDFPageGeometry sized(QSizeF points);

/// The picture without loss. It fills the media box of a page with these boxes, and stands upright where that isn't
/// turned. Empty for a null picture or a media box without a size.
[[nodiscard]] QByteArray fromImage(const QImage& image, const PDFPageGeometry& page);

/// The bytes of a JPEG file, stored as they are. Empty when they are no JPEG.
[[nodiscard]] QByteArray fromJpeg(const QByteArray& jpeg, const PDFPageGeometry& page);

// The same as one of many pages of a file. False, with nothing written, where the others give nothing.

bool addImage(PictureFile& file, int place, const QImage& image, const PDFPageGeometry& page);
bool addJpeg(PictureFile& file, int place, const QByteArray& jpeg, const PDFPageGeometry& page);

/// The compressed rows of a PNG file, stored as they are. False also for a PNG that `PngFile` doesn't read.
bool addPng(PictureFile& file, int place, const QByteArray& png, const PDFPageGeometry& page);

} // namespace ImagePage
