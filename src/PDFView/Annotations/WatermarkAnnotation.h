#pragma once

#include "PDFAnnotation.h"

/// Words across the middle of its bounds, which are those of what is seen of a page, rising to the right as the page is
/// seen. Words that are longer than the page run off it.
class WatermarkAnnotation : public PDFAnnotation {
public:
    /// `opacity` from 0 to 1.
    WatermarkAnnotation(QString text, double opacity, const QRectF& bounds);
    ~WatermarkAnnotation() override;

    [[nodiscard]] const QString& text() const { return m_text; }
    [[nodiscard]] double opacity() const { return m_opacity; }
    /// Of its letters, in points, on a page that is seen in that size.
    [[nodiscard]] static double fontSize(QSizeF page);

    void draw(PDFDisplayBox box, QPainter& painter) const override;
    [[nodiscard]] bool hasCustomAppearance() const override { return true; }
    [[nodiscard]] QByteArray sharedLook() const override;
    [[nodiscard]] std::shared_ptr<PDFAnnotation> copy() const override;

private:
    QString m_text;
    double m_opacity;
};
