#pragma once

#include "FormFieldMode.h"

#include <QRectF>

#include <memory>

class PDFAnnotation;

/// Makes the form fields that a drag places.
namespace FormFieldPlacer {

/// An empty text field or an unchecked box at `bounds` (page coordinates), on no page yet. Its name is the mode and a
/// number that rises with each field that this process makes, of either mode: "text_1", "checkbox_2".
[[nodiscard]] std::shared_ptr<PDFAnnotation> makeAnnotation(FormFieldMode mode, const QRectF& bounds);

} // namespace FormFieldPlacer
