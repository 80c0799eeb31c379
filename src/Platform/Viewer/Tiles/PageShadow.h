#pragma once

#include <QImage>
#include <QRectF>

class QPainter;

/// The soft shadow around a sheet of paper.
class PageShadow {
public:
    /// Paints outside of `sheet` only. The painter is set to device pixels; `view` is what can be seen.
    void paint(QPainter& painter, const QRectF& sheet, const QRectF& view, double devicePixelRatio);

private:
    void make(int reach);

    QImage m_image; // the shadow of a sheet of one pixel
    int m_reach = 0;
};
