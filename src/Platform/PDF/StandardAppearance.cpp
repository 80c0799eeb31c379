#include "Engine/FileAppearance.h"
#include "NoteIcon.h"
#include "PDFAnnotation.h"
#include "Writer/AnnotationDrawing.h"

#include <QPainter>
#include <QPen>

namespace {

void paint(const AnnotationDrawing::Part& part, QPainter& painter) {
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
    painter.strokePath(part.path, pen);
}

void paint(const AnnotationDrawing::Label& label, QPainter& painter) {
    if (label.text.isEmpty() || !label.box.isValid())
        return;
    QFont font = label.font;
    // A point is one unit of the page here, whatever the device's resolution.
    const double size = font.pointSizeF() > 0 ? font.pointSizeF() : font.pixelSize();
    font.setPointSizeF(size * 72.0 / painter.device()->logicalDpiY());
    painter.translate(label.box.left(), label.box.bottom());
    painter.scale(1, -1);
    const QRectF box(QPointF(), label.box.size());
    painter.setClipRect(box, Qt::IntersectClip);
    painter.setFont(font);
    painter.setPen(label.color);
    const int flags = label.multiline ? int(Qt::AlignLeft | Qt::AlignTop | Qt::TextWordWrap)
                                      : int(Qt::AlignLeft | Qt::AlignVCenter | Qt::TextSingleLine);
    painter.drawText(box, flags, label.text);
}

} // namespace

void PDFAnnotation::draw(PDFDisplayBox /*box*/, QPainter& painter) const {
    const std::optional<AnnotationDrawing> drawing = AnnotationDrawing::of(m_values);
    if (!drawing) {
        if (type() == PDFAnnotationSubtype::text)
            NoteIcon::draw(m_values, painter);
        else if (m_origin)
            drawFileAppearance(*this, painter);
        return;
    }
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    if (drawing->multiplies)
        painter.setCompositionMode(QPainter::CompositionMode_Multiply);
    for (const AnnotationDrawing::Part& part : drawing->parts)
        paint(part, painter);
    if (drawing->label)
        paint(*drawing->label, painter);
    painter.restore();
}
