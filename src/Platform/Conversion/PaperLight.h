#pragma once

#include <QImage>

/// The light on a scanned or photographed page. A recognizer tells ink from paper by one brightness for the whole page,
/// so where a page grows darker towards an edge or the fold its text is lost.
namespace PaperLight {

/// Brightens the darker parts of the paper until it is equally bright everywhere. `gray` is in Format_Grayscale8, and
/// so is what is returned: `gray` itself where the light is even already, where the paper covers too little of the
/// picture to see the light on it, and where the picture is too small. Dark boxes and pictures on the page stay dark.
[[nodiscard]] QImage evenOut(const QImage& gray);

} // namespace PaperLight
