#pragma once

#include <memory>
#include <set>
#include <vector>

class PDFDocument;
class PDFEditorDocument;
class UndoManager;

/// Zero-based places of pages.
using PageIndices = std::set<int>;

/// The one place where pages of an open document are moved, deleted or brought in, and where new documents are put
/// together from pages.
///
/// Each edit of an open document empties the `ThumbnailCache`, tells `objectWillChange` once it is complete, and can be
/// undone and redone without limit where there is an undo manager. What would change nothing tells nothing and leaves
/// no undo. Main thread only.
namespace PageOperations {

/// Moves the page at `from` so that it stands at `to`, which is clamped to the document. Does nothing when they are the
/// same or when there is no page at `from`.
void movePage(PDFEditorDocument& document, int from, int to, UndoManager* undoManager);

/// Moves the pages, in their order, into the gap before the page at `gap`, from 0 to the number of pages: `movePage` as
/// often as it takes, and one undo step.
void movePages(PDFEditorDocument& document, const PageIndices& indices, int gap, UndoManager* undoManager);

/// Takes the pages out; indices without a page are passed over. All pages may go.
void deletePages(PDFEditorDocument& document, const PageIndices& indices, UndoManager* undoManager);

/// Brings in copies of all pages of `source`, the first at `index`, which is clamped to the document.
void merge(PDFEditorDocument& document, const PDFDocument& source, int index, UndoManager* undoManager);

/// A new document of copies of these pages, in ascending order.
[[nodiscard]] std::shared_ptr<PDFDocument> extractPages(const PageIndices& indices, const PDFDocument& document);

/// A new document of copies of all pages of these, one after the other.
[[nodiscard]] std::shared_ptr<PDFDocument> mergeFiles(const std::vector<std::shared_ptr<PDFDocument>>& documents);

} // namespace PageOperations
