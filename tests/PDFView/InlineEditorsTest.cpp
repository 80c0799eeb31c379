#include "InlineFreeTextEditor.h"
#include "NoteAnnotation.h"
#include "NoteEditor.h"
#include "PageBackground.h"
#include "PageTextEditor.h"
#include "TextBoxEditor.h"
#include "ViewerTest.h"

#include <QBitmap>
#include <QScrollBar>

namespace {

/// A view at 100% of a page of text and a dark one, with editors of its own, so that each is called as the viewer calls
/// its.
class InlineEditorsTest : public ViewerTest {
protected:
    InlineEditorsTest() {
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

TEST_F(InlineEditorsTest, editorsKeepToTheirPlaceWhenThePageIsScrolledZoomedAndTurned) {
    /// With the size of the letters where one point of the page is one pixel, and what it becomes with the page.
    const auto expectAt = [this](const std::function<QRectF()>& frame, double letters, bool areOfThePage) {
        for (const double scale : {1.7, 0.6}) {
            m_view.setScaleFactor(scale);
            m_view.verticalScrollBar()->setValue(m_view.verticalScrollBar()->value() + 37);
            page()->setRotation(page()->rotation() + 90);
            endTurn();
            expectNear(editor()->geometry(), frame(), 0.51); // as widgets lie on whole pixels
            const double pixels = editor()->font().pointSizeF() * editor()->logicalDpiY() / 72;
            EXPECT_NEAR(pixels, areOfThePage ? letters * scale : letters, 0.01);
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
    EXPECT_FALSE(editor()->document()->isUndoAvailable()) << "only what is typed can be undone";
    const auto frame = [&, cover = annotations().back()->bounds()] {
        const QRectF covered = m_view.convertFromPage(cover, *page());
        return QRectF(covered.topLeft(), QSizeF(editor()->width(), covered.height()));
    };
    expectAt(frame, 12, true);
}

TEST_F(InlineEditorsTest, anotherPlaceCommits) {
    m_box.start({100, 300}, page());
    type(QStringLiteral("box"));
    m_note.start(addNote(), page(), true); // ends the box
    type(QStringLiteral("note"));
    QTest::mouseClick(m_view.viewport(), Qt::LeftButton, {}, {20, 600});
    m_line.begin(lineOnScreen(1));
    QTest::mouseClick(editor(), Qt::LeftButton, {}, {2, 2}); // in its inset
    type(QStringLiteral("A retyped line and "));
    QTest::mouseClick(m_view.viewport(), Qt::LeftButton, {}, {20, 600});

    QStringList found;
    for (const auto& annotation : annotations())
        found << annotation->type() + u':' + annotation->contents();
    EXPECT_EQ(found.join(u'|').toStdString(), "Text:note|FreeText:box|Square:|FreeText:A retyped line and Second line");
}

TEST_F(InlineEditorsTest, anEditorGoesWithItsNoteItsPageOrItsView) {
    const auto note = addNote(QStringLiteral("old"));
    m_note.start(note, page(), false);
    type(QStringLiteral("new"));
    page()->removeAnnotation(note);
    endTurn();
    EXPECT_EQ(note->contents(), QStringLiteral("old"));
    m_line.begin(lineOnScreen(0));
    const auto first = m_document->removePage(0);
    m_line.commit(); // at once: the page is gone already
    EXPECT_FALSE(m_line.isOpen());
    m_document->insert(first, 0);
    endTurn();
    {
        PageTextEditor goesWithItsView(m_view);
        goesWithItsView.begin(lineOnScreen(0));
        type(QStringLiteral("words"));
    }
    expectUntouched();
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
    };
    edit(old, false, QStringLiteral("new words"), Qt::Key_Return);
    EXPECT_TRUE(m_undoManager->isDocumentEdited());
    edit(old, false, QString(), Qt::Key_Return);
    edit(old, false, QStringLiteral("given up"), Qt::Key_Escape);
    EXPECT_EQ(old->contents(), QStringLiteral("new words"));
    EXPECT_FALSE(m_undoManager->canUndo());
    for (const auto& [words, end] : {std::pair(" ", Qt::Key_Return), {"given up", Qt::Key_Escape}}) {
        const auto note = addNote();
        edit(note, true, QString::fromUtf8(words), end);
        EXPECT_EQ(annotations(), Annotations{old});
        m_undoManager->undo();
        EXPECT_EQ(annotations(), (Annotations{old, note}));
        m_undoManager->redo();
    }
}

TEST_F(InlineEditorsTest, aTextBoxBecomesFreeTextWhereItWasTyped) {
    m_toolState->setFontSize(20);
    m_box.start({300, 250}, page());
    type(QStringLiteral("  Hello  "));
    m_toolState->setColor(QColor(200, 20, 10));
    EXPECT_EQ(editor()->palette().color(QPalette::Text), QColor(200, 20, 10));
    const QRectF frame(editor()->geometry());
    const auto handles = [this] { return m_view.viewport()->findChildren<QWidget*>(QStringLiteral("textBoxHandle")); };
    EXPECT_EQ(handles().size(), 8);
    QRectF around;
    for (const QWidget* handle : handles())
        around |= QRectF(handle->geometry()).adjusted(2, 2, -2, -2);
    expectNear(around, frame, 4);
    key(Qt::Key_Enter, Qt::KeypadModifier);
    EXPECT_TRUE(handles().isEmpty());
    EXPECT_TRUE(m_view.hasFocus());
    const PDFAnnotation& made = *annotations().at(0);
    EXPECT_EQ(made.contents(), QStringLiteral("Hello"));
    EXPECT_EQ(made.fontColor(), QColor(200, 20, 10));
    EXPECT_EQ(made.font()->pointSizeF(), 20);
    expectNear(m_view.convertFromPage(made.bounds(), *page()), frame);
    m_undoManager->undo();
    for (const auto& [words, end] : {std::pair("   ", Qt::Key_Return), {"given up", Qt::Key_Escape}}) {
        m_box.start({100, 200}, page());
        type(QString::fromUtf8(words));
        key(end);
        EXPECT_FALSE(editor());
        expectUntouched();
    }
}

TEST_F(InlineEditorsTest, aTextBoxHasItsScreenSizeOnThePageAlsoWhenThatIsZoomedOrTurned) {
    for (const auto& [rotation, scale] : {std::pair(90, 1.0), {180, 1.0}, {270, 1.0}, {0, 2.55}, {0, 4.0}}) {
        SCOPED_TRACE(testing::Message() << rotation << " degrees, " << scale);
        page()->setRotation(rotation);
        m_view.setScaleFactor(scale);
        endTurn();
        m_box.start({300, 250}, page());
        type(QStringLiteral("Several words that take more than one line of the box"));
        key(Qt::Key_Return);
        const auto box = annotations().at(0);
        EXPECT_EQ(box->font()->pointSizeF(), 16);
        const QRectF seen = m_view.convertFromPage(box->bounds(), *page());
        expectNear(QRectF(seen.topLeft(), QSizeF(seen.width(), 0)), QRectF(300, 250, 220, 0), 0.2);
        expectShowsAllOf(*box);
        page()->removeAnnotation(box);
    }
}

/// Around the dark pixels within `area` of the viewport, in device pixels of it.
QRect darkPixels(const AnnotatingPDFView& view, const QRect& area) {
    const QImage picture =
        view.viewport()->grab(area).toImage().convertToFormat(QImage::Format_Mono, Qt::ThresholdDither);
    return QRegion(QBitmap::fromImage(picture)).boundingRect();
}

TEST_F(InlineEditorsTest, committedTextStaysWhereItWasTyped) {
    m_box.start({90, 330}, page());
    for (const QString& paragraph : {QStringLiteral("Words that take more than one line of the box"),
                                     QStringLiteral("Thisisawordwithoutablankthattakesmorethanoneline"),
                                     QStringLiteral("هذا نص طويل يكتب من اليمين إلى اليسار في سطرين")}) {
        editor()->insertPlainText(paragraph);
        key(Qt::Key_Return, Qt::ShiftModifier);
    }
    type(QStringLiteral("and (another)"));
    EXPECT_EQ(editor()->verticalScrollBar()->maximum(), 0) << "it has grown with its words";
    const QRect area = editor()->geometry().adjusted(6, 4, -6, -4);
    const QRect lastLine(area.left(), area.bottom() - 12, area.width(), 13);
    editor()->setReadOnly(true); // without a text cursor
    const std::pair typed(darkPixels(m_view, area), darkPixels(m_view, lastLine));
    editor()->setReadOnly(false);
    key(Qt::Key_Return);
    EXPECT_TRUE(QTest::qWaitFor([&] { return m_view.isSharp() && !darkPixels(m_view, area).isNull(); }, 20'000));
    expectNear(QRectF(darkPixels(m_view, area)), QRectF(typed.first), 1);
    expectNear(QRectF(darkPixels(m_view, lastLine)), QRectF(typed.second), 1);
    EXPECT_LT(typed.second.left(), 3) << "Latin words, whatever stands before them";
}

TEST_F(InlineEditorsTest, aRetypedLineIsAPairThatIsUndoneInOneStep) {
    m_line.begin(lineOnScreen(1));
    type(QStringLiteral("Another second line"));
    key(Qt::Key_Return);
    const Annotations made = annotations();
    ASSERT_EQ(made.size(), 2U);
    const QRectF cover = made[0]->bounds();
    EXPECT_NEAR(cover.left(), line(1).left() - 2, 0.01);
    EXPECT_NEAR(cover.width(), line(1).width() + 4, 0.01);
    EXPECT_GE(cover.height(), 12 + 8 + 4);
    EXPECT_EQ(made[1]->contents(), QStringLiteral("Another second line"));
    EXPECT_EQ(made[1]->bounds().topLeft(), cover.topLeft());
    EXPECT_EQ(made[1]->bounds().height(), cover.height()) << "longer, but still one line";
    expectShowsAllOf(*made[1]);
    EXPECT_NEAR(made[1]->font()->pointSizeF(), 12, 0.01);
    m_undoManager->undo();
    expectUntouched();
    m_undoManager->redo();
    EXPECT_EQ(annotations(), made);
}

TEST_F(InlineEditorsTest, aLineIsReplacedUnlessItIsEmptiedOrGivenUpAndIsSeenOnADarkPageToo) {
    m_line.begin(lineOnScreen(0));
    key(Qt::Key_Delete);
    key(Qt::Key_Return);
    m_line.begin(lineOnScreen(0));
    type(QStringLiteral("given up"));
    key(Qt::Key_Escape);
    m_line.begin(m_view.convertFromPage(QPointF(300, 300), *page())); // no text there
    m_line.begin({2, 300});                                           // beside the pages
    EXPECT_FALSE(editor());
    expectUntouched();
    m_line.begin(lineOnScreen(0));
    m_line.begin(lineOnScreen(1)); // commits the first, which was left alone
    EXPECT_EQ(annotations().at(1)->contents(), QStringLiteral("First line of the page"));
    EXPECT_TRUE(m_undoManager->canUndo());
    m_view.setScaleFactor(0.5);
    m_line.begin(lineOnScreen(2)); // one letter
    EXPECT_NEAR(editor()->width(), 80, 1) << "never too narrow";
    key(Qt::Key_Escape);
    m_view.goToPage(page(1));
    m_line.begin(lineOnScreen(0, 1));
    EXPECT_EQ(editor()->palette().color(QPalette::Text), QColor(Qt::white));
    key(Qt::Key_Return);
    EXPECT_EQ(page(1)->annotations().back()->fontColor(), QColor(Qt::white));
}

TEST(PageBackgroundTest, takesTheColourOfThePlaceAndNotThatOfItsSurroundingsOrLetters) {
    const QRectF place(100, 300, 200, 20);
    // A blue field exactly where is asked, with a third of it in white stripes.
    const QByteArray field = "0 0 1 rg 100 300 200 20 re f 1 g 100 300 66 20 re f";
    const QByteArray black = "0 g 0 0 612 792 re f";
    const std::tuple<QByteArray, QColor, QRectF, const char*> papers[] = {
        {"0.5 g 0 0 612 792 re f", QColor::fromRgbF(8 / 15.0F, 8 / 15.0F, 8 / 15.0F), place, "[0 0 612 792]"},
        {field, Qt::blue, place, "[0 0 612 792]"},
        {field, Qt::white, place.translated(0, 25), "[0 0 612 792]"},
        {"0 0 1 rg -200 1300 200 20 re f", Qt::blue, {-200, 1300, 200, 20}, "[-300 1000 312 1792]"},
        {black, Qt::black, {-180, -70, 200, 80}, "[0 0 612 792]"}, // what is off the page doesn't count
        {black, Qt::black, {590, 300, 200, 20}, "[0 0 612 792]"},
        {black, Qt::white, {700, 900, 50, 50}, "[0 0 612 792]"}};
    for (const auto& [content, background, where, mediaBox] : papers) {
        PdfFixture fixture;
        fixture.addPageWithContent(content);
        fixture.setPageKey(0, "/MediaBox", mediaBox);
        const auto document = PDFDocument::fromData(fixture.bytes());
        EXPECT_EQ(PageBackground::sampleBackgroundColor(where, *document->page(0)).rgba(), background.rgba())
            << content.toStdString() << " at " << where.left() << ' ' << where.top();
    }
    for (const QColor& paper : {QColor(Qt::blue), QColor(Qt::green), QColor(Qt::black), QColor(136, 136, 136)})
        EXPECT_EQ(PageBackground::contrastingTextColor(paper), QColor(paper.green() > 100 ? Qt::black : Qt::white));
}

} // namespace
