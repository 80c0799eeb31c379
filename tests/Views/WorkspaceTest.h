#pragma once

#include "AnnotatingPDFView.h"
#include "PDFDocument.h"
#include "PDFEditorWorkspaceView.h"
#include "PDFPage.h"
#include "ToolState.h"
#include "ViewTest.h"

#include <QToolButton>

/// A workspace on the screen, with a document that was opened from a file.
class WorkspaceTest : public ViewTest {
protected:
    /// Builds the workspace of a file and shows it.
    void openWorkspace(const TestPdf& pdf) {
        m_document = opened(pdf.write(m_folder.path(), QStringLiteral("paper.pdf")));
        ASSERT_TRUE(m_document);
        showWorkspace();
    }
    /// Shows the document in a workspace.
    void showWorkspace() {
        m_toolState = std::make_shared<ToolState>(&m_defaults);
        m_workspace =
            std::make_unique<PDFEditorWorkspaceView>(m_document, m_document->fileURL(), m_toolState, m_defaults);
        show(*m_workspace, {900, 700});
        m_view = m_workspace->pdfView();
        QCoreApplication::processEvents();
    }

    QToolButton* button(const QString& name) const {
        return find<QToolButton>(*m_workspace, name + QStringLiteral("Button"));
    }
    void press(const QString& name) const { QTest::mouseClick(button(name), Qt::LeftButton); }

    std::size_t annotationCount() const { return m_document->pdfDocument()->page(0)->annotations().size(); }

    std::shared_ptr<PDFEditorDocument> m_document;
    std::shared_ptr<ToolState> m_toolState;
    std::unique_ptr<PDFEditorWorkspaceView> m_workspace;
    AnnotatingPDFView* m_view = nullptr;
};
