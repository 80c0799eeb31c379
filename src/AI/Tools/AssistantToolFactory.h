#pragma once

#include "AssistantSource.h"
#include "AssistantTool.h"

#include <vector>

/// Makes the tools with which the model reads a document, moves its viewer and adds notes. Main thread only.
namespace AssistantToolFactory {

/// The tools for the source, in the order in which the model is told of them. Those for a PDF look at the document as
/// it is at each call.
[[nodiscard]] std::vector<AssistantTool> makeTools(const AssistantSource& source);

} // namespace AssistantToolFactory
