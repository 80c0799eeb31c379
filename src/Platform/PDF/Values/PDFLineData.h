#pragma once

#include "PDFTypes.h"

#include <QPointF>

/// What is special to a Line annotation. Page coordinates.
struct PDFLineData {
    QPointF startPoint;
    QPointF endPoint;
    PDFLineStyle startStyle = PDFLineStyle::none;
    PDFLineStyle endStyle = PDFLineStyle::none;
};
