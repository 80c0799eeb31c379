#pragma once

#include "MathSegment.h"

#include <QStringView>

#include <optional>
#include <vector>

/// Finds the formulas of a text. Linear in its length. Any thread.
///
/// Inline formulas stand between "$" and "$" or "\(" and "\)", display formulas between "$$" and "$$" or "\[" and "\]".
/// There is no escape and no rule for money: "$5 and $10" holds the formula "5 and ". A lone "$" and an unclosed "\("
/// or
/// "\[" are words; an unclosed "$$" is an empty inline formula. Nothing nests, nothing is trimmed.
namespace MathSegmentSplitter {

[[nodiscard]] std::vector<MathSegment> split(QStringView text);

/// The formula of a text that is one display formula with nothing but white space around it.
[[nodiscard]] std::optional<QString> soleDisplayEquation(QStringView text);

} // namespace MathSegmentSplitter
