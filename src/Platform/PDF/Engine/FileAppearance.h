#pragma once

class PDFAnnotation;
class QPainter;

/// Draws the appearance that an annotation has in the file it came from, moved and scaled to its present bounds, into a
/// painter set to page coordinates (y up). Draws nothing for an annotation without an origin or an appearance.
void drawFileAppearance(const PDFAnnotation& annotation, QPainter& painter);
