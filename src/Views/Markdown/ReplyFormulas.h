#pragma once

#include "MathImageSource.h"

class QWidget;

/// The formulas of a reply that `widget` shows.
namespace ReplyFormulas {

/// Images as sharp as the screen that the widget is on, whose letters stand on the baseline of the widget's text when
/// they are put into the middle of a line, as text documents do. `widget` must outlive the source.
[[nodiscard]] MathImageSource source(const QWidget& widget);

} // namespace ReplyFormulas
