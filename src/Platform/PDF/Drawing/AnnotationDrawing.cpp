#include "AnnotationDrawing.h"

#include "CloudPath.h"
#include "DimensionLine.h"
#include "FieldDrawing.h"
#include "PDFAnnotationSubtype.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <numeric>

namespace {

using Values = PDFAnnotationValues;
using Part = AnnotationDrawing::Part;

// Where other readers put the lines of text markup, as fractions of the text's height above its lower edge.
constexpr double underlineHeight = 0.075;
constexpr double strikeOutHeight = 0.375;
constexpr double markupLineThickness = 0.07;

constexpr double squiggleHeight = 0.1;
constexpr double squiggleThickness = 0.04;

constexpr double mostDashes = 20000;
constexpr int mostSquiggles = 2000; // a line

double lineWidthOf(const Values& values) {
    return values.border ? values.border->lineWidth : values.defaultLineWidth;
}

std::optional<QColor> visible(const std::optional<QColor>& color) {
    return color && color->alpha() > 0 ? color : std::nullopt;
}

Part strokedPart(const Values& values, const QPainterPath& path) {
    Part part;
    part.path = path;
    part.lineWidth = lineWidthOf(values);
    if (part.lineWidth > 0)
        part.stroke = visible(values.color);
    if (values.border && values.border->style == PDFBorderStyle::dashed)
        part.dashes = values.border->dashPattern.empty() ? std::vector<double>{3} : values.border->dashPattern;
    // A pattern of no length has no end, and one of many more dashes than can be seen takes too long.
    const double length = std::accumulate(part.dashes.begin(), part.dashes.end(), 0.0);
    if (!part.dashes.empty() && !(path.length() / length * double(part.dashes.size()) < mostDashes))
        part.dashes.clear();
    return part;
}

/// A path leaves out a line without length, and then there would be nothing to stroke with a round cap.
void addDot(QPainterPath& path, QPointF at) {
    path.moveTo(at);
    path.lineTo(at + QPointF(0.001, 0));
}

QRectF strokeBox(const Values& values) {
    const double inset = lineWidthOf(values) / 2;
    const QRectF box = values.bounds.adjusted(inset, inset, -inset, -inset);
    return box.isValid() ? box : QRectF(values.bounds.center(), QSizeF());
}

/// The bounds without what lies around the shape or the words in them.
QRectF innerBox(const Values& values) {
    const QMarginsF& m = values.margins;
    const QRectF inner = values.bounds.adjusted(m.left(), m.bottom(), -m.right(), -m.top());
    return inner.isValid() ? inner : values.bounds;
}

/// The shape whose border is a cloud within the bounds.
QPainterPath cloudIn(const Values& values, bool isEllipse) {
    const QMarginsF& m = values.margins;
    const double half = lineWidthOf(values) / 2;
    const double room = std::min({m.left(), m.top(), m.right(), m.bottom()}) - half;
    const double wanted = CloudPath::reach(values.cloudiness);
    const double reach = room > 0 ? std::min(wanted, room) : wanted;
    const double inset = reach + half;
    QRectF box = room > 0 ? innerBox(values) : values.bounds.adjusted(inset, inset, -inset, -inset);
    if (!box.isValid())
        box = values.bounds;
    const QPolygonF corners({box.topLeft(), box.topRight(), box.bottomRight(), box.bottomLeft()});
    return CloudPath::around(isEllipse ? CloudPath::ellipse(box, reach) : corners, reach);
}

std::vector<PDFQuad> quadsOf(const Values& values) {
    return values.quads.empty() ? std::vector{PDFQuad::fromRect(values.bounds)} : values.quads;
}

void addHighlight(AnnotationDrawing& drawing, const Values& values) {
    Part part;
    part.fill = visible(values.color);
    for (const PDFQuad& quad : quadsOf(values)) {
        part.path.addPolygon(QPolygonF({quad.upperLeft, quad.upperRight, quad.lowerRight, quad.lowerLeft}));
        part.path.closeSubpath();
    }
    part.path.setFillRule(Qt::WindingFill);
    drawing.multiplies = true;
    drawing.parts.push_back(part);
}

void addTextLines(AnnotationDrawing& drawing, const Values& values, double height) {
    for (const PDFQuad& quad : quadsOf(values)) {
        const QPointF up = quad.upperLeft - quad.lowerLeft;
        Part part;
        part.stroke = visible(values.color);
        part.lineWidth = std::max(0.5, markupLineThickness * std::hypot(up.x(), up.y()));
        part.path.moveTo(quad.lowerLeft + up * height);
        part.path.lineTo(quad.lowerRight + (quad.upperRight - quad.lowerRight) * height);
        drawing.parts.push_back(part);
    }
}

void addSquiggles(AnnotationDrawing& drawing, const Values& values) {
    for (const PDFQuad& quad : quadsOf(values)) {
        const QPointF up = quad.upperLeft - quad.lowerLeft;
        const QPointF along = quad.lowerRight - quad.lowerLeft;
        const double height = std::hypot(up.x(), up.y());
        const double length = std::hypot(along.x(), along.y());
        if (!(height > 0 && length > 0))
            continue;
        Part part;
        part.stroke = visible(values.color);
        part.lineWidth = std::max(0.5, squiggleThickness * height);
        const int count = int(std::clamp(length / std::max(1.0, squiggleHeight * height), 1.0, double(mostSquiggles)));
        part.path.moveTo(quad.lowerLeft);
        for (int i = 1; i <= count; ++i)
            part.path.lineTo(quad.lowerLeft + along * i / count + (i % 2 == 0 ? QPointF() : up * squiggleHeight));
        drawing.parts.push_back(part);
    }
}

void addSquare(AnnotationDrawing& drawing, const Values& values) {
    QPainterPath path;
    path.addRect(strokeBox(values));
    Part part = strokedPart(values, values.cloudiness > 0 ? cloudIn(values, false) : path);
    part.fill = visible(values.interiorColor);
    part.join = Qt::RoundJoin;
    drawing.parts.push_back(part);
}

void addCircle(AnnotationDrawing& drawing, const Values& values) {
    QPainterPath path;
    path.addEllipse(strokeBox(values));
    Part part = strokedPart(values, values.cloudiness > 0 ? cloudIn(values, true) : path);
    part.fill = visible(values.interiorColor);
    if (values.cloudiness > 0)
        part.join = Qt::RoundJoin;
    drawing.parts.push_back(part);
}

void addLine(AnnotationDrawing& drawing, const Values& values) {
    const DimensionLine::Run place = DimensionLine::runOf(values.line);
    const QPointF run = place.end - place.start;
    drawing.label = DimensionLine::caption(values);
    QPainterPath path(place.start);
    if (run.isNull())
        addDot(path, place.start);
    else
        path = DimensionLine::path(place, values.line, drawing.label);
    Part segment = strokedPart(values, path);
    segment.cap = Qt::RoundCap;
    drawing.parts.push_back(segment);
    if (const QPainterPath leaders = DimensionLine::leaders(values.line); !leaders.isEmpty())
        drawing.parts.push_back(strokedPart(values, leaders));

    if (run.isNull() || !segment.stroke)
        return;
    const double heading = std::atan2(run.y(), run.x());
    drawing.parts.push_back(
        LineEnding::part(values.line.endStyle, place.end, heading, segment.lineWidth, *segment.stroke));
    drawing.parts.push_back(LineEnding::part(values.line.startStyle, place.start, heading + std::numbers::pi,
                                             segment.lineWidth, *segment.stroke));
}

/// The vertices in page coordinates; none for fewer than two.
QPainterPath outlineOf(const Values& values) {
    QPainterPath path;
    if (values.vertices.size() > 1)
        path.addPolygon(values.vertices.translated(values.bounds.topLeft()));
    path.setFillRule(Qt::WindingFill);
    return path;
}

void addPolygon(AnnotationDrawing& drawing, const Values& values) {
    QPainterPath path = outlineOf(values);
    path.closeSubpath();
    QPolygonF corners = values.vertices.translated(values.bounds.topLeft());
    if (corners.size() > 1 && corners.isClosed())
        corners.removeLast();
    const bool isCloud = values.cloudiness > 0 && corners.size() > 2;
    Part part = strokedPart(values, isCloud ? CloudPath::around(corners, CloudPath::reach(values.cloudiness)) : path);
    part.fill = visible(values.interiorColor);
    if (isCloud)
        part.join = Qt::RoundJoin;
    drawing.parts.push_back(part);
}

/// The interior colour is that of the ends of the line.
void addPolyLine(AnnotationDrawing& drawing, const Values& values) {
    const QPainterPath path = outlineOf(values);
    const Part line = strokedPart(values, path);
    drawing.parts.push_back(line);
    if (!line.stroke || path.isEmpty())
        return;
    const auto addEnd = [&](PDFLineStyle style, qsizetype at, qsizetype from) {
        const QPointF end = values.vertices[at] + values.bounds.topLeft();
        const QPointF run = values.vertices[at] - values.vertices[from];
        if (style == PDFLineStyle::none || run.isNull())
            return;
        Part part = LineEnding::part(style, end, std::atan2(run.y(), run.x()), line.lineWidth, *line.stroke);
        part.stroke = line.stroke;
        part.fill = style == PDFLineStyle::openArrow ? std::nullopt : visible(values.interiorColor);
        drawing.parts.push_back(part);
    };
    const qsizetype last = values.vertices.size() - 1;
    addEnd(values.line.startStyle, 0, 1);
    addEnd(values.line.endStyle, last, last - 1);
}

void addInk(AnnotationDrawing& drawing, const Values& values) {
    const QPointF origin = values.bounds.topLeft();
    QPainterPath strokes;
    for (const QPainterPath& path : values.paths) {
        if (path.elementCount() == 1)
            addDot(strokes, origin + QPointF(path.elementAt(0)));
        else
            strokes.addPath(path.translated(origin));
    }
    Part part = strokedPart(values, strokes);
    part.cap = Qt::RoundCap;
    part.join = Qt::RoundJoin;
    drawing.parts.push_back(part);
}

/// The background and the border of free text.
void addBox(AnnotationDrawing& drawing, const Values& values, const std::optional<QColor>& background,
            const std::optional<QColor>& line) {
    if (background) {
        Part fill;
        fill.path.addRect(values.bounds);
        fill.fill = background;
        drawing.parts.push_back(fill);
    }
    QPainterPath edge;
    if (values.border && values.border->style == PDFBorderStyle::underline) {
        edge.moveTo(strokeBox(values).topLeft());
        edge.lineTo(strokeBox(values).topRight());
    } else {
        edge.addRect(strokeBox(values));
    }
    Part border = strokedPart(values, edge);
    if (border.lineWidth > 0)
        border.stroke = line;
    drawing.parts.push_back(border);
}

/// The line from what the words are about to their box.
void addCallout(AnnotationDrawing& drawing, const Values& values, const QColor& color) {
    const QPolygonF points = values.callout.translated(values.bounds.topLeft());
    QPainterPath path;
    path.addPolygon(points);
    Part line = strokedPart(values, path);
    if (!(line.lineWidth > 0))
        return;
    line.stroke = color;
    drawing.parts.push_back(line);
    const QPointF run = points[0] - points[1];
    if (!run.isNull())
        drawing.parts.push_back(
            LineEnding::part(values.line.startStyle, points[0], std::atan2(run.y(), run.x()), line.lineWidth, color));
}

void addFreeText(AnnotationDrawing& drawing, const Values& values) {
    const QColor color = values.text.color.value_or(QColor(Qt::black));
    Values words = values;
    words.bounds = innerBox(values);
    if (values.border || !values.callout.isEmpty())
        addBox(drawing, words, visible(values.color), color);
    if (!values.callout.isEmpty())
        addCallout(drawing, values, color);
    AnnotationDrawing::Label label;
    label.box = words.bounds.adjusted(6, 4, -6, -4);
    label.text = values.contents;
    label.font = values.text.font.value_or(QFont(QStringLiteral("Helvetica"), 16));
    label.color = color;
    label.multiline = true;
    drawing.label = label;
}

} // namespace

