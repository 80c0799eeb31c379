#include "FormPainting.h"

#include <QPainter>
#include <QPen>
#include <QPolygonF>
#include <QTransform>

#include <algorithm>

// Pages are light whatever the desktop is, so these colours don't follow it.
static constexpr QColor tint{0, 110, 255, 26};
static constexpr QColor missing{222, 60, 40, 170};
static constexpr QColor arrow{70, 80, 95};

// Device-independent pixels.
static constexpr double missingWidth = 1.5;
static constexpr double ringWidth = 2;
static constexpr double largestArrow = 9;

void FormPainting::paintFields(QPainter& painter, const std::vector<PageFields::Entry>& fields,
                               const QTransform& pageToView, const QRectF& exposed) {
    QList<QRectF> fillable;
    QList<QRectF> lacking;
    for (const PageFields::Entry& field : fields) {
        if (!field.isFillable)
            continue;
        const QRectF rect = pageToView.mapRect(field.bounds);
        if (!paintedRect(rect).intersects(exposed))
            continue;
        fillable.append(rect);
        if (field.isMissing)
            lacking.append(rect.adjusted(missingWidth / 2, missingWidth / 2, -missingWidth / 2, -missingWidth / 2));
    }
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing, false);
    painter.setPen(Qt::NoPen);
    painter.setBrush(tint);
    painter.drawRects(fillable);
    painter.setBrush(Qt::NoBrush);
    painter.setPen(QPen(missing, missingWidth, Qt::SolidLine, Qt::FlatCap, Qt::MiterJoin));
    painter.drawRects(lacking);
    painter.restore();
}

QRectF FormPainting::arrowArea(const QRectF& field) {
    QRectF area = field;
    area.setLeft(field.right() - std::min(field.height(), field.width() / 3));
    return area;
}

void FormPainting::paintArrow(QPainter& painter, const QRectF& field) {
    const double size = std::min({largestArrow, field.height() / 3, field.width() / 4});
    const QPointF middle(field.right() - 1.4 * size, field.center().y());
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(arrow, std::max(1.0, size / 5), Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    painter.drawPolyline(QPolygonF({middle + QPointF(-size / 2, -size / 4), middle + QPointF(0, size / 4),
                                    middle + QPointF(size / 2, -size / 4)}));
    painter.restore();
}

void FormPainting::paintRing(QPainter& painter, const QRectF& field, const QColor& color) {
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(color, ringWidth, Qt::SolidLine, Qt::FlatCap, Qt::RoundJoin));
    painter.setBrush(Qt::NoBrush);
    const double out = ringWidth / 2;
    painter.drawRoundedRect(QRectF(field.toAlignedRect()).adjusted(-out, -out, out, out), ringWidth, ringWidth);
    painter.restore();
}

QRectF FormPainting::paintedRect(const QRectF& field) {
    return field.adjusted(-ringWidth - 2, -ringWidth - 2, ringWidth + 2, ringWidth + 2);
}
