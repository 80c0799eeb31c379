#include "AnnotationUndo.h"

#include "PDFAnnotation.h"
#include "PDFDocument.h"
#include "PDFPage.h"
#include "PdfFixtures.h"
#include "UndoManager.h"

#include <QCoreApplication>

#include <gtest/gtest.h>

namespace {

class AnnotationUndoTest : public testing::Test {
protected:
    AnnotationUndoTest() {
        PdfFixture fixture;
        fixture.addPage({QStringLiteral("Text")});
        fixture.addAnnotation(0, "<< /Type /Annot /Subtype /Square /Rect [10 10 50 50] >>");
        m_document = PDFDocument::fromData(fixture.bytes());
        m_page = m_document->page(0);
        m_fromFile = m_page->annotations().front();
    }

    std::shared_ptr<PDFAnnotation> add(const QString& name) {
        auto annotation = std::make_shared<PDFAnnotation>(QRectF(0, 0, 9, 9), PDFAnnotationSubtype::square);
        annotation->setContents(name);
        m_page->addAnnotation(annotation);
        AnnotationUndo::registerAdding(&m_manager, m_page, annotation);
        return annotation;
    }

    void remove(const std::shared_ptr<PDFAnnotation>& annotation) {
        AnnotationUndo::registerRemoving(&m_manager, m_page, annotation, m_page->removeAnnotation(annotation));
    }

    using Annotations = std::vector<std::shared_ptr<PDFAnnotation>>;

    UndoManager m_manager;
    std::shared_ptr<PDFDocument> m_document;
    std::shared_ptr<PDFPage> m_page;
    std::shared_ptr<PDFAnnotation> m_fromFile;
};

TEST_F(AnnotationUndoTest, bringsBackTheSameObjectsInTheSameOrderWithoutLimit) {
    const auto a = add(QStringLiteral("a"));
    const auto b = add(QStringLiteral("b"));
    QCoreApplication::processEvents();
    remove(m_fromFile);
    remove(a);
    QCoreApplication::processEvents();
    const auto c = add(QStringLiteral("c"));
    QCoreApplication::processEvents();

    const Annotations states[] = {{m_fromFile}, {m_fromFile, a, b}, {b}, {b, c}};
    ASSERT_EQ(m_page->annotations(), states[3]);
    for (int round = 0; round < 3; ++round) {
        for (int state = 2; state >= 0; --state) {
            m_manager.undo();
            EXPECT_EQ(m_page->annotations(), states[state]) << "undo to " << state;
        }
        EXPECT_FALSE(m_manager.canUndo());
        EXPECT_FALSE(m_manager.isDocumentEdited());
        for (int state = 1; state <= 3; ++state) {
            m_manager.redo();
            EXPECT_EQ(m_page->annotations(), states[state]) << "redo to " << state;
        }
        EXPECT_FALSE(m_manager.canRedo());
    }
    EXPECT_EQ(m_page->annotations()[0]->page(), m_page);
    EXPECT_EQ(a->page(), nullptr);
}

TEST_F(AnnotationUndoTest, worksOnAPageThatLeftItsDocumentAndForgetsOneThatIsGone) {
    const auto a = add(QStringLiteral("a"));
    QCoreApplication::processEvents();
    m_document->removePage(0);
    m_manager.undo();
    EXPECT_EQ(m_page->annotations(), (Annotations{m_fromFile}));
    m_manager.redo();
    EXPECT_EQ(m_page->annotations(), (Annotations{m_fromFile, a}));

    m_page.reset();
    m_document.reset();
    EXPECT_FALSE(m_manager.canUndo());
}

} // namespace
