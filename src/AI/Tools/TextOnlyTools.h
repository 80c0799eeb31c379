#pragma once

#include "AssistantSource.h"
#include "AssistantTool.h"

#include <vector>

/// The tools for a file of which only the text is known.
namespace TextOnlyTools {

[[nodiscard]] std::vector<AssistantTool> make(const TextOnlyAssistantContext& context);

} // namespace TextOnlyTools
