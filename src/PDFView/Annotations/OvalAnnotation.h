#pragma once

#include "PDFAnnotation.h"

/// An ellipse's outline inside the bounds; 2 points wide unless a border says otherwise.
class OvalAnnotation : public PDFAnnotation {
public:
    explicit OvalAnnotation(const QRectF& bounds);
    [[nodiscard]] std::shared_ptr<PDFAnnotation> copy() const override;
};
