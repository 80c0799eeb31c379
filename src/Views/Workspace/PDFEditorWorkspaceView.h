#pragma once

#include "AnnotationTool.h"
#include "MarkupAction.h"

#include <QCoroTask>
#include <QPointer>
#include <QTimer>
#include <QUrl>
#include <QWidget>

#include <memory>

class AnnotatingPDFView;
class AssistantDock;
class AssistantPanel;
class AssistantViewModel;
struct AssistantContext;
class LineStylePicker;
class PDFEditorDocument;
class PDFViewCoordinator;
class PassingNotice;
class QSplitter;
class RecognitionProgress;
class RedactionCommand;
class ThumbnailSidebar;
class ToolState;
class UserDefaults;
class WorkspaceActions;
class WorkspaceToolbar;

/// The editing workspace of a document window: the page sidebar, the viewer, the assistant, and a toolbar that drives
/// them. It is built for one `PDFDocument` object and goes when the document holds another.
class PDFEditorWorkspaceView : public QWidget {
    Q_OBJECT

public:
    /// `fileURL` is empty for a document that has not been saved. `defaults` must outlive the view.
    PDFEditorWorkspaceView(std::shared_ptr<PDFEditorDocument> document, const QUrl& fileURL,
                           std::shared_ptr<ToolState> toolState, UserDefaults& defaults, QWidget* parent = nullptr);
    ~PDFEditorWorkspaceView() override;

    [[nodiscard]] AnnotatingPDFView* pdfView() const { return m_pdfView; }
    [[nodiscard]] PDFViewCoordinator& coordinator() const { return *m_coordinator; }
    [[nodiscard]] WorkspaceActions* actions() const { return m_actions; }
    [[nodiscard]] PassingNotice& notice() const { return *m_notice; }

    /// Shown unless the pages are to have the whole window.
    void setShowsToolbar(bool shows);
    /// The toolbar's height in pixels, whether it is shown or not.
    [[nodiscard]] int toolbarHeight() const;

    /// The document was saved under another name.
    void setFileURL(const QUrl& fileURL);

    /// Also opens the signatures for the signature tool, whether or not it is the present one.
    void selectTool(AnnotationTool tool);
    void toggleTextEditingMode();
    /// Marks the selected text. With nothing selected it turns marking of each next selection on, or off again.
    void toggleMarkup(MarkupAction action);
    /// Reads the text of the page that is shown, out of its picture where it has none and then into the page, copies it
    /// and shows it among the assistant's replies. Does nothing while that runs.
    void ocrCurrentPageTapped();
    /// Burns in what the markers of redactions cover, and says so.
    void confirmApplyRedactions();
    /// Shows the text of a page, which was recognized, among the assistant's replies.
    void handleExtractedText(const QString& text);
    /// Puts a prompt into the assistant's input field, and sends it if `send` says so.
    void askAI(const QString& prompt, bool send);

    /// At first shown; it gives way while the window is so narrow that the pages would have no room.
    [[nodiscard]] bool showsSidebar() const;
    void setShowsSidebar(bool shows);
    [[nodiscard]] ThumbnailSidebar& sidebar() const { return *m_sidebar; }

    [[nodiscard]] bool showsAssistant() const;
    void setShowsAssistant(bool shows);
    /// Shows the page sidebar if the workspace of an earlier reading of the same file did, and goes on with the
    /// conversation of the workspace of an earlier reading of the same file, and shows its panel, as wide as there, if
    /// that one did.
    void takePanelsOf(const PDFEditorWorkspaceView& former);
    /// Made when it is first asked for.
    [[nodiscard]] const std::shared_ptr<AssistantViewModel>& assistant();

Q_SIGNALS:
    void settingsRequested();

protected:
    void changeEvent(QEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    void connectTools();
    void connectRedactions();
    static QCoro::Task<> ocrPage(QPointer<PDFEditorWorkspaceView> self, int index,
                                 QPointer<RecognitionProgress> progress);
    void connectSidebar();
    void connectAssistant();
    void connectPanes();
    void goToPane(int steps);
    AssistantPanel* makeAssistantPanel();
    [[nodiscard]] AssistantContext assistantContext() const;
    void openNewDocument();
    void print();
    void showReading(int pagesRead, int pageCount);
    void shareWidth();

    std::shared_ptr<PDFEditorDocument> m_document;
    std::shared_ptr<ToolState> m_toolState;
    PDFViewCoordinator* m_coordinator;
    AnnotatingPDFView* m_pdfView;
    WorkspaceActions* m_actions;
    PassingNotice* m_notice;
    WorkspaceToolbar* m_toolbar;
    LineStylePicker* m_lineStylePicker;
    UserDefaults& m_defaults;
    std::shared_ptr<AssistantViewModel> m_assistant;
    AssistantDock* m_assistantDock;
    QSplitter* m_splitter;
    ThumbnailSidebar* m_sidebar;
    RedactionCommand* m_redactions = nullptr;
    QPointer<RecognitionProgress> m_recognition; ///< null unless a page is being recognized
    bool m_sidebarGaveWay = false;               ///< it comes back with the room
    bool m_isNarrow = false;
    QTimer m_sidebarRest; ///< runs out when the sidebar's width has rested for a moment
};
