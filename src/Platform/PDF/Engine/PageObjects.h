#pragma once

#include "Engine/EngineContext.h"
#include "PDFPageGeometry.h"

/// What the engine knows of a page's own dictionary. Everything here may throw the engine's way: call it inside
/// `engineTry`.
namespace PageObjects {

/// US Letter, the size that a page without a sensible box gets.
[[nodiscard]] PDFPageGeometry fallbackGeometry();

/// Plain values only, so that it may run where the engine throws.
void readGeometry(fz_context* context, pdf_obj* page, PDFPageGeometry& geometry);

/// The number of pages that the tree claims when that can be true, and otherwise the number of pages found by walking.
[[nodiscard]] int countPages(fz_context* context, pdf_document* document);

} // namespace PageObjects
