#include "DrawingPainter.h"

#include "AnnotationDrawing.h"
#include "PageTextPainting.h"
#include "PathCulling.h"

#include <QPainter>
#include <QPen>

namespace {

void paintPart(const AnnotationDrawing::Part& part, QPainter& painter) {
    if (part.fill)
        painter.fillPath(part.path, *part.fill);
    if (!part.stroke)
        return;
    QPen pen(*part.stroke, part.lineWidth, Qt::SolidLine, part.cap, part.join);
    if (!part.dashes.empty() && part.lineWidth > 0) {
        // Qt measures dashes in widths of the line and wants a gap after each.
        QList<qreal> pattern;
        for (const double length : part.dashes)
            pattern.append(length / part.lineWidth);
        if (pattern.size() % 2 != 0)
            pattern += QList<qreal>(pattern);
        pen.setDashPattern(pattern);
    }
    constexpr int longPath = 200; // elements
    if (painter.hasClipping() && part.dashes.empty() && part.path.elementCount() > longPath)
        painter.strokePath(PathCulling::strokeWithin(part.path, painter.clipBoundingRect(), part.lineWidth), pen);
    else
        painter.strokePath(part.path, pen);
}

void paintLabel(const AnnotationDrawing::Label& label, QPainter& painter) {
    const auto draw = label.multiline ? PageTextPainting::drawWrapped : PageTextPainting::drawLine;
    painter.save();
    painter.setTransform(label.toPage, true);
    draw(painter, label.text, label.box, label.font, label.color);
    painter.restore();
}

void paintText(const AnnotationDrawing::SetText& text, QPainter& painter) {
    painter.setTransform(text.toPage, true);
    painter.setClipRect(text.clip, Qt::IntersectClip);
    QFont font = text.font;
    font.setPointSizeF(text.layout.size);
    for (const FieldText::Line& line : text.layout.lines)
        if (!line.text.isEmpty())
            PageTextPainting::drawAt(painter, line.text, line.at, font, text.color);
}

} // namespace

void DrawingPainter::paint(const AnnotationDrawing& drawing, QPainter& painter) {
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    if (drawing.multiplies)
        painter.setCompositionMode(QPainter::CompositionMode_Multiply);
    for (const AnnotationDrawing::Part& part : drawing.parts)
        paintPart(part, painter);
    if (drawing.label)
        paintLabel(*drawing.label, painter);
    if (drawing.text)
        paintText(*drawing.text, painter);
    painter.restore();
}
