#pragma once

#include "AnnotatingPDFView.h"
#include "PDFAnnotation.h"
#include "PDFDocument.h"
#include "PDFPage.h"
#include "PDFSelection.h"
#include "PageText.h"
#include "PdfFixtures.h"
#include "PdfPrograms.h"
#include "SignatureStore.h"
#include "ToolState.h"
#include "UndoManager.h"

#include <QTest>
#include <QTextEdit>

#include <gtest/gtest.h>

#include <memory>
#include <vector>

inline void expectNear(const QRectF& rect, const QRectF& expected, double tolerance = 0.01) {
    EXPECT_NEAR(rect.left(), expected.left(), tolerance);
    EXPECT_NEAR(rect.top(), expected.top(), tolerance);
    EXPECT_NEAR(rect.right(), expected.right(), tolerance);
    EXPECT_NEAR(rect.bottom(), expected.bottom(), tolerance);
}

/// A shown viewer of a document of two pages with four lines of text each, with a tool state and an undo manager.
/// Points are in page coordinates of the first page unless told otherwise.
class ViewerTest : public testing::Test {
protected:
    using Annotations = std::vector<std::shared_ptr<PDFAnnotation>>;

    ViewerTest() {
        PdfFixture fixture;
        for (const QString& page : {QStringLiteral("one"), QStringLiteral("two")}) {
            fixture.addPage({QStringLiteral("First line of page %1").arg(page),
                             QStringLiteral("Second line, a longer one"), QStringLiteral("Third"),
                             QStringLiteral("Fourth line")});
        }
        show(fixture);
        m_view.setToolState(m_toolState);
        m_view.setDocUndoManager(m_undoManager);
    }

    void show(PdfFixture& fixture) { show(PDFDocument::fromData(fixture.bytes())); }
    void show(const std::shared_ptr<PDFDocument>& document) {
        m_document = document;
        m_view.setDocument(m_document);
        m_view.resize(700, 900);
        m_view.show();
        QTest::qWait(0);
    }

    [[nodiscard]] std::shared_ptr<PDFPage> page(int index = 0) const { return m_document->page(index); }
    [[nodiscard]] const Annotations& annotations() const { return page()->annotations(); }
    [[nodiscard]] QRectF line(int index, int pageIndex = 0) const {
        return page(pageIndex)->text()->lines.at(std::size_t(index)).bounds;
    }
    [[nodiscard]] QPointF onScreen(QPointF point) const { return m_view.convertFromPage(point, *page()); }

    void mouse(QEvent::Type type, QPointF point, Qt::MouseButton button, Qt::MouseButtons buttons) {
        const QPointF at = onScreen(point);
        QMouseEvent event(type, at, m_view.viewport()->mapToGlobal(at), button, buttons, Qt::NoModifier);
        QCoreApplication::sendEvent(m_view.viewport(), &event);
    }
    void press(QPointF point) { mouse(QEvent::MouseButtonPress, point, Qt::LeftButton, Qt::LeftButton); }
    void moveTo(QPointF point) { mouse(QEvent::MouseMove, point, Qt::NoButton, Qt::LeftButton); }
    void hover(QPointF point) { mouse(QEvent::MouseMove, point, Qt::NoButton, Qt::NoButton); }
    void release(QPointF point) { mouse(QEvent::MouseButtonRelease, point, Qt::LeftButton, Qt::NoButton); }
    void drag(const std::vector<QPointF>& way) {
        press(way.front());
        for (std::size_t i = 1; i < way.size(); ++i)
            moveTo(way[i]);
        release(way.back());
        endTurn();
    }
    void click(QPointF point) { drag({point}); }
    void doubleClick(QPointF point) {
        click(point);
        mouse(QEvent::MouseButtonDblClick, point, Qt::LeftButton, Qt::LeftButton);
        release(point);
        endTurn();
    }
    /// The text editor that lies over the page; null when none is open.
    template <typename Editor = QTextEdit>
    [[nodiscard]] Editor* openEditor() const {
        for (Editor* const editor : m_view.viewport()->findChildren<Editor*>())
            if (editor->isVisible())
                return editor;
        return nullptr;
    }
    /// What the user does next is another undo step.
    static void endTurn() { QCoreApplication::processEvents(); }
    void expectUntouched(const char* what = "") const {
        EXPECT_TRUE(annotations().empty() && !m_undoManager->canUndo() && !m_undoManager->isDocumentEdited()) << what;
    }
    void addSignatureTwiceAsWideAsHigh() {
        QImage image(200, 100, QImage::Format_ARGB32);
        image.fill(Qt::black);
        m_toolState->signatureStore()->add(image);
    }

    /// From the start of a line to the end of another; lines and pages are zero-based.
    void select(int fromPage, int fromLine, int toPage, int toLine) {
        const QRectF from = line(fromLine, fromPage);
        const QRectF to = line(toLine, toPage);
        m_view.setCurrentSelection(m_document->selection(*page(fromPage), {from.left() - 2, from.center().y()},
                                                         *page(toPage), {to.right() + 2, to.center().y()}));
    }

    std::shared_ptr<PDFDocument> m_document;
    std::shared_ptr<ToolState> m_toolState = std::make_shared<ToolState>();
    std::shared_ptr<UndoManager> m_undoManager = std::make_shared<UndoManager>();
    AnnotatingPDFView m_view;
};
