#include "PageSurface.h"

PageSurface::PageSurface(QWidget* parent) : QAbstractScrollArea(parent) {}

PageSurface::~PageSurface() = default;

QPointF PageSurface::convertToPage(QPointF viewPoint, const PDFPage& page) const {
    const auto toView = pageToView(page);
    return toView ? toView->inverted().map(viewPoint) : QPointF();
}

QRectF PageSurface::convertToPage(const QRectF& viewRect, const PDFPage& page) const {
    const auto toView = pageToView(page);
    return toView ? toView->inverted().mapRect(viewRect) : QRectF();
}

QPointF PageSurface::convertFromPage(QPointF pagePoint, const PDFPage& page) const {
    const auto toView = pageToView(page);
    return toView ? toView->map(pagePoint) : QPointF();
}

QRectF PageSurface::convertFromPage(const QRectF& pageRect, const PDFPage& page) const {
    const auto toView = pageToView(page);
    return toView ? toView->mapRect(pageRect) : QRectF();
}
