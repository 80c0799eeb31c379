#pragma once

#include "PDFAnnotation.h"

/// A rectangle's outline inside the bounds; 2 points wide unless a border says otherwise.
class RectangleAnnotation : public PDFAnnotation {
public:
    explicit RectangleAnnotation(const QRectF& bounds);
    [[nodiscard]] std::shared_ptr<PDFAnnotation> copy() const override;
};
