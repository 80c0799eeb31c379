#pragma once

class QString;
class QTextDocument;

/// Keeps one wide formula from making a whole reply scroll sideways. Main thread only.
namespace FormulaFitting {

/// Shows every image that is wider than the lines of its block as much smaller as it takes, down to the half, and any
/// other in its own size. Of one that is wider still, a part is shown, with a bar that tells which. `width` is that of
/// the document in pixels.
void fit(QTextDocument& document, double width);

/// Shows what lies `way` pixels further to the right in the image that the document calls `name`. False when that is
/// shown as a whole, or ends there; what shows the document is to be painted again otherwise.
bool scroll(QTextDocument& document, const QString& name, double way);

} // namespace FormulaFitting
