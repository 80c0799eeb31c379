#pragma once

#include "PDFPageContent.h"

/// Where an annotation came from: the n-th entry of the Annots array of a page of a source.
struct PDFAnnotationOrigin {
    PDFPageContent content;
    int index = 0; ///< zero-based
    bool operator==(const PDFAnnotationOrigin&) const = default;
};
