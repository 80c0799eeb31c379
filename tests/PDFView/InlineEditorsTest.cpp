#include "InlineEditorTest.h"

#include <QApplication>
#include <QContextMenuEvent>
#include <QInputMethodEvent>
#include <QMenu>
#include <QScrollBar>
#include <QWheelEvent>

namespace {

using InlineEditorsTest = InlineEditorTest;

TEST_F(InlineEditorsTest, editorsKeepToTheirPlaceWhenThePageIsScrolledZoomedAndTurned) {
    /// With the size of the letters where one point of the page is one pixel, and what it becomes with the page.
    const auto expectAt = [this](const std::function<QRectF()>& frame, double letters, bool areOfThePage) {
        for (const double scale : {1.7, 0.6}) {
            m_view.setScaleFactor(scale);
            m_view.verticalScrollBar()->setValue(m_view.verticalScrollBar()->value() + 37);
            page()->setRotation(page()->rotation() + 90);
            endTurn();
            expectNear(editor()->geometry(), frame(), halfPixel);
            EXPECT_NEAR(fontSize(), areOfThePage ? letters * scale : letters, 0.01);
        }
        m_view.setScaleFactor(1);
        m_view.verticalScrollBar()->setValue(0);
        page()->setRotation(0);
        key(Qt::Key_Escape);
    };
    const QPointF corner = m_view.convertToPage(QPointF(200, 150), *page());
    m_box.start({200, 150}, page());
    const QSize size = editor()->size();
    expectAt([&] { return QRectF(m_view.convertFromPage(corner, *page()), size); }, 16, false);

    const auto note = addNote(QStringLiteral("words"));
    m_note.start(note, page(), false);
    note->setBounds(note->bounds().translated(10, -20));
    expectAt([&] { return m_view.convertFromPage(note->paperRect(), *page()); }, 13, false);

    m_line.begin(lineOnScreen(0));
    const QRectF cover = annotations().back()->bounds();
    EXPECT_FALSE(editor()->document()->isUndoAvailable()) << "only what is typed can be undone";
    type(QStringLiteral("still edited"));
    const auto frame = [&] {
        EXPECT_EQ(editor()->verticalScrollBar()->maximum(), 0) << "the words are on one line";
        const QRectF covered = m_view.convertFromPage(cover, *page());
        return QRectF(covered.topLeft(), QSizeF(editor()->width(), covered.height()));
    };
    expectAt(frame, 12, true);
}

TEST_F(InlineEditorsTest, undoWheelAndCompositionsAreOfTheEditor) {
    const auto first = writeBox({100, 100}, QStringLiteral("first"));
    m_box.start({100, 300}, page());
    type(QStringLiteral("ab"));
    key(Qt::Key_Z, Qt::ControlModifier);
    key(Qt::Key_Z, Qt::ControlModifier); // nothing left: not the document's turn
    EXPECT_EQ(annotations(), Annotations{first});

    const int before = editor()->y();
    QWidget* const target = editor()->viewport();
    QWheelEvent wheel(QPointF(5, 5), target->mapToGlobal(QPointF(5, 5)), {}, {0, -120}, Qt::NoButton, Qt::NoModifier,
                      Qt::NoScrollPhase, false);
    QApplication::sendEvent(target, &wheel);
    EXPECT_TRUE(QTest::qWaitFor([&] { return editor()->y() < before - 20; }, 20'000)) << "the page scrolls";

    QInputMethodEvent composing(QStringLiteral("ni"), {});
    QApplication::sendEvent(editor(), &composing);
    key(Qt::Key_Return);
    key(Qt::Key_Escape);
    ASSERT_TRUE(m_box.isOpen()) << "a composition is not cut off";
    QInputMethodEvent composed;
    composed.setCommitString(QStringLiteral("你"));
    QApplication::sendEvent(editor(), &composed);
    key(Qt::Key_Return);
    EXPECT_EQ(annotations().back()->contents(), QStringLiteral("你"));
}

TEST_F(InlineEditorsTest, aMenuAndAnotherWindowOnlyBorrowTheKeyboardAndAnotherPlaceCommits) {
    m_box.start({100, 300}, page());
    type(QStringLiteral("box"));
    QContextMenuEvent click(QContextMenuEvent::Mouse, {30, 10}, editor()->mapToGlobal(QPoint(30, 10)));
    QApplication::sendEvent(editor()->viewport(), &click);
    auto* const menu = qobject_cast<QMenu*>(QApplication::activePopupWidget());
    ASSERT_NE(menu, nullptr);
    EXPECT_FALSE(menu->accessibleName().isEmpty());
    menu->close();
    endTurn();
    QWidget other;
    other.show();
    other.activateWindow();
    EXPECT_TRUE(QTest::qWaitForWindowActive(&other));
    m_view.activateWindow();
    EXPECT_TRUE(QTest::qWaitForWindowActive(&m_view));
    EXPECT_TRUE(editor()->hasFocus());
    EXPECT_TRUE(annotations().empty());

    m_note.start(addNote(), page(), true); // ends the box
    type(QStringLiteral("note"));
    QTest::mouseClick(m_view.viewport(), Qt::LeftButton, {}, {20, 600});
    m_line.begin(lineOnScreen(1));
    QTest::mouseClick(editor()->viewport(), Qt::LeftButton, {}, {4, 4});
    QTest::mouseClick(editor(), Qt::LeftButton, {}, {2, 2}); // in its inset
    type(QStringLiteral("A retyped line and "));
    QTest::mouseClick(m_view.viewport(), Qt::LeftButton, {}, {20, 600});

    const QByteArray saved = m_document->dataRepresentation();
    EXPECT_EQ(PdfPrograms::complaints(saved), "");
    const auto reopened = PDFDocument::fromData(saved);
    QStringList found;
    for (const auto& annotation : reopened->page(0)->annotations())
        found << annotation->type() + u':' + annotation->contents();
    EXPECT_EQ(found.join(u'|').toStdString(), "Text:note|FreeText:box|Square:|FreeText:A retyped line and Second line");
}

TEST_F(InlineEditorsTest, anEditorGoesWithItsPageAndStaysOnOneThatIsMoved) {
    const auto first = page();
    m_box.start({100, 300}, first);
    type(QStringLiteral("words"));
    m_document->removePage(0);
    m_document->insert(first, 1);
    endTurn();
    EXPECT_TRUE(m_box.isOpen());
    m_document->removePage(1);
    endTurn();
    EXPECT_FALSE(m_box.isOpen());
    m_document->insert(first, 0);
    endTurn();

    const auto note = addNote(QStringLiteral("old"));
    m_note.start(note, page(), false);
    type(QStringLiteral("new"));
    page()->removeAnnotation(note);
    endTurn();
    EXPECT_FALSE(m_note.isOpen());
    EXPECT_EQ(note->contents(), QStringLiteral("old"));

    m_line.begin(lineOnScreen(0));
    ASSERT_TRUE(m_line.isOpen());
    m_document->removePage(0);
    m_line.commit(); // at once: the page is gone already
    EXPECT_FALSE(m_line.isOpen());
    EXPECT_TRUE(first->annotations().empty());
    EXPECT_FALSE(m_undoManager->canUndo());
}

TEST_F(InlineEditorsTest, aViewThatIsDestroyedDropsAnOpenEditor) {
    for (const bool editsText : {false, true}) {
        auto view = std::make_unique<AnnotatingPDFView>();
        view->setDocument(m_document);
        view->setToolState(m_toolState);
        view->setDocUndoManager(m_undoManager);
        view->resize(800, 700);
        view->show();
        m_toolState->setTool(AnnotationTool::textBox);
        m_toolState->setTextEditingModeEnabled(editsText);
        const QPoint words = view->convertFromPage(line(0).center(), *page()).toPoint();
        QTest::mouseClick(view->viewport(), Qt::LeftButton, {}, words);
        auto* const open = view->viewport()->findChild<InlineFreeTextEditor*>();
        ASSERT_NE(open, nullptr);
        QTest::keyClicks(open, QStringLiteral("words"));
        view.reset();
        endTurn();
        EXPECT_TRUE(annotations().empty());
        EXPECT_FALSE(m_undoManager->canUndo());
    }
}

TEST_F(InlineEditorsTest, anOldNoteIsNeverEmptiedAndANewOneThatIsEmptyGoesUndoably) {
    const auto old = addNote(QStringLiteral("old words"));
    const auto edit = [this](const std::shared_ptr<NoteAnnotation>& note, bool isNew, const QString& words,
                             Qt::Key end) {
        m_note.start(note, page(), isNew);
        EXPECT_EQ(editor()->textCursor().selectedText(), note->contents());
        key(Qt::Key_Delete);
        type(words);
        key(end);
        EXPECT_FALSE(m_note.isOpen());
    };
    edit(old, false, QStringLiteral("new words"), Qt::Key_Return);
    EXPECT_TRUE(m_undoManager->isDocumentEdited());
    edit(old, false, QString(), Qt::Key_Return);
    edit(old, false, QStringLiteral("given up"), Qt::Key_Escape);
    EXPECT_EQ(old->contents(), QStringLiteral("new words"));
    EXPECT_FALSE(m_undoManager->canUndo());
    for (const Qt::Key end : {Qt::Key_Return, Qt::Key_Escape}) {
        const auto note = addNote();
        edit(note, true, end == Qt::Key_Return ? QStringLiteral(" ") : QStringLiteral("given up"), end);
        EXPECT_EQ(annotations(), Annotations{old});
        m_undoManager->undo();
        EXPECT_EQ(annotations(), (Annotations{old, note}));
        EXPECT_EQ(note->contents(), QString());
        m_undoManager->redo();
    }
}

} // namespace
