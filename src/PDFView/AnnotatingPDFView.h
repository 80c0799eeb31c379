#pragma once

#include "PDFView.h"

#include <functional>
#include <memory>

class QMenu;
class ToolState;
class UndoManager;

/// The viewer of a document window: shows the document and turns what the user does on the page into annotations, by
/// the window's `ToolState`. Main thread only.
class AnnotatingPDFView : public PDFView {
    Q_OBJECT

public:
    explicit AnnotatingPDFView(QWidget* parent = nullptr);
    ~AnnotatingPDFView() override;

    /// Null until the window has set it; the viewer is a plain reader then.
    [[nodiscard]] const std::shared_ptr<ToolState>& toolState() const { return m_toolState; }
    void setToolState(const std::shared_ptr<ToolState>& toolState);

    /// The document's. While it is null, everything works and nothing can be undone.
    [[nodiscard]] const std::shared_ptr<UndoManager>& docUndoManager() const { return m_docUndoManager; }
    void setDocUndoManager(const std::shared_ptr<UndoManager>& undoManager);

    /// Gets a prompt for the assistant, and whether to send it at once.
    std::function<void(const QString& prompt, bool send)> onAskAI;
    /// Gets the text that was recognized on a page, or a sentence that there is none.
    std::function<void(const QString& text)> onTextExtracted;
    /// Called when a redaction marker has been drawn.
    std::function<void()> onRedactionDrawn;

    /// Covers the selected text with annotations of a markup subtype ("Highlight") in the tool state's colour, one for
    /// each line on the page of that line, and clears the selection. False when no text is selected. Needs a tool
    /// state.
    bool applyMarkup(const QString& subtype);

    /// Gives the pointer the shape that belongs to the present tool.
    void refreshToolCursor();

protected:
    /// While text is selected: what can be done with it, wherever the click was. Otherwise the base class's menu.
    [[nodiscard]] std::unique_ptr<QMenu> menu(QPointF viewPoint) override;
    /// Keeps the background the program's tint when the desktop changes between light and dark.
    void changeEvent(QEvent* event) override;

private:
    [[nodiscard]] bool hasSelectedText() const;
    [[nodiscard]] std::unique_ptr<QMenu> buildSelectionMenu();

    std::shared_ptr<ToolState> m_toolState;
    std::shared_ptr<UndoManager> m_docUndoManager;
};
