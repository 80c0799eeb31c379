#include "RedactionMarkerAnnotation.h"

#include "Palette.h"

#include <QPainter>

RedactionMarkerAnnotation::RedactionMarkerAnnotation(const QRectF& bounds)
    : PDFAnnotation(bounds, PDFAnnotationSubtype::square) {}

void RedactionMarkerAnnotation::draw(PDFDisplayBox /*box*/, QPainter& painter) const {
    constexpr double lineWidth = 1.5; // points
    constexpr double inset = lineWidth / 2;
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.fillRect(bounds(), QColor::fromRgbF(0, 0, 0, 0.75F));
    if (const QRectF edge = bounds().adjusted(inset, inset, -inset, -inset); edge.isValid()) {
        QPen pen(Palette::systemRed, lineWidth, Qt::SolidLine, Qt::FlatCap, Qt::MiterJoin);
        pen.setDashPattern({4 / lineWidth, 3 / lineWidth});
        painter.setPen(pen);
        painter.setBrush(Qt::NoBrush);
        painter.drawRect(edge);
    }
    painter.restore();
}

std::shared_ptr<PDFAnnotation> RedactionMarkerAnnotation::copy() const {
    return copied(std::make_shared<RedactionMarkerAnnotation>(bounds()));
}
