#include "FormulaDialect.h"

#include "FormulaRewriter.h"

#include <exception>

std::optional<QString> FormulaDialect::rewritten(QStringView latex) {
    if (latex.size() > longestFormula)
        return std::nullopt;
    try {
        return FormulaRewriter(latex).rewritten();
    } catch (const std::exception&) {
        return std::nullopt; // no font, so nothing that could be shown
    }
}
