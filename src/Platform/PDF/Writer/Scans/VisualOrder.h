#pragma once

#include <vector>

/// Where the characters of a line stand that has words from the right to the left.
namespace VisualOrder {

/// The places of the characters as they stand from the left to the right: those that come first as one reads stand on
/// the right in a line of Hebrew or Arabic, but for numbers and foreign words. The Unicode bidirectional algorithm
/// (UAX #9) without embeddings. Empty for a line that only runs from the left to the right.
[[nodiscard]] std::vector<int> of(const std::vector<char32_t>& line);

} // namespace VisualOrder
