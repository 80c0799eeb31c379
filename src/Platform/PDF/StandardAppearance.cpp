#include "Engine/FileAppearance.h"
#include "NoteIcon.h"
#include "PDFAnnotation.h"
#include "PageTextPainting.h"
#include "PathCulling.h"
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
    constexpr int longPath = 200; // elements
    if (painter.hasClipping() && part.dashes.empty() && part.path.elementCount() > longPath)
        painter.strokePath(PathCulling::strokeWithin(part.path, painter.clipBoundingRect(), part.lineWidth), pen);
    else
        painter.strokePath(part.path, pen);
}

void paint(const AnnotationDrawing::Label& label, QPainter& painter) {
    const auto draw = label.multiline ? PageTextPainting::drawWrapped : PageTextPainting::drawLine;
    draw(painter, label.text, label.box, label.font, label.color);
}

void paint(const AnnotationDrawing::SetText& text, QPainter& painter) {
    painter.setTransform(text.toPage, true);
    painter.setClipRect(text.clip, Qt::IntersectClip);
    QFont font = text.font;
    font.setPointSizeF(text.layout.size);
    for (const FieldText::Line& line : text.layout.lines)
        if (!line.text.isEmpty())
            PageTextPainting::drawAt(painter, line.text, line.at, font, text.color);
}

} // namespace

void PDFAnnotation::draw(PDFDisplayBox /*box*/, QPainter& painter) const {
    if (drawFileState(*this, painter))
        return;
    // Breaking a field's text into lines takes far longer than drawing them.
    std::shared_ptr<const AnnotationDrawing> drawing = m_fieldDrawing;
    if (!drawing)
        if (auto made = AnnotationDrawing::of(m_values))
            drawing = std::make_shared<const AnnotationDrawing>(std::move(*made));
    if (type() == PDFAnnotationSubtype::widget)
        m_fieldDrawing = drawing;
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
    if (drawing->text)
        paint(*drawing->text, painter);
    painter.restore();
}
