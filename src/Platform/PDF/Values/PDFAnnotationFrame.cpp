#include "PDFAnnotationFrame.h"

#include "PDFAnnotationSubtype.h"

QRectF PDFAnnotationFrame::upright(const QRectF& bounds) const {
    if (*this == PDFAnnotationFrame())
        return bounds; // to the last bit
    QSizeF size = bounds.size() * userUnit;
    if (turn % 180 != 0)
        size.transpose();
    return {bounds.center() - QPointF(size.width() / 2, size.height() / 2), size};
}

QTransform PDFAnnotationFrame::toPage(const QRectF& bounds) const {
    if (*this == PDFAnnotationFrame())
        return {};
    const QPointF center = bounds.center();
    return QTransform::fromTranslate(-center.x(), -center.y()) * QTransform().rotate(turn) *
           QTransform::fromScale(1 / userUnit, 1 / userUnit) * QTransform::fromTranslate(center.x(), center.y());
}

bool PDFAnnotationFrame::suits(const QString& subtype) {
    return subtype == PDFAnnotationSubtype::text || subtype == PDFAnnotationSubtype::freeText ||
           subtype == PDFAnnotationSubtype::stamp;
}
