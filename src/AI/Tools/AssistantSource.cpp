#include "AssistantSource.h"

#include "PDFViewCoordinator.h"

QUrl fileURL(const AssistantSource& source) {
    return std::visit([](const auto& context) { return context.fileURL; }, source);
}
