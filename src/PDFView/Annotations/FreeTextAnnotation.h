#pragma once

#include "PDFAnnotation.h"

/// Text on the page without a box around it: `font` (or the desktop's at 16 points) in `fontColor` (or black). `color`
/// isn't painted.
class FreeTextAnnotation : public PDFAnnotation {
public:
    explicit FreeTextAnnotation(const QRectF& bounds);

    /// The least box that shows all of the text, its margins included, where lines are as long as in a box of `width`;
    /// with an infinite one only the text's own breaks count. In points. Main thread only.
    [[nodiscard]] static QSizeF boxFor(const QString& text, const QFont& font, double width);

    void draw(PDFDisplayBox box, QPainter& painter) const override;
    [[nodiscard]] bool hasCustomAppearance() const override { return true; }
    [[nodiscard]] std::shared_ptr<PDFAnnotation> copy() const override;

private:
    const QFont m_systemFont; // asked for when it is made, since only the main thread may ask the desktop
};
