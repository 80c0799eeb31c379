#pragma once

#include "EngineContext.h"
#include "PDFPageGeometry.h"

/// What the engine knows of the page tree and of a page's own dictionary. `readGeometry` may throw the engine's way:
/// call it inside `engineTry`.
namespace PageObjects {

/// US Letter, the size that a page without a sensible box gets.
[[nodiscard]] PDFPageGeometry fallbackGeometry();

/// Plain values only, so that it may run where the engine throws.
void readGeometry(fz_context* context, pdf_obj* page, PDFPageGeometry& geometry);

struct Tree {
    bool isThere = false; ///< false: the document has no pages at all, or they can't be read
    int pageCount = 0;
    bool isWalked = false;   ///< false: what the tree claims was believed
    bool isReplaced = false; ///< by one that is sound
};

/// Counts the pages, and sees to it that the engine finds these pages: it goes by the counts of the tree's nodes, and
/// where they are wrong the tree is replaced in the opened document. Every opening of the file ends up with the same
/// tree. A large tree of a file without damage is believed unread. Doesn't throw.
[[nodiscard]] Tree settleTree(fz_context* context, pdf_document* document, std::string* error = nullptr);

/// The page, to be dropped by the caller; null for one that can't be loaded. Doesn't throw.
///
/// It comes without links, annotations and widgets. On loading a page the engine would make up an appearance for every
/// annotation that has none and put it into its document: for one field with a large MaxLen that takes it minutes and
/// all memory.
[[nodiscard]] pdf_page* load(fz_context* context, pdf_document* document, int pageNumber);

} // namespace PageObjects
