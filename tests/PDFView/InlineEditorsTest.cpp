#include "InlineEditorTest.h"

#include "PDFAnnotation.h"
#include "PdfPrograms.h"

#include <QApplication>
#include <QClipboard>
#include <QContextMenuEvent>
#include <QInputMethodEvent>
#include <QMenu>
#include <QMimeData>
#include <QScrollBar>
#include <QWheelEvent>

#include <algorithm>
#include <functional>

namespace {

using InlineEditorsTest = InlineEditorTest;

TEST_F(InlineEditorsTest, editorsKeepToTheirPlaceWhenThePageIsScrolledAndZoomed) {
    const auto scrollAndZoom = [this](const std::function<void()>& check) {
        for (const double scale : {1.0, 1.7, 0.6}) {
            m_view.setScaleFactor(scale);
            check();
            m_view.verticalScrollBar()->setValue(m_view.verticalScrollBar()->value() + 37);
            check();
        }
        page()->setRotation(page()->rotation() + 90);
        QCoreApplication::processEvents();
        check();
        m_view.setScaleFactor(1);
        m_view.verticalScrollBar()->setValue(0);
    };

    const QPointF corner = m_view.convertToPage(QPointF(200, 150), *page());
    m_box.start({200, 150}, page());
    type(QStringLiteral("words"));
    const QSize size = editor()->size();
    scrollAndZoom([&] {
        EXPECT_EQ(editor()->size(), size);
        EXPECT_LE((m_view.convertFromPage(corner, *page()) - editor()->pos()).manhattanLength(), 1);
        EXPECT_NEAR(editor()->font().pointSizeF() * editor()->logicalDpiY() / 72, 16, 0.01);
    });
    press(Qt::Key_Escape);

    const auto note = addNote(QStringLiteral("words"));
    m_note.start(note, page(), false);
    scrollAndZoom([&] {
        expectNear(QRectF(editor()->geometry()), m_view.convertFromPage(note->paperRect(), *page()));
        EXPECT_NEAR(editor()->font().pointSizeF() * editor()->logicalDpiY() / 72, 13, 0.01);
    });
    note->setBounds(note->bounds().translated(10, -20));
    QCoreApplication::processEvents();
    expectNear(QRectF(editor()->geometry()), m_view.convertFromPage(note->paperRect(), *page()));
    press(Qt::Key_Escape);

    m_line.begin(lineOnScreen(0));
    ASSERT_TRUE(m_line.isOpen());
    const QRectF cover = page()->annotations().back()->bounds();
    scrollAndZoom([&] {
        QRectF frame = m_view.convertFromPage(cover, *page());
        EXPECT_GT(editor()->width(), frame.width()) << "for the margins of the words";
        EXPECT_EQ(editor()->verticalScrollBar()->maximum(), 0) << "they are on one line";
        frame.setWidth(editor()->width());
        expectNear(QRectF(editor()->geometry()), frame);
        EXPECT_NEAR(editor()->font().pointSizeF() * editor()->logicalDpiY() / 72, 12 * m_view.scaleFactor(), 0.01);
    });
    EXPECT_FALSE(editor()->document()->isUndoAvailable()); // only what is typed can be undone
    type(QStringLiteral("still edited"));
    EXPECT_TRUE(editor()->document()->isUndoAvailable());
    press(Qt::Key_Escape);
}

TEST_F(InlineEditorsTest, theWheelOverAnEditorScrollsThePage) {
    m_box.start({200, 300}, page());
    const QPoint before = editor()->pos();
    QWidget* const target = editor()->viewport();
    QWheelEvent wheel(QPointF(5, 5), target->mapToGlobal(QPointF(5, 5)), {}, {0, -120}, Qt::NoButton, Qt::NoModifier,
                      Qt::NoScrollPhase, false);
    QApplication::sendEvent(target, &wheel);
    EXPECT_TRUE(QTest::qWaitFor([&] { return editor()->y() < before.y() - 20; }, 20'000));
    EXPECT_TRUE(m_box.isOpen());
}

TEST_F(InlineEditorsTest, keysAndClipboardWorkOnTheTextOfTheEditor) {
    const auto first = writeBox({100, 100}, QStringLiteral("first"));
    m_box.start({100, 300}, page());
    type(QStringLiteral("ab"));
    press(Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(editor()->toPlainText(), QString());
    press(Qt::Key_Z, Qt::ControlModifier); // nothing left: not the document's turn
    EXPECT_EQ(page()->annotations(), Annotations{first});
    press(Qt::Key_Z, Qt::ControlModifier | Qt::ShiftModifier);
    EXPECT_EQ(editor()->toPlainText(), QStringLiteral("ab"));

    auto* const rich = new QMimeData;
    rich->setHtml(QStringLiteral("<p><b style='color:red;font-size:40pt'>bold</b></p>"));
    rich->setText(QStringLiteral("bold"));
    QApplication::clipboard()->setMimeData(rich);
    press(Qt::Key_V, Qt::ControlModifier);
    EXPECT_EQ(editor()->toPlainText(), QStringLiteral("abbold"));
    EXPECT_FALSE(editor()->textCursor().charFormat().hasProperty(QTextFormat::FontWeight));
    for (const Qt::Key key : {Qt::Key_PageDown, Qt::Key_Up, Qt::Key_End, Qt::Key_Home})
        press(key);
    EXPECT_EQ(m_view.verticalScrollBar()->value(), 0);
    EXPECT_TRUE(m_box.isOpen());
}

TEST_F(InlineEditorsTest, aCompositionIsNotCutOffByReturn) {
    m_box.start({100, 300}, page());
    QInputMethodEvent composing(QStringLiteral("ni"), {});
    QApplication::sendEvent(editor(), &composing);
    press(Qt::Key_Return);
    ASSERT_TRUE(m_box.isOpen());
    press(Qt::Key_Escape);
    ASSERT_TRUE(m_box.isOpen());
    QInputMethodEvent composed;
    composed.setCommitString(QStringLiteral("\u4f60"));
    QApplication::sendEvent(editor(), &composed);
    press(Qt::Key_Return);
    ASSERT_EQ(page()->annotations().size(), 1U);
    EXPECT_EQ(page()->annotations()[0]->contents(), QStringLiteral("\u4f60"));
}

TEST_F(InlineEditorsTest, aMenuAndAnotherWindowOnlyBorrowTheKeyboard) {
    m_box.start({100, 300}, page());
    type(QStringLiteral("words"));
    const QPoint spot(30, 10);
    QContextMenuEvent click(QContextMenuEvent::Mouse, spot, editor()->mapToGlobal(spot));
    QApplication::sendEvent(editor()->viewport(), &click);
    auto* const menu = qobject_cast<QMenu*>(QApplication::activePopupWidget());
    ASSERT_NE(menu, nullptr);
    EXPECT_FALSE(menu->accessibleName().isEmpty());
    EXPECT_TRUE(m_box.isOpen());
    menu->close();
    QCoreApplication::processEvents();
    EXPECT_TRUE(m_box.isOpen());

    QWidget other;
    other.show();
    other.activateWindow();
    EXPECT_TRUE(QTest::qWaitForWindowActive(&other));
    EXPECT_TRUE(m_box.isOpen());
    m_view.activateWindow();
    EXPECT_TRUE(QTest::qWaitForWindowActive(&m_view));
    EXPECT_TRUE(editor()->hasFocus());
    EXPECT_TRUE(page()->annotations().empty());
}

TEST_F(InlineEditorsTest, givingTheKeyboardToSomethingElseCommits) {
    m_box.start({100, 300}, page());
    type(QStringLiteral("box"));
    const auto note = addNote();
    m_note.start(note, page(), true); // ends the box
    EXPECT_FALSE(m_box.isOpen());
    type(QStringLiteral("note"));
    QTest::mouseClick(m_view.viewport(), Qt::LeftButton, {}, {20, 600});
    EXPECT_FALSE(m_note.isOpen());
    EXPECT_EQ(note->contents(), QStringLiteral("note"));
    EXPECT_TRUE(m_view.hasFocus());

    m_line.begin(lineOnScreen(1));
    QTest::mouseClick(editor()->viewport(), Qt::LeftButton, {}, {4, 4});
    QTest::mouseClick(editor(), Qt::LeftButton, {}, {2, 2}); // in its inset
    EXPECT_TRUE(m_line.isOpen());
    QTest::mouseClick(m_view.viewport(), Qt::LeftButton, {}, {20, 600});
    EXPECT_FALSE(m_line.isOpen());
    const Annotations all = page()->annotations();
    ASSERT_EQ(all.size(), 4U);
    EXPECT_EQ(all[1]->contents(), QStringLiteral("box"));
    EXPECT_EQ(all[3]->contents(), QStringLiteral("Second line"));
}

TEST_F(InlineEditorsTest, anEditorGoesWithItsPageAndStaysOnOneThatIsMoved) {
    const auto first = page();
    m_box.start({100, 300}, first);
    type(QStringLiteral("words"));
    m_document->removePage(0);
    m_document->insert(first, 1);
    QCoreApplication::processEvents();
    EXPECT_TRUE(m_box.isOpen());
    m_document->removePage(1);
    QCoreApplication::processEvents();
    EXPECT_FALSE(m_box.isOpen());
    EXPECT_TRUE(first->annotations().empty());
    EXPECT_FALSE(m_undoManager->canUndo());
    m_document->insert(first, 0);
    QCoreApplication::processEvents();

    m_line.begin(lineOnScreen(0));
    ASSERT_TRUE(m_line.isOpen());
    m_document->removePage(0);
    m_line.commit(); // at once: the page is gone already
    EXPECT_FALSE(m_line.isOpen());
    EXPECT_TRUE(first->annotations().empty());
    m_document->insert(first, 0);
    QCoreApplication::processEvents();

    const auto note = addNote(QStringLiteral("old"));
    m_note.start(note, page(), false);
    type(QStringLiteral("new"));
    page()->removeAnnotation(note);
    QCoreApplication::processEvents();
    EXPECT_FALSE(m_note.isOpen());
    EXPECT_EQ(note->contents(), QStringLiteral("old"));

    m_line.begin(lineOnScreen(0));
    ASSERT_TRUE(m_line.isOpen());
    m_view.setDocument(nullptr);
    QCoreApplication::processEvents();
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
        view->setScaleFactor(1);
        view->activateWindow();
        ASSERT_TRUE(QTest::qWaitForWindowActive(view.get()));
        m_toolState->setTool(AnnotationTool::textBox);
        m_toolState->setTextEditingModeEnabled(editsText);
        const QPointF line = view->convertFromPage(page()->text()->lines[0].bounds.center(), *page());
        QTest::mouseClick(view->viewport(), Qt::LeftButton, {}, line.toPoint());
        auto* const open = view->viewport()->findChild<InlineFreeTextEditor*>();
        ASSERT_NE(open, nullptr);
        EXPECT_TRUE(open->hasFocus());
        QTest::keyClicks(open, QStringLiteral("words"));
        view.reset();
        QCoreApplication::processEvents();
        EXPECT_TRUE(page()->annotations().empty());
        EXPECT_FALSE(m_undoManager->canUndo());
    }
}

TEST_F(InlineEditorsTest, whatWasEditedIsInTheSavedFile) {
    writeBox({200, 400}, QStringLiteral("A box"));
    m_note.start(addNote(), page(), true);
    type(QStringLiteral("A note"));
    press(Qt::Key_Return);
    m_line.begin(lineOnScreen(1));
    type(QStringLiteral("A retyped line"));
    press(Qt::Key_Return);

    const QByteArray saved = m_document->dataRepresentation();
    EXPECT_EQ(PdfPrograms::complaints(saved), "");
    const auto reopened = PDFDocument::fromData(saved);
    QStringList found;
    for (const auto& annotation : reopened->page(0)->annotations())
        found << annotation->type() + u':' + annotation->contents();
    EXPECT_EQ(found.join(u'|').toStdString(), "FreeText:A box|Text:A note|Square:|FreeText:A retyped line");
}

} // namespace
