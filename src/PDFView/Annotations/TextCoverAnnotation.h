#pragma once

#include "PDFAnnotation.h"

/// Marks the place of an edited line of page text. It is never seen, here or in other readers: the free text over it is
/// what shows.
class TextCoverAnnotation : public PDFAnnotation {
public:
    explicit TextCoverAnnotation(const QRectF& bounds);

    void draw(PDFDisplayBox box, QPainter& painter) const override;
    [[nodiscard]] bool hasCustomAppearance() const override { return true; }
    [[nodiscard]] std::shared_ptr<PDFAnnotation> copy() const override;
};
