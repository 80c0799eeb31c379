#pragma once

#include "AssistantSource.h"
#include "AssistantTool.h"

#include <vector>

/// The tools for an open PDF. Main thread only.
namespace PDFTools {

[[nodiscard]] std::vector<AssistantTool> make(const AssistantContext& context);

} // namespace PDFTools