AnnotationDrawing::Part LineEnding::part(PDFLineStyle style, QPointF at, double heading, double lineWidth,
                                         const QColor& color) {
    const double size = std::max(3.4 * lineWidth, 8.0);
    AnnotationDrawing::Part part;
    part.lineWidth = lineWidth;
    part.cap = Qt::RoundCap;
    part.stroke = color;
    const auto square = [at](double radius) {
        return QRectF(at.x() - radius, at.y() - radius, 2 * radius, 2 * radius);
    };
    const auto barb = [&](double angle) {
        return at - size * QPointF(std::cos(heading + angle), std::sin(heading + angle));
    };
    constexpr double halfAngle = std::numbers::pi / 7;
    switch (style) {
    case PDFLineStyle::none:
        part.stroke.reset();
        break;
    case PDFLineStyle::square:
        part.path.addRect(square(size / 2.6));
        break;
    case PDFLineStyle::circle:
        part.path.addEllipse(square(size / 2.6));
        break;
    case PDFLineStyle::diamond: {
        const double radius = size / 2.2;
        part.path.addPolygon(QPolygonF(
            {at + QPointF(0, radius), at + QPointF(radius, 0), at - QPointF(0, radius), at - QPointF(radius, 0)}));
        part.path.closeSubpath();
        break;
    }
    case PDFLineStyle::openArrow:
        part.path.addPolygon(QPolygonF({barb(-halfAngle), at, barb(halfAngle)}));
        break;
    case PDFLineStyle::closedArrow:
        part.path.addPolygon(QPolygonF({at, barb(-halfAngle), barb(halfAngle)}));
        part.path.closeSubpath();
        part.path.setFillRule(Qt::WindingFill);
        part.stroke.reset();
        part.fill = color;
        break;
    }
    return part;
}

