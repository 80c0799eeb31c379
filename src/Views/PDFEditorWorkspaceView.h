#pragma once

#include "MarkupAction.h"

#include <QUrl>
#include <QWidget>

#include <memory>

class AnnotatingPDFView;
class PDFEditorDocument;
class PDFViewCoordinator;
class PassingNotice;
class QAction;
class ToolState;
class UserDefaults;
class WorkspaceActions;

/// The editing workspace of a document window: the viewer, and a toolbar that drives it. It is built for one
/// `PDFDocument` object and goes when the document holds another.
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

    /// The document was saved under another name.
    void setFileURL(const QUrl& fileURL);

    /// Marks the selected text. With nothing selected it turns marking of each next selection on, or off again.
    void toggleMarkup(MarkupAction action);

protected:
    void changeEvent(QEvent* event) override;

private:
    void makeMarkupActions();
    void updateMarkupActions();
    void openNewDocument();

    std::shared_ptr<PDFEditorDocument> m_document;
    std::shared_ptr<ToolState> m_toolState;
    PDFViewCoordinator* m_coordinator;
    AnnotatingPDFView* m_pdfView;
    WorkspaceActions* m_actions;
    QList<QAction*> m_markupActions; // in the order of allMarkupActions()
    PassingNotice* m_notice;
};
