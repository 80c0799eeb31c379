#pragma once

#include <QString>
#include <QUrl>

#include <functional>
#include <memory>

class AnnotatingPDFView;
class PDFDocument;
class PDFViewCoordinator;
class QWidget;
class ToolState;
class UndoManager;

/// What a window wants its viewer to show and to do: a value that makes the viewer.
struct PDFKitRepresentedView {
    std::shared_ptr<ToolState> toolState;
    std::shared_ptr<PDFDocument> pdfDocument;
    PDFViewCoordinator* coordinator = nullptr; ///< must outlive the calls
    QUrl fileURL;                              ///< empty for a document that has not been saved
    /// A prompt for the assistant, and whether to send it at once.
    std::function<void(const QString& prompt, bool send)> onAskAI;
    std::function<void(const QString& text)> onTextExtracted;
    std::function<void()> onRedactionDrawn;
    std::shared_ptr<UndoManager> undoManager;

    /// Makes the viewer as a child of `parent`, attaches it to the coordinator, and lets it show the page that was last
    /// shown of the file as soon as control is back in the event loop.
    AnnotatingPDFView* makeView(QWidget* parent) const;
};
