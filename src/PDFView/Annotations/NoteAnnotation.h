#pragma once

#include "PDFAnnotation.h"

/// A note that lies open on the page as a small sheet of paper. In a file it is a plain Text annotation, which every
/// reader shows as a sign of its own.
class NoteAnnotation : public PDFAnnotation {
public:
    static constexpr QColor paperCream{0xFF, 0xFD, 0xF7};
    static constexpr QColor ink{0x2A, 0x27, 0x24};

    explicit NoteAnnotation(const QRectF& bounds);

    /// The sheet without its shadow, which takes up the lowest and the rightmost points of the bounds as they are seen.
    /// In page coordinates.
    [[nodiscard]] QRectF paperRect() const;

    void draw(PDFDisplayBox box, QPainter& painter) const override;
    [[nodiscard]] std::shared_ptr<PDFAnnotation> copy() const override;

private:
    [[nodiscard]] QRectF uprightPaper() const;
};
