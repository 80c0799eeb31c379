#pragma once

#include "PDFBorder.h"

#include <QColor>
#include <QRectF>

#include <optional>
#include <vector>

struct AnnotationDrawing;

/// The background and the border of a form field, as the screen and the writer of files draw them.
struct FieldFrame {
    QSizeF box; ///< of the widget, before turning; points
    std::optional<QColor> background;
    std::optional<QColor> edge;
    PDFBorder border;
    int cells = 0;        ///< of a comb, divided by lines of the border
    bool isRound = false; ///< of a radio button

    /// What the border takes at each side; a raised or sunken one is twice as wide as its lines.
    [[nodiscard]] double thickness() const;

    /// Adds its parts; the origin is the lower left corner of the box.
    void addTo(AnnotationDrawing& drawing) const;

    /// The background that a list box gives to chosen rows.
    [[nodiscard]] static QColor highlight() { return {153, 193, 218}; }

private:
    void addRelief(AnnotationDrawing& drawing) const;
};

/// Adds the mark of a button that is on: `mark` is the character of ZapfDingbats that a file asks for ("4" a check, "8"
/// a cross, "l" a disc, "u" a diamond, "n" a square, "H" a star).
void addFieldMark(AnnotationDrawing& drawing, QChar mark, const QRectF& box, const QColor& color);
