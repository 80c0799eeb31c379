#include "PDFPageGeometry.h"

QSizeF PDFPageGeometry::displaySize(PDFDisplayBox which) const {
    const QSizeF size = box(which).size() * userUnit;
    return rotation % 180 == 0 ? size : size.transposed();
}

QTransform PDFPageGeometry::displayTransform(PDFDisplayBox which) const {
    const QRectF b = box(which);
    const double u = userUnit;
    switch (rotation) {
    case 90:
        return {0, u, u, 0, -b.top() * u, -b.left() * u};
    case 180:
        return {-u, 0, 0, u, b.right() * u, -b.top() * u};
    case 270:
        return {0, -u, -u, 0, b.bottom() * u, b.right() * u};
    default:
        return {u, 0, 0, -u, -b.left() * u, b.bottom() * u};
    }
}
