#pragma once

#include "InlineFreeTextEditor.h"
#include "NoteAnnotation.h"
#include "NoteEditor.h"
#include "PageTextEditor.h"
#include "TextBoxEditor.h"
#include "ViewerTest.h"

/// A view at 100% of a page of text and a dark one, with editors of its own, so that each is called as the viewer calls
/// its.
class InlineEditorTest : public ViewerTest {
protected:
    /// By which a widget may lie beside its place, in pixels.
    static constexpr double halfPixel = 0.51;

    InlineEditorTest() {
        PdfFixture fixture;
        fixture.addPage({QStringLiteral("First line of the page"), QStringLiteral("Second line"), QStringLiteral("I")});
        const QByteArray words = PdfFixture::textContent({QStringLiteral("White on black")});
        fixture.addPageWithContent("0 g 0 0 612 792 re f 1 g " + words, fixture.defaultResources());
        m_toolState->setColor(Qt::black);
        show(fixture);
        m_view.resize(800, 700);
        m_view.activateWindow();
        EXPECT_TRUE(QTest::qWaitForWindowActive(&m_view));
        m_view.setScaleFactor(1);
        m_view.setFocus();
    }

    /// The one that is open, or null.
    [[nodiscard]] InlineFreeTextEditor* editor() const { return openEditor<InlineFreeTextEditor>(); }
    /// Its font's size on the screen, in pixels.
    [[nodiscard]] double fontSize() const { return editor()->font().pointSizeF() * editor()->logicalDpiY() / 72; }

    void type(const QString& text) const {
        ASSERT_NE(editor(), nullptr);
        QTest::keyClicks(editor(), text);
    }
    /// Presses a key in the open editor and ends the turn of the event loop.
    void key(Qt::Key key, Qt::KeyboardModifiers modifiers = Qt::NoModifier) const {
        ASSERT_NE(editor(), nullptr);
        QTest::keyClick(editor(), key, modifiers);
        endTurn();
    }

    /// The middle of a line of text, as a view point.
    [[nodiscard]] QPointF lineOnScreen(int index, int pageIndex = 0) const {
        return m_view.convertFromPage(line(index, pageIndex).center(), *page(pageIndex));
    }

    /// A note at a place where there is no text.
    std::shared_ptr<NoteAnnotation> addNote(const QString& text = {}) {
        auto note = std::make_shared<NoteAnnotation>(QRectF(200, 500, 120, 80));
        note->setContents(text);
        page()->addAnnotation(note);
        endTurn();
        return note;
    }

    /// What became of a text box with that text.
    std::shared_ptr<PDFAnnotation> writeBox(QPointF viewPoint, const QString& text) {
        m_box.start(viewPoint, page());
        type(text);
        key(Qt::Key_Return);
        return annotations().empty() ? nullptr : annotations().back();
    }

    /// That a box which goes on downwards would show no more of its words.
    void expectShowsAllOf(PDFAnnotation& box) const {
        const QTransform toSeen = page()->displayTransform(PDFDisplayBox::cropBox);
        const QRectF bounds = box.bounds();
        const QImage shown = page()->thumbnail({1224, 1584}, PDFDisplayBox::cropBox);
        box.setBounds(toSeen.inverted().mapRect(toSeen.mapRect(bounds).adjusted(0, 0, 0, 300)));
        EXPECT_EQ(page()->thumbnail({1224, 1584}, PDFDisplayBox::cropBox), shown) << "some words are cut off";
        box.setBounds(bounds);
    }

    TextBoxEditor m_box{m_view};
    NoteEditor m_note{m_view};
    PageTextEditor m_line{m_view};
};
