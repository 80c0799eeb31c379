#pragma once

#include "PDFAnnotation.h"

/// Marks what is to be redacted: nothing is taken away until the redactions are applied.
class RedactionMarkerAnnotation : public PDFAnnotation {
public:
    /// The `contents` by which a marker is known, also after its file was closed.
    inline static const QString marker = QStringLiteral("com.local.quillo.pending-redaction");

    explicit RedactionMarkerAnnotation(const QRectF& bounds);

    void draw(PDFDisplayBox box, QPainter& painter) const override;
    [[nodiscard]] bool hasCustomAppearance() const override { return true; }
    [[nodiscard]] std::shared_ptr<PDFAnnotation> copy() const override;
};
