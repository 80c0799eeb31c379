#pragma once

#include <memory>

class PDFDocument;
class PDFOutline;
class SourceEngine;

/// Reads the outline of a file into a live tree.
namespace OutlineReader {

/// Null when the file has no outline. Destinations are pages of `document`. Cycles end the branch, at most 100,000
/// items are read, and nesting past 64 levels becomes children of the 64th. Main thread.
[[nodiscard]] std::shared_ptr<PDFOutline> read(SourceEngine& engine, const PDFDocument& document);

} // namespace OutlineReader
