#pragma once

#include "PDFAnnotation.h"

/// Text on the page without a box around it: `font` (or the desktop's at 16 points) in `fontColor` (or black). `color`
/// isn't painted.
class FreeTextAnnotation : public PDFAnnotation {
public:
    explicit FreeTextAnnotation(const QRectF& bounds);

    void draw(PDFDisplayBox box, QPainter& painter) const override;
    [[nodiscard]] bool hasCustomAppearance() const override { return true; }
    [[nodiscard]] std::shared_ptr<PDFAnnotation> copy() const override;

private:
    const QFont m_systemFont; // asked for when it is made, since only the main thread may ask the desktop
};
