#pragma once

class QTextDocument;

/// Keeps one wide formula from making a whole reply scroll sideways.
namespace FormulaFitting {

/// Shows every image that is wider than the lines of its block as much smaller as it takes, down to the half, and any
/// other in its own size. `width` is that of the document in pixels.
void fit(QTextDocument& document, double width);

} // namespace FormulaFitting
