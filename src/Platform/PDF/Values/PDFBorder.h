#pragma once

#include "PDFTypes.h"

#include <vector>

/// The border of an annotation: a plain value, in points.
struct PDFBorder {
    double lineWidth = 1.0;
    PDFBorderStyle style = PDFBorderStyle::solid;
    /// Lengths of dashes and gaps in turn; used with `PDFBorderStyle::dashed` only.
    std::vector<double> dashPattern = {};

    bool operator==(const PDFBorder&) const = default;
};
