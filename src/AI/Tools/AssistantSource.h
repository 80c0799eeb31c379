#pragma once

#include <QPointer>
#include <QString>
#include <QUrl>

#include <memory>
#include <variant>

class PDFDocument;
class PDFViewCoordinator;

/// What the assistant of a PDF window works on.
struct AssistantContext {
    std::shared_ptr<PDFDocument> pdfDocument; ///< not null
    QPointer<PDFViewCoordinator> coordinator; ///< the window's; null once that is gone
    QUrl fileURL;                             ///< empty for a document that has not been saved
};

/// What the assistant of a previewed file works on: there are no pages, only the text that was found in it.
struct TextOnlyAssistantContext {
    QUrl fileURL;
    QString extractedText;
};

/// What a conversation is about.
using AssistantSource = std::variant<AssistantContext, TextOnlyAssistantContext>;

/// Empty for a document that has not been saved.
[[nodiscard]] QUrl fileURL(const AssistantSource& source);
