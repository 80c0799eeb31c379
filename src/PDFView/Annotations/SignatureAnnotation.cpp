#include "SignatureAnnotation.h"

#include <QPainter>

SignatureAnnotation::SignatureAnnotation(QImage image, const QRectF& bounds)
    : PDFAnnotation(bounds, PDFAnnotationSubtype::stamp), m_image(std::move(image)) {}

void SignatureAnnotation::draw(PDFDisplayBox /*box*/, QPainter& painter) const {
    if (m_image.isNull())
        return;
    painter.save();
    painter.setRenderHints(QPainter::SmoothPixmapTransform | QPainter::LosslessImageRendering);
    const QRectF upright = uprightBounds();
    painter.translate(upright.left(), upright.bottom());
    painter.scale(1, -1);
    painter.drawImage(QRectF(QPointF(), upright.size()), m_image);
    painter.restore();
}

std::shared_ptr<PDFAnnotation> SignatureAnnotation::copy() const {
    return copied(std::make_shared<SignatureAnnotation>(m_image, bounds()));
}
