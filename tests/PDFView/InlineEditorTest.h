#pragma once

#include "AnnotatingPDFView.h"
#include "InlineFreeTextEditor.h"
#include "NoteAnnotation.h"
#include "NoteEditor.h"
#include "PDFDocument.h"
#include "PDFPage.h"
#include "PageText.h"
#include "PageTextEditor.h"
#include "PdfFixtures.h"
#include "TextBoxEditor.h"
#include "ToolState.h"
#include "UndoManager.h"

#include <QTest>

#include <memory>
#include <vector>

#include <gtest/gtest.h>

using Annotations = std::vector<std::shared_ptr<PDFAnnotation>>;

/// A view on the screen at 100% with editors of its own, so that each is called as the viewer calls its.
class InlineEditorTest : public testing::Test {
protected:
    InlineEditorTest() {
        PdfFixture fixture;
        fixture.addPage({QStringLiteral("First line of the page"), QStringLiteral("Second line"), QStringLiteral("I")});
        const QByteArray white =
            "0 g 0 0 612 792 re f 1 g " + PdfFixture::textContent({QStringLiteral("White on black")});
        fixture.addPageWithContent(white, fixture.defaultResources());
        m_document = PDFDocument::fromData(fixture.bytes());
        m_toolState->setColor(Qt::black);
        m_view.setDocument(m_document);
        m_view.setToolState(m_toolState);
        m_view.setDocUndoManager(m_undoManager);
        m_view.resize(800, 700);
        m_view.show();
        m_view.activateWindow();
        EXPECT_TRUE(QTest::qWaitForWindowActive(&m_view));
        m_view.setScaleFactor(1);
        m_view.setFocus();
    }

    [[nodiscard]] std::shared_ptr<PDFPage> page(int index = 0) const { return m_document->page(index); }

    /// The one that is open, or null.
    [[nodiscard]] InlineFreeTextEditor* editor() const {
        for (auto* const candidate : m_view.viewport()->findChildren<InlineFreeTextEditor*>())
            if (candidate->isVisible())
                return candidate;
        return nullptr;
    }

    void type(const QString& text) const {
        ASSERT_NE(editor(), nullptr);
        QTest::keyClicks(editor(), text);
    }

    /// Presses a key in the open editor and ends the turn of the event loop.
    void press(Qt::Key key, Qt::KeyboardModifiers modifiers = Qt::NoModifier) const {
        ASSERT_NE(editor(), nullptr);
        QTest::keyClick(editor(), key, modifiers);
        QCoreApplication::processEvents();
    }

    /// The middle of a line of text, as a view point.
    [[nodiscard]] QPointF lineOnScreen(int line, int pageIndex = 0) const {
        const QRectF bounds = page(pageIndex)->text()->lines.at(std::size_t(line)).bounds;
        return m_view.convertFromPage(bounds.center(), *page(pageIndex));
    }

    /// A note at a place where there is no text, with its undo, as the viewer makes one.
    std::shared_ptr<NoteAnnotation> addNote(const QString& text = {}) {
        auto note = std::make_shared<NoteAnnotation>(QRectF(200, 500, 120, 80));
        note->setContents(text);
        page()->addAnnotation(note);
        QCoreApplication::processEvents();
        return note;
    }

    /// What became of a text box with that text.
    std::shared_ptr<PDFAnnotation> writeBox(QPointF viewPoint, const QString& text) {
        m_box.start(viewPoint, page());
        type(text);
        press(Qt::Key_Return);
        return page()->annotations().empty() ? nullptr : page()->annotations().back();
    }

    std::shared_ptr<PDFDocument> m_document;
    std::shared_ptr<ToolState> m_toolState = std::make_shared<ToolState>();
    std::shared_ptr<UndoManager> m_undoManager = std::make_shared<UndoManager>();
    AnnotatingPDFView m_view;
    TextBoxEditor m_box{m_view};
    NoteEditor m_note{m_view};
    PageTextEditor m_line{m_view};
};

/// Equal to within half a pixel, by which a widget may lie beside its place.
inline void expectNear(const QRectF& rect, const QRectF& expected, double tolerance = 0.51) {
    EXPECT_NEAR(rect.left(), expected.left(), tolerance);
    EXPECT_NEAR(rect.top(), expected.top(), tolerance);
    EXPECT_NEAR(rect.right(), expected.right(), tolerance);
    EXPECT_NEAR(rect.bottom(), expected.bottom(), tolerance);
}
