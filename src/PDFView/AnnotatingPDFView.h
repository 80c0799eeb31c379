#pragma once

#include "AnnotationTool.h"
#include "PDFView.h"

#include <functional>
#include <memory>
#include <optional>
#include <stop_token>

class Eraser;
class EraserCursorOverlay;
class NoteAnnotation;
class NoteDrag;
class NoteEditor;
class PageTextEditor;
class QMenu;
class QTabletEvent;
class ShapeGesture;
class SignaturePlacement;
class TextBoxEditor;
class ToolState;
class UndoManager;

/// The viewer of a document window: shows the document and turns what the user does on the page into annotations, by
/// the window's `ToolState`, which is asked at each event. Main thread only.
///
/// The eraser end of a pen erases whatever the tool is. Escape gives up what is being drawn or moved, and goes back to
/// the select tool.
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

    /// Gets a prompt for the assistant, and whether to send it at once. The menus offer what needs it only while it is
    /// set.
    std::function<void(const QString& prompt, bool send)> onAskAI;
    /// Gets the text that was recognized on a page, or a sentence that there is none.
    std::function<void(const QString& text)> onTextExtracted;
    /// Called when a redaction marker has been drawn.
    std::function<void()> onRedactionDrawn;

    /// Covers the selected text with annotations of a markup subtype ("Highlight") in the tool state's colour, one for
    /// each line on the page of that line, and clears the selection. False when no text is selected. Needs a tool
    /// state.
    bool applyMarkup(const QString& subtype);

    /// Puts a note with that text into the upper right corner of the page, in the tool state's colour. Needs a tool
    /// state.
    void addProgrammaticNote(const QString& text, const std::shared_ptr<PDFPage>& page);

    /// Gives the pointer the shape that belongs to the present tool.
    void refreshToolCursor();

    /// Takes over what stands in an open text editor and what is half drawn.
    void commitEditors();
    /// The same before the document is saved, which mustn't get in the way of a person who is filling a form: a field
    /// that is typed in stays open.
    void applyEditors();
    /// With every tool but the one that selects.
    [[nodiscard]] bool fingerDraws() const override;
    /// True while a text editor is open over a page, that of a form field included.
    [[nodiscard]] bool isEditingText() const;

Q_SIGNALS:
    void editingTextChanged(bool isEditing);
    /// What stands in an open text editor is another than before.
    void typed();

protected:
    void updateCursor(QPointF viewPoint) override;
    /// While text is selected: what can be done with it, wherever the click was. Otherwise what can be done at that
    /// place of the page.
    [[nodiscard]] std::unique_ptr<QMenu> menu(QPointF viewPoint) override;
    bool cancelOperation() override;
    /// Not for the markers of redactions and what covers replaced text.
    [[nodiscard]] bool showsRemark(const PDFAnnotation& annotation) const override;

    bool viewportEvent(QEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void showEvent(QShowEvent* event) override;
    /// Keeps the background the program's tint when the desktop changes between light and dark.
    void changeEvent(QEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    // Pointer
    [[nodiscard]] std::shared_ptr<NoteAnnotation> noteAnnotation(QPointF viewPoint) const;
    void press(QMouseEvent* event, bool isDoubleClick);
    void pressTool(AnnotationTool tool, QPointF viewPoint);
    [[nodiscard]] bool usePenEraser(QTabletEvent* event);
    void addNote(QPointF viewPoint);
    void finishGestures();
    void updateFilling();
    void updateEraserVisual(const std::optional<QPointF>& viewPoint);
    void applyStickyMarkupIfNeeded();

    // Menus
    [[nodiscard]] std::unique_ptr<QMenu> buildSelectionMenu();
    [[nodiscard]] std::unique_ptr<QMenu> buildPageMenu(QPointF viewPoint, const std::shared_ptr<PDFPage>& page);
    void addAskAIMenu(QMenu& menu);
    void askAIAboutPage(const std::shared_ptr<PDFPage>& page);

    std::shared_ptr<ToolState> m_toolState;
    std::shared_ptr<UndoManager> m_docUndoManager;

    std::unique_ptr<ShapeGesture> m_shape;
    std::unique_ptr<SignaturePlacement> m_signature;
    std::unique_ptr<NoteDrag> m_noteDrag;
    std::unique_ptr<Eraser> m_eraser;
    std::unique_ptr<TextBoxEditor> m_textBoxEditor;
    std::unique_ptr<NoteEditor> m_noteEditor;
    std::unique_ptr<PageTextEditor> m_pageTextEditor;

    EraserCursorOverlay* const m_eraserOverlay;
    std::optional<QPointF> m_lastMouseViewPoint;
    bool m_eraserCursorHidden = false; // the ring is there in its place
    bool m_penErases = false;          // the eraser end of a pen is over the view
    /// Whose cursor the pointer has, made for a screen of that ratio of pixels.
    std::optional<std::pair<AnnotationTool, qreal>> m_toolCursor;
    bool m_watchesForStickyMarkup = false;
    std::stop_source m_closing; // of the recognition that runs for this view
};
