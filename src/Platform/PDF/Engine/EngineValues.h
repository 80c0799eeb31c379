#pragma once

#include "EngineContext.h"
#include "PDFBorder.h"

#include <QColor>
#include <QDateTime>
#include <QRectF>
#include <QString>

#include <optional>
#include <vector>

/// Plain values out of the engine's objects. None of these throws the engine's way by itself, but fetching an object
/// may: keep the fetching inside `engineTry`.
namespace EngineValues {

/// Text of a string object (PDFDocEncoding, UTF-16 or UTF-8); empty for anything else. Cut at 4 million bytes.
[[nodiscard]] QString text(fz_context* context, pdf_obj* object);
[[nodiscard]] QString name(fz_context* context, pdf_obj* object);
/// A colour array of 1, 3 or 4 components; none for another length.
[[nodiscard]] std::optional<QColor> color(fz_context* context, pdf_obj* array);
/// "D:YYYYMMDDHHmmSSOHH'mm'" (ISO 32000-1, 7.9.4), as much of it as is there; invalid for anything else.
[[nodiscard]] QDateTime date(const QString& text);
/// A finite number, or none.
[[nodiscard]] std::optional<double> number(fz_context* context, pdf_obj* object);

// These fetch what they read by themselves.

/// The numbers of an array, 0 for what is none; at most 200,000.
[[nodiscard]] std::vector<double> numbers(fz_context* context, pdf_obj* array);
/// A rectangle's array; null without four numbers.
[[nodiscard]] QRectF rect(fz_context* context, pdf_obj* array);
/// What an annotation says of its border (BS or Border), or none.
[[nodiscard]] std::optional<PDFBorder> border(fz_context* context, pdf_obj* annotation);

/// The frame around a link.
struct LinkFrame {
    PDFBorder border;
    QColor color;
};
/// A link that says nothing has a thin black frame. None for one without a width or a colour.
[[nodiscard]] std::optional<LinkFrame> linkFrame(fz_context* context, pdf_obj* link);

} // namespace EngineValues
