#pragma once

#include "PDFFileOutline.h"

class SourceEngine;

/// Reads the outline of a file.
namespace OutlineReader {

/// Cycles end the branch, at most 100,000 items are read, and nesting past 64 levels becomes children of the 64th. Any
/// thread.
[[nodiscard]] PDFFileOutline read(SourceEngine& engine);

} // namespace OutlineReader
