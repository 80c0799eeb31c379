#pragma once

#include "PDFAnnotationValues.h"

class QPainter;

/// The sign of a Text annotation, whose look the file leaves to the reader: a sheet with lines of writing, in the
/// colour of the annotation.
namespace NoteIcon {

/// Into a painter set to page coordinates (y up), at the upper left of the annotation's bounds, at most 20 points wide.
void draw(const PDFAnnotationValues& values, QPainter& painter);

} // namespace NoteIcon
