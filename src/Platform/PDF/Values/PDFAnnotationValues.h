#pragma once

#include "PDFAnnotationFrame.h"
#include "PDFBorder.h"
#include "PDFFieldData.h"
#include "PDFLineData.h"
#include "PDFLinkData.h"
#include "PDFTextStyle.h"
#include "PDFTypes.h"

#include <QColor>
#include <QDateTime>
#include <QMarginsF>
#include <QPainterPath>
#include <QPolygonF>
#include <QString>

#include <optional>
#include <vector>

/// All that a dictionary of a standard annotation says; the form in which readers and writers pass it on.
struct PDFAnnotationValues {
    QString type; ///< one of `PDFAnnotationSubtype`, or another that a file has
    QRectF bounds;
    /// Where `PDFAnnotationFrame::suits`: that of the page on which it was placed first, or of its look in the file.
    std::optional<PDFAnnotationFrame> frame;
    int flags = 4; ///< Print
    std::optional<QColor> color;
    std::optional<QColor> interiorColor;
    std::optional<PDFBorder> border;
    double defaultLineWidth = 1; ///< points, of lines where there is no border; files mean 1 by saying nothing
    QString contents;
    QString userName;
    QDateTime modificationDate;
    QDateTime creationDate;       ///< invalid where a file doesn't say
    std::optional<int> repliesTo; ///< the place, in the list of its page in the file, of the one that it answers
    bool hasAppearance = false;   ///< the file gives a look that the engine draws

    // Each of these belongs to some subtypes alone.

    PDFTextStyle text;
    PDFLineData line;
    QPolygonF vertices;              ///< of polygons and polylines, relative as the strokes are
    QMarginsF margins;               ///< from the bounds to the shape or the words: left, upper, right, lower edge
    double cloudiness = 0;           ///< how much the border of a shape is made of arcs; usually 1 or 2
    QPolygonF callout;               ///< from what a free text is about to its words, relative as the strokes are
    std::vector<QPainterPath> paths; ///< the strokes of ink, relative to the lower left corner of `bounds`
    std::vector<PDFQuad> quads;      ///< of text markup; none for one that is `bounds`
    PDFLinkData link;
    PDFFieldData field;
};
