#pragma once

#include <QPointF>

class QColor;
class QPainter;

/// The horizontal lines of formulas.
namespace MTRule {

enum class Ends {
    flat,
    round, ///< half circles that stand out by half of the thickness
};

/// A line from `start`, in the middle of its thickness, over `length` to the right. The units are the painter's.
void draw(QPainter& painter, QPointF start, double length, double thickness, const QColor& color,
          Ends ends = Ends::flat);

} // namespace MTRule
