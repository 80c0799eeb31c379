#pragma once

#include "PDFTypes.h"

#include <QPointF>

/// What is special to a Line annotation. Page coordinates.
struct PDFLineData {
    QPointF startPoint;
    QPointF endPoint;
    PDFLineStyle startStyle = PDFLineStyle::none;
    PDFLineStyle endStyle = PDFLineStyle::none;

    // Of a dimension line, which stands beside the points that it measures. Its words are those of the annotation.

    double leaderLength = 0;    ///< from the points to the line, anticlockwise from its direction where positive
    double leaderExtension = 0; ///< of the leaders past the line
    double leaderOffset = 0;    ///< between the points and their leaders
    bool hasCaption = false;
    bool captionIsAbove = false; ///< and not in a gap of the line
};
