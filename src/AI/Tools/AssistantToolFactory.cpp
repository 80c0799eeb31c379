#include "AssistantToolFactory.h"

#include "PDFTools.h"
#include "TextOnlyTools.h"

std::vector<AssistantTool> AssistantToolFactory::makeTools(const AssistantSource& source) {
    if (const auto* const pdf = std::get_if<AssistantContext>(&source))
        return PDFTools::make(*pdf);
    return TextOnlyTools::make(std::get<TextOnlyAssistantContext>(source));
}
