#pragma once

#include "PageFields.h"

#include <QColor>

class QPainter;
class QTransform;

/// What a screen shows of form fields beyond the looks that the file gives them. Nothing of this is printed or saved.
namespace FormPainting {

/// A tint on what can be filled, and a border around what must be filled and isn't. Leaves out what lies outside of
/// `exposed` (view points).
void paintFields(QPainter& painter, const std::vector<PageFields::Entry>& fields, const QTransform& pageToView,
                 const QRectF& exposed);

/// The part of a combo box at its right that is its mark's (view points).
[[nodiscard]] QRectF arrowArea(const QRectF& field);

/// The mark of a combo box at the right of its rectangle (view points).
void paintArrow(QPainter& painter, const QRectF& field);

/// Around a field that has the keyboard (view points).
void paintRing(QPainter& painter, const QRectF& field, const QColor& color);

/// The rectangle (view points) around all that is painted for a field.
[[nodiscard]] QRectF paintedRect(const QRectF& field);

} // namespace FormPainting
