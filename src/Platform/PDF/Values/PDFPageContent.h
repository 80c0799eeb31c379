#pragma once

#include <memory>

class PDFSource;

/// What a page shows apart from its annotations: a page of an immutable source. A value that any thread may hold.
struct PDFPageContent {
    std::shared_ptr<PDFSource> source;
    int pageNumber = 0; ///< zero-based, in the source

    bool operator==(const PDFPageContent&) const = default;
};
