#pragma once

#include "PDFAnnotation.h"

/// A line with decorated ends, 2 points wide unless a border says otherwise. Its points are in page coordinates,
/// wherever the bounds lie: while it is drawn these are the whole page.
class LineAnnotation : public PDFAnnotation {
public:
    explicit LineAnnotation(const QRectF& bounds);
    /// Makes the bounds the rectangle around all that is drawn, the decorated ends included.
    void fitBounds();
    [[nodiscard]] std::shared_ptr<PDFAnnotation> copy() const override;
};
