#pragma once

#include "EngineContext.h"
#include "PDFPageGeometry.h"

/// What the engine knows of a page's own dictionary. Everything here but `load` may throw the engine's way: call it
/// inside `engineTry`.
namespace PageObjects {

/// US Letter, the size that a page without a sensible box gets.
[[nodiscard]] PDFPageGeometry fallbackGeometry();

/// Plain values only, so that it may run where the engine throws.
void readGeometry(fz_context* context, pdf_obj* page, PDFPageGeometry& geometry);

/// The number of pages that the tree claims when that can be true, and otherwise the number of pages found by walking.
[[nodiscard]] int countPages(fz_context* context, pdf_document* document);

/// The page, to be dropped by the caller; null for one that can't be loaded. Doesn't throw.
///
/// It comes without links, annotations and widgets. On loading a page the engine would make up an appearance for every
/// annotation that has none and put it into its document: for one field with a large MaxLen that takes it minutes and
/// all memory.
[[nodiscard]] pdf_page* load(fz_context* context, pdf_document* document, int pageNumber);

} // namespace PageObjects
