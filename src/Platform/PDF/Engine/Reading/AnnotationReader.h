#pragma once

#include "PDFAnnotationValues.h"
#include "PDFFileDestination.h"

#include <map>
#include <stop_token>
#include <vector>

class SourceEngine;

/// Reads the annotations of a page of a file. Any thread; the results are plain values.
namespace AnnotationReader {

/// By place in the page's Annots array; places where the file has no usable dictionary are left out. At most the last
/// 20,000 places are read.
[[nodiscard]] std::map<int, PDFAnnotationValues> read(SourceEngine& engine, int pageNumber);

/// The rectangle of one annotation as the file has it; empty when it can't be read.
[[nodiscard]] QRectF bounds(SourceEngine& engine, int pageNumber, int index);

/// The pages, zero-based and ascending, on which an annotation has exactly these contents. Reads no more of the others
/// than that, and ends early once `stop` is requested.
[[nodiscard]] std::vector<int> pagesWithContents(SourceEngine& engine, const QString& contents,
                                                 const std::stop_token& stop);

/// Where a link leads inside its file; invalid when it doesn't.
[[nodiscard]] PDFFileDestination target(SourceEngine& engine, int pageNumber, int index);

} // namespace AnnotationReader
