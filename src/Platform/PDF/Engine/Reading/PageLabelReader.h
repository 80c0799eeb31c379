#pragma once

#include "PageLabels.h"

class SourceEngine;

/// Reads what a file calls its pages. Any thread.
namespace PageLabelReader {

/// Empty for a file without labels. Of a broken tree, what can be found of it.
[[nodiscard]] PageLabels read(SourceEngine& engine);

} // namespace PageLabelReader
