#pragma once

#include "AnnotationDrawing.h"
#include "PDFAnnotationValues.h"

#include <optional>

/// How the widgets of form fields look that draw themselves.
namespace FieldDrawing {

/// In page coordinates. None for push buttons and signatures, of which the program knows no look.
[[nodiscard]] std::optional<AnnotationDrawing> of(const PDFAnnotationValues& values);

/// From a widget's box, with its origin at the lower left, to the page; `turn` is the R key of MK.
[[nodiscard]] QTransform placement(const QRectF& bounds, int turn);

/// What stands in a password field.
[[nodiscard]] QString dots(qsizetype count);

} // namespace FieldDrawing
