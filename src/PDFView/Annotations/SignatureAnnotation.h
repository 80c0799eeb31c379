#pragma once

#include "PDFAnnotation.h"

#include <QImage>

/// A picture of a signature, scaled to fill the bounds.
class SignatureAnnotation : public PDFAnnotation {
public:
    /// A null image draws nothing.
    SignatureAnnotation(QImage image, const QRectF& bounds);

    [[nodiscard]] const QImage& image() const { return m_image; }

    void draw(PDFDisplayBox box, QPainter& painter) const override;
    [[nodiscard]] bool hasCustomAppearance() const override { return true; }
    [[nodiscard]] std::shared_ptr<PDFAnnotation> copy() const override;

private:
    QImage m_image;
};
