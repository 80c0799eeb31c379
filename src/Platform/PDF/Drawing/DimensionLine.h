#pragma once

#include "AnnotationDrawing.h"

/// A line that stands beside the points that it measures, with leaders to them and words on it.
namespace DimensionLine {

/// Where the line itself runs.
struct Run {
    QPointF start;
    QPointF end;
};
[[nodiscard]] Run runOf(const PDFLineData& line);

/// From the points to the line and past it; empty for a line that has none.
[[nodiscard]] QPainterPath leaders(const PDFLineData& line);

/// The words on the line; none when it has none.
[[nodiscard]] std::optional<AnnotationDrawing::Label> caption(const PDFAnnotationValues& values);

/// The line itself, with a gap for a caption that stands in it.
[[nodiscard]] QPainterPath path(const Run& run, const PDFLineData& line,
                                const std::optional<AnnotationDrawing::Label>& caption);

} // namespace DimensionLine
