#include "PageShape.h"

/// The geometry type computes sizes and transforms; all of its boxes are the one that is shown.
static PDFPageGeometry geometryOf(const PageShape& shape) {
    PDFPageGeometry geometry;
    geometry.boxes.fill(shape.box);
    geometry.rotation = shape.rotation;
    geometry.userUnit = shape.userUnit;
    return geometry;
}

PageShape PageShape::fromGeometry(const PDFPageGeometry& geometry, PDFDisplayBox box) {
    return {geometry.box(box), geometry.rotation, geometry.userUnit};
}

QSizeF PageShape::displaySize() const {
    return geometryOf(*this).displaySize(PDFDisplayBox::cropBox);
}

QTransform PageShape::pageToPixels(QSizeF pixels) const {
    const PDFPageGeometry geometry = geometryOf(*this);
    const QSizeF points = geometry.displaySize(PDFDisplayBox::cropBox);
    return geometry.displayTransform(PDFDisplayBox::cropBox) *
           QTransform::fromScale(pixels.width() / points.width(), pixels.height() / points.height());
}
