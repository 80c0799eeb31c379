#include "FieldFrame.h"

#include "AnnotationDrawing.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace {

using Part = AnnotationDrawing::Part;

constexpr double mostBorderDashes = 2000;

void addFill(AnnotationDrawing& drawing, const QPainterPath& path, const QColor& color) {
    Part part;
    part.path = path;
    part.fill = color;
    drawing.parts.push_back(part);
}

} // namespace

double FieldFrame::thickness() const {
    const bool isRelief = border.style == PDFBorderStyle::beveled || border.style == PDFBorderStyle::inset;
    const double width = isRelief ? 2 * border.lineWidth : border.lineWidth;
    return std::clamp(width, 0.0, std::min(box.width(), box.height()) / 2);
}

/// Light falls from the upper left.
void FieldFrame::addRelief(AnnotationDrawing& drawing) const {
    const double width = border.lineWidth;
    const QRectF outer = QRectF(QPointF(), box).adjusted(width, width, -width, -width);
    const QRectF inner = outer.adjusted(width, width, -width, -width);
    if (!outer.isValid() || !inner.isValid())
        return;
    const bool isInset = border.style == PDFBorderStyle::inset;
    const QColor light = isInset ? QColor(128, 128, 128) : QColor(Qt::white);
    const QColor dark = isInset ? QColor(192, 192, 192) : background.value_or(QColor(Qt::white)).darker(150);
    // QRectF's top is the lower edge here.
    QPainterPath upperLeft;
    upperLeft.addPolygon(QPolygonF({outer.topLeft(), outer.bottomLeft(), outer.bottomRight(), inner.bottomRight(),
                                    inner.bottomLeft(), inner.topLeft()}));
    upperLeft.closeSubpath();
    QPainterPath lowerRight;
    lowerRight.addPolygon(QPolygonF({outer.topLeft(), outer.topRight(), outer.bottomRight(), inner.bottomRight(),
                                     inner.topRight(), inner.topLeft()}));
    lowerRight.closeSubpath();
    addFill(drawing, upperLeft, light);
    addFill(drawing, lowerRight, dark);
}

void FieldFrame::addTo(AnnotationDrawing& drawing) const {
    const QRectF area(QPointF(), box);
    const double half = std::min(border.lineWidth, std::min(box.width(), box.height())) / 2;
    const QRectF middle = area.adjusted(half, half, -half, -half);
    const auto outline = [this](const QRectF& rect) {
        QPainterPath path;
        if (isRound) {
            const double side = std::min(rect.width(), rect.height());
            path.addEllipse(rect.center(), side / 2, side / 2);
        } else {
            path.addRect(rect);
        }
        return path;
    };
    if (background && background->alpha() > 0)
        addFill(drawing, outline(area), *background);
    if (!isRound && (border.style == PDFBorderStyle::beveled || border.style == PDFBorderStyle::inset))
        addRelief(drawing);
    if (!edge || edge->alpha() == 0 || !(border.lineWidth > 0))
        return;
    Part line;
    line.stroke = edge;
    line.lineWidth = border.lineWidth;
    if (border.style == PDFBorderStyle::underline && !isRound) {
        line.path.moveTo(middle.topLeft());
        line.path.lineTo(middle.topRight());
    } else {
        line.path = outline(middle);
    }
    for (int cell = 1; cell < cells; ++cell) {
        const double x = box.width() * cell / cells;
        line.path.moveTo(x, middle.top());
        line.path.lineTo(x, middle.bottom());
    }
    if (border.style == PDFBorderStyle::dashed) {
        line.dashes = border.dashPattern.empty() ? std::vector<double>{3} : border.dashPattern;
        double length = 0;
        for (const double dash : line.dashes)
            length += dash;
        if (!(line.path.length() / length * double(line.dashes.size()) < mostBorderDashes))
            line.dashes.clear();
    }
    drawing.parts.push_back(line);
}

void addFieldMark(AnnotationDrawing& drawing, QChar mark, const QRectF& box, const QColor& color) {
    const double side = std::min(box.width(), box.height());
    const auto at = [&](double x, double y) { return box.center() + QPointF(x - 0.5, y - 0.5) * side; };
    Part part;
    switch (mark.unicode()) {
    case 'l':
        part.path.addEllipse(box.center(), side / 4, side / 4);
        break;
    case 'n':
        part.path.addRect(QRectF(at(0.25, 0.25), at(0.75, 0.75)));
        break;
    case 'u':
        part.path.addPolygon(QPolygonF({at(0.5, 0.82), at(0.82, 0.5), at(0.5, 0.18), at(0.18, 0.5)}));
        part.path.closeSubpath();
        break;
    case 'H': {
        QPolygonF star;
        for (int corner = 0; corner < 10; ++corner) {
            const double radius = corner % 2 == 0 ? 0.38 : 0.15;
            const double angle = std::numbers::pi * (0.5 + corner / 5.0);
            star << at(0.5 + radius * std::cos(angle), 0.5 + radius * std::sin(angle));
        }
        part.path.addPolygon(star);
        part.path.closeSubpath();
        break;
    }
    case '8':
        part.path.moveTo(at(0.25, 0.25));
        part.path.lineTo(at(0.75, 0.75));
        part.path.moveTo(at(0.25, 0.75));
        part.path.lineTo(at(0.75, 0.25));
        part.stroke = color;
        break;
    default:
        part.path.moveTo(at(0.22, 0.52));
        part.path.lineTo(at(0.42, 0.28));
        part.path.lineTo(at(0.78, 0.76));
        part.stroke = color;
    }
    if (part.stroke) {
        part.lineWidth = side * 0.12;
        part.cap = Qt::RoundCap;
        part.join = Qt::RoundJoin;
    } else {
        part.fill = color;
    }
    drawing.parts.push_back(part);
}
