#pragma once

#include "FieldText.h"
#include "PDFAnnotationValues.h"

#include <QTransform>

/// How a plain standard annotation looks, in page coordinates. The screen paints it and the writer turns it into an
/// appearance stream, so that a saved file looks as it did before.
struct AnnotationDrawing {
    struct Part {
        QPainterPath path;
        std::optional<QColor> fill;
        std::optional<QColor> stroke;
        double lineWidth = 1; ///< points
        Qt::PenCapStyle cap = Qt::FlatCap;
        Qt::PenJoinStyle join = Qt::MiterJoin;
        std::vector<double> dashes; ///< points; empty for a line without gaps
    };
    struct Label {
        QRectF box;
        QString text;
        QFont font; ///< size in points
        QColor color;
        bool multiline = false; ///< wrapped and at the top, instead of one line halfway up
        QTransform toPage;      ///< from the coordinates of `box`
    };

    /// The text of a form field, set line by line.
    struct SetText {
        FieldText::Layout layout; ///< in the field's box
        QFont font;               ///< its size is that of the layout
        QColor color;
        QRectF clip;       ///< in the field's box
        QTransform toPage; ///< from the field's box
    };

    std::vector<Part> parts; ///< lowest first
    std::optional<Label> label;
    std::optional<SetText> text;
    bool multiplies = false; ///< darkens what lies below, as a marker pen does

    /// The smallest rectangle around all that is painted, the width of lines included; empty when nothing is.
    [[nodiscard]] QRectF extent() const;

    /// True for a point on a line, give or take `reach`, or in a filled area.
    [[nodiscard]] bool isAt(QPointF point, double reach) const;

    /// None for a subtype that has no drawing of this program.
    [[nodiscard]] static std::optional<AnnotationDrawing> of(const PDFAnnotationValues& values);
};

/// The decoration at an end of a line.
namespace LineEnding {

/// `at` is the line's end and `heading` the direction, in radians, in which the line arrives there.
[[nodiscard]] AnnotationDrawing::Part part(PDFLineStyle style, QPointF at, double heading, double lineWidth,
                                           const QColor& color);

} // namespace LineEnding
