#pragma once

#include "PDFAnnotation.h"

/// A line with decorated ends, 2 points wide unless a border says otherwise. Its points are in page coordinates,
/// wherever the bounds lie.
class LineAnnotation : public PDFAnnotation {
public:
    explicit LineAnnotation(const QRectF& bounds);
    [[nodiscard]] std::shared_ptr<PDFAnnotation> copy() const override;
};
