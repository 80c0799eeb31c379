#pragma once

class PDFAnnotation;
class QPainter;

/// Draws the appearance that an annotation has in the file it came from, moved and scaled to its present bounds, into a
/// painter set to page coordinates (y up). Draws nothing for an annotation without an origin or an appearance.
void drawFileAppearance(const PDFAnnotation& annotation, QPainter& painter);

/// Draws the appearance that a check box or radio button of a file has there for the state that it is in now. False
/// when the file gives its buttons no such looks, or none for being on; one that the file doesn't show when it is off
/// draws nothing and counts as drawn.
bool drawFileState(const PDFAnnotation& annotation, QPainter& painter);
