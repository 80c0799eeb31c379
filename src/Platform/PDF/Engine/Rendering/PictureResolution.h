#pragma once

#include "PDFPageContent.h"

/// How finely pages are made of pictures. Any thread.
namespace PictureResolution {

/// Pixels for one unit of page coordinates of the finest image that the page draws, annotations included; 0 for a page
/// without images, or one that can't be read.
[[nodiscard]] double finest(const PDFPageContent& page);

} // namespace PictureResolution
