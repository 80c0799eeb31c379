#include "NoteIcon.h"

#include <QPainter>

namespace {

constexpr double side = 20; // points, the usual size of this sign
constexpr double foldedCorner = 0.3;

} // namespace

void NoteIcon::draw(const PDFAnnotationValues& values, QPainter& painter) {
    const double scale = side * std::min({1.0, values.bounds.width() / side, values.bounds.height() / side});
    if (!(scale > 0))
        return;
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.translate(values.bounds.left(), values.bounds.bottom());
    painter.scale(scale, -scale); // a unit square, y down

    QPainterPath sheet(QPointF(0.1, 0.05));
    sheet.lineTo(0.9 - foldedCorner, 0.05);
    sheet.lineTo(0.9, 0.05 + foldedCorner);
    sheet.lineTo(0.9, 0.95);
    sheet.lineTo(0.1, 0.95);
    sheet.closeSubpath();
    const QColor ink(0x3A, 0x3A, 0x3C);
    painter.setBrush(values.color.value_or(QColor(0xF2, 0xA9, 0x3B)));
    painter.setPen(QPen(ink, 0.05, Qt::SolidLine, Qt::FlatCap, Qt::RoundJoin));
    painter.drawPath(sheet);
    const double fold = 0.05 + foldedCorner;
    painter.drawPolyline(QPolygonF({{0.9 - foldedCorner, 0.05}, {0.9 - foldedCorner, fold}, {0.9, fold}}));
    for (const double line : {0.5, 0.65, 0.8})
        painter.drawLine(QPointF(0.25, line), QPointF(0.75, line));
    painter.restore();
}