QRectF AnnotationDrawing::extent() const {
    QRectF box;
    const auto unite = [&box](const QRectF& more) {
        // QRectF::united drops rectangles without an area, which straight lines have.
        if (box.isNull()) {
            box = more;
            return;
        }
        const double left = std::min(box.left(), more.left());
        const double low = std::min(box.top(), more.top());
        box =
            QRectF(left, low, std::max(box.right(), more.right()) - left, std::max(box.bottom(), more.bottom()) - low);
    };
    for (const Part& part : parts) {
        if (part.path.isEmpty() || !(part.fill || part.stroke))
            continue;
        if (part.fill)
            unite(part.path.boundingRect());
        if (!part.stroke)
            continue;
        QPainterPathStroker stroker;
        stroker.setWidth(part.lineWidth);
        stroker.setCapStyle(part.cap);
        stroker.setJoinStyle(part.join);
        unite(stroker.createStroke(part.path).boundingRect());
    }
    if (label)
        unite(label->toPage.mapRect(label->box));
    return box;
}

bool AnnotationDrawing::isAt(QPointF point, double reach) const {
    return std::any_of(parts.begin(), parts.end(), [&](const Part& part) {
        if (part.fill && part.path.contains(point))
            return true;
        if (!part.stroke)
            return false;
        QPainterPathStroker stroker;
        stroker.setWidth(std::max(part.lineWidth, 2 * reach));
        return stroker.createStroke(part.path).contains(point);
    });
}

std::optional<AnnotationDrawing> AnnotationDrawing::of(const Values& values) {
    namespace Subtype = PDFAnnotationSubtype;
    AnnotationDrawing drawing;
    if (values.type == Subtype::highlight)
        addHighlight(drawing, values);
    else if (values.type == Subtype::underline)
        addTextLines(drawing, values, underlineHeight);
    else if (values.type == Subtype::strikeOut)
        addTextLines(drawing, values, strikeOutHeight);
    else if (values.type == Subtype::squiggly)
        addSquiggles(drawing, values);
    else if (values.type == Subtype::polygon)
        addPolygon(drawing, values);
    else if (values.type == Subtype::polyLine)
        addPolyLine(drawing, values);
    else if (values.type == Subtype::square)
        addSquare(drawing, values);
    else if (values.type == Subtype::circle)
        addCircle(drawing, values);
    else if (values.type == Subtype::line)
        addLine(drawing, values);
    else if (values.type == Subtype::ink)
        addInk(drawing, values);
    else if (values.type == Subtype::freeText)
        addFreeText(drawing, values);
    else
        return values.type == Subtype::widget ? FieldDrawing::of(values) : std::nullopt;
    return drawing;
}
