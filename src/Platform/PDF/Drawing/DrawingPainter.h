#pragma once

class QPainter;
struct AnnotationDrawing;

/// Shows the drawings of plain annotations on the screen and wherever else Qt paints.
namespace DrawingPainter {

/// Into a painter set to page coordinates (y up), whose state is left as it was.
void paint(const AnnotationDrawing& drawing, QPainter& painter);

} // namespace DrawingPainter
