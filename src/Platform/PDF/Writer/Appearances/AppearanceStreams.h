#pragma once

#include "AnnotationDrawing.h"
#include "ObjectStore.h"

/// Small appearances of plain kinds, made by hand (ISO 32000-1, 12.5.5).
namespace AppearanceStreams {

/// Operators that paint the parts of the drawing, in page coordinates. Graphics states that they need are added to
/// `resources`.
[[nodiscard]] QByteArray paintOperators(const AnnotationDrawing& drawing, QPDFObjectHandle resources);

/// A form XObject for a drawing without text whose user space is that of the page, so that it stands where its
/// annotation's rectangle is `box`.
[[nodiscard]] QPDFObjectHandle form(ObjectStore& objects, const AnnotationDrawing& drawing, const QRectF& box);

/// A form XObject of the given operators. `box` is in the form's own user space, which is turned by `turn` degrees
/// anticlockwise, a multiple of 90, against that of the page.
[[nodiscard]] QPDFObjectHandle form(ObjectStore& objects, const QByteArray& operators, QPDFObjectHandle resources,
                                    const QRectF& box, int turn = 0);

/// The matrix of a form XObject whose user space is turned by `turn` degrees anticlockwise, a multiple of 90, against
/// that of the page.
void setTurn(QPDFObjectHandle form, int turn);

} // namespace AppearanceStreams
