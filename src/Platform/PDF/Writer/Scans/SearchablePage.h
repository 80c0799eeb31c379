#pragma once

#include "PDFPageContent.h"
#include "PDFPageGeometry.h"

#include <QByteArray>
#include <QRectF>
#include <QString>

#include <vector>

class QImage;

/// Makes the bytes of a one-page PDF that shows a picture and holds, invisible over it, the text that stands there. Any
/// thread.
///
/// The new page has all boxes, the rotation and the user unit of a given geometry, so that it can take the place of the
/// page that the picture was made of. Each line is one text object; all of its characters, of whichever script, are
/// found, selected and copied by any reader.
namespace SearchablePage {

struct Line {
    QString text;
    /// Where the line stands on the page as shown, upright, in fractions of the media box, 0-1: origin at the lower
    /// left corner, y up, so that `top()` is the lower edge. It begins at the left edge, in letters as wide as
    /// Helvetica's and 0.85 times as large as the box is high, and stands on the lower edge. A box without height shows
    /// nothing.
    QRectF box;
};

/// The picture fills the media box as shown, upright. It is stored as black and white, grey or colour as it is, without
/// loss; photographs as JPEG of high quality. Empty for a null picture.
[[nodiscard]] QByteArray fromPicture(const QImage& picture, const PDFPageGeometry& geometry,
                                     const std::vector<Line>& lines);

/// For a page whose content is one picture and nothing else, as those of scanners are: that picture with its own bytes,
/// at its own place. Text that can't be seen is left behind. `geometry` is the page's, perhaps turned by hand since it
/// was read. Empty for any other page, and for one that can't be read. Annotations aren't looked at.
[[nodiscard]] QByteArray fromOwnPicture(const PDFPageContent& page, const PDFPageGeometry& geometry,
                                        const std::vector<Line>& lines);

/// Pixels for one point of the finest image that the page draws; 0 for a page without images.
[[nodiscard]] double finestImage(const PDFPageContent& page);

} // namespace SearchablePage
