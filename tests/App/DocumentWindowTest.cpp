#include "AppTest.h"

#include "AnnotatingPDFView.h"
#include "FormFixture.h"
#include "PDFAnnotation.h"
#include "PDFEditorWorkspaceView.h"
#include "PDFFormField.h"
#include "ToolState.h"

#include <QCloseEvent>
#include <QDropEvent>
#include <QFile>
#include <QLineEdit>
#include <QListWidget>
#include <QMenuBar>
#include <QMimeData>
#include <QTabBar>
#include <QTextEdit>
#include <QToolButton>

using SaveAnswer = ScriptedDialogs::SaveAnswer;

class DocumentWindowTest : public AppTest {
protected:
    QTabBar* tabs() { return window()->findChild<QTabBar*>(u"documentTabs"_qs); }
    std::shared_ptr<PDFEditorDocument> current() { return window()->currentContentView()->document(); }
};

TEST_F(DocumentWindowTest, documentsAreTabsOfOneWindow) {
    launch({file(u"a.pdf"_qs)});
    DocumentWindow* first = window();
    EXPECT_FALSE(tabs()->isVisible());
    open(file(u"b & c.pdf"_qs));
    open(file(u"d[*].pdf"_qs));
    EXPECT_EQ(window(), first);
    EXPECT_TRUE(tabs()->isVisible());
    EXPECT_EQ(tabNames(), (QStringList{u"a.pdf"_qs, u"b & c.pdf"_qs, u"d[*].pdf"_qs}));
    EXPECT_EQ(tabs()->tabText(1), u"b && c.pdf"_qs);
    EXPECT_EQ(tabs()->tabToolTip(1), m_folder.filePath(u"b & c.pdf"_qs));
    EXPECT_EQ(m_app->controller().currentDocument(), document(2));
    EXPECT_FALSE(window()->isWindowModified());
    EXPECT_TRUE(window()->windowTitle().startsWith(u"d[*][*].pdf"_qs));

    // An open file comes forward instead of opening again.
    open(file(u"a.pdf"_qs));
    EXPECT_EQ(tabs()->count(), 3);
    EXPECT_EQ(current()->displayName(), u"a.pdf"_qs);

    tabs()->moveTab(0, 2);
    EXPECT_EQ(tabNames(), (QStringList{u"b & c.pdf"_qs, u"d[*].pdf"_qs, u"a.pdf"_qs}));
    EXPECT_EQ(current()->displayName(), u"a.pdf"_qs);
    QTest::mouseClick(tabs(), Qt::LeftButton, {}, tabs()->tabRect(0).center());
    EXPECT_EQ(current()->displayName(), u"b & c.pdf"_qs);
    EXPECT_EQ(m_app->controller().currentDocument(), current());
    window()->findChild<QAction*>(u"previousTab"_qs)->trigger();
    EXPECT_EQ(current()->displayName(), u"a.pdf"_qs);
    window()->findChild<QAction*>(u"nextTab"_qs)->trigger();
    EXPECT_EQ(current()->displayName(), u"b & c.pdf"_qs);

    QTest::mouseClick(tabs(), Qt::MiddleButton, {}, tabs()->tabRect(1).center());
    settle();
    EXPECT_EQ(tabNames(), (QStringList{u"b & c.pdf"_qs, u"a.pdf"_qs}));
}

TEST_F(DocumentWindowTest, theNewTabButtonMakesAnUntitledDocument) {
    launch({file(u"a.pdf"_qs), file(u"b.pdf"_qs)});
    QTest::mouseClick(window()->findChild<QToolButton*>(u"newTabButton"_qs), Qt::LeftButton);
    settle();
    EXPECT_EQ(tabNames().constLast(), u"Untitled"_qs);
    EXPECT_EQ(current()->displayName(), u"Untitled"_qs);
}

TEST_F(DocumentWindowTest, commandsAreEnabledOnlyWhileTheyCanDoSomething) {
    launch({file(u"a.pdf"_qs, {.pageCount = 2})});
    const auto expectEnabled = [this](const QStringList& names, bool enabled) {
        for (const QString& name : names)
            EXPECT_EQ(command(name)->isEnabled(), enabled) << name.toStdString();
    };
    expectEnabled(
        {u"close"_qs, u"saveAs"_qs, u"duplicate"_qs, u"selectAll"_qs, u"nextPage"_qs, u"lastPage"_qs, u"zoomToFit"_qs},
        true);
    expectEnabled(
        {u"save"_qs, u"revert"_qs, u"undo"_qs, u"redo"_qs, u"copy"_qs, u"previousPage"_qs, u"back"_qs, u"forward"_qs},
        false);

    edit(*document(0));
    expectEnabled({u"save"_qs, u"revert"_qs, u"undo"_qs}, true);
    command(u"undo"_qs)->trigger();
    settle();
    expectEnabled({u"save"_qs, u"revert"_qs, u"undo"_qs}, false);

    command(u"firstPage"_qs)->trigger();
    expectEnabled({u"previousPage"_qs}, false);
    command(u"lastPage"_qs)->trigger();
    expectEnabled({u"previousPage"_qs, u"back"_qs}, true);
    expectEnabled({u"nextPage"_qs}, false);
    command(u"selectAll"_qs)->trigger();
    expectEnabled({u"copy"_qs}, true);
}

TEST_F(DocumentWindowTest, namesOfTabsStayLegibleInANarrowWindow) {
    launch({file(u"a.pdf"_qs)});
    for (int i = 1; i < 8; ++i)
        open(file(u"The minutes of meeting %1 of the board.pdf"_qs.arg(i)));
    window()->resize(500, 600);
    settle();
    const int legible = tabs()->fontMetrics().horizontalAdvance(u"The m…d.pdf"_qs);
    const auto room = [this](int tab) {
        return tabs()->tabRect(tab).width() - tabs()->tabButton(tab, QTabBar::RightSide)->width();
    };
    for (int i = 1; i < 8; ++i)
        EXPECT_GE(room(i), legible) << i;
    EXPECT_LT(room(0), legible) << "A short name takes no more than it needs.";
    EXPECT_TRUE(tabs()->rect().contains(tabs()->tabRect(7).center()));
}

TEST_F(DocumentWindowTest, theMenuBelongsToTheCurrentTab) {
    launch({file(u"a.pdf"_qs)});
    auto* firstView = window()->currentContentView()->workspace()->pdfView();
    open(file(u"locked.pdf"_qs, {.password = "key"}));
    const auto entries = [this](const QString& menu) {
        QList<QAction*> actions;
        for (QAction* title : window()->menuBar()->actions()) {
            if (title->text().remove(QLatin1Char('&')) == menu)
                actions = title->menu()->actions();
        }
        return actions;
    };
    for (const QString& menu : {u"Go"_qs, u"Tools"_qs}) {
        ASSERT_FALSE(entries(menu).isEmpty());
        for (const QAction* entry : entries(menu))
            EXPECT_TRUE(entry->isSeparator() || !entry->isEnabled()) << entry->text().toStdString();
    }
    EXPECT_FALSE(command(u"saveAs"_qs)->isEnabled());
    const auto prints = [&entries] {
        QList<QAction*> actions = entries(u"File"_qs);
        actions.removeIf([](const QAction* entry) { return entry->objectName() != QLatin1String("print"); });
        return actions;
    };
    ASSERT_EQ(prints().size(), 1);
    EXPECT_FALSE(prints().constFirst()->isEnabled());

    window()->setCurrent(window()->contentViews().front());
    ASSERT_EQ(prints().size(), 1);
    EXPECT_TRUE(prints().constFirst()->isEnabled());
    EXPECT_TRUE(entries(u"Go"_qs).contains(firstView->action(PDFViewCommand::goToNextPage)));
    QTest::keyClick(window(), Qt::Key_Down, Qt::ControlModifier);
    EXPECT_EQ(firstView->currentPageIndex(), 1);
    const double scale = firstView->scaleFactor();
    QTest::keyClick(window(), Qt::Key_Equal, Qt::ControlModifier);
    EXPECT_NEAR(firstView->scaleFactor(), scale + 0.15, 1e-9);
}

TEST_F(DocumentWindowTest, aToolIsChosenForTheCurrentTab) {
    launch({file(u"a.pdf"_qs), file(u"b.pdf"_qs)});
    const auto toolOf = [this](std::size_t tab) {
        return window()->contentViews()[tab]->workspace()->pdfView()->toolState()->tool();
    };
    window()->setCurrent(window()->contentViews()[0]);
    QTest::keyClick(window(), Qt::Key_2, Qt::ControlModifier);
    window()->setCurrent(window()->contentViews()[1]);
    QTest::keyClick(window(), Qt::Key_F, Qt::ControlModifier);
    EXPECT_EQ(toolOf(0), AnnotationTool::ink);
    EXPECT_EQ(toolOf(1), AnnotationTool::form);
    EXPECT_TRUE(command(u"form"_qs)->isChecked());
    command(u"oval"_qs)->trigger();
    EXPECT_EQ(toolOf(0), AnnotationTool::ink);
    EXPECT_EQ(toolOf(1), AnnotationTool::oval);
    command(u"editText"_qs)->trigger();
    EXPECT_EQ(toolOf(1), AnnotationTool::select);
    EXPECT_TRUE(command(u"editText"_qs)->isChecked());
}

TEST_F(DocumentWindowTest, theEditedMarkShowsOnTabAndWindow) {
    launch({file(u"a.pdf"_qs), file(u"b.pdf"_qs)});
    edit(*document(1));
    EXPECT_EQ(tabs()->tabText(1), u"• b.pdf"_qs);
    EXPECT_TRUE(window()->isWindowModified());
    command(u"save"_qs)->trigger();
    settle();
    EXPECT_EQ(tabs()->tabText(1), u"b.pdf"_qs);
    EXPECT_FALSE(window()->isWindowModified());
    EXPECT_EQ(PDFDocument::fromFile(m_folder.filePath(u"b.pdf"_qs))->pageCount(), 2);
}

TEST_F(DocumentWindowTest, whatIsBeingTypedIsSavedAndAskedAbout) {
    launch({file(u"a.pdf"_qs)});
    const auto type = [this](const QString& text) {
        command(u"textBox"_qs)->trigger();
        AnnotatingPDFView* const view = window()->currentContentView()->workspace()->pdfView();
        QTest::mouseClick(view->viewport(), Qt::LeftButton, {}, view->viewport()->rect().center());
        auto* const editor = view->viewport()->findChild<QTextEdit*>();
        ASSERT_TRUE(editor);
        QTest::keyClicks(editor, text);
    };
    type(u"saved"_qs);
    EXPECT_FALSE(document(0)->isDocumentEdited());
    ASSERT_TRUE(command(u"save"_qs)->isEnabled());
    command(u"save"_qs)->trigger();
    settle();
    const auto saved = PDFDocument::fromFile(m_folder.filePath(u"a.pdf"_qs));
    ASSERT_EQ(saved->page(0)->annotations().size(), 1U);
    EXPECT_EQ(saved->page(0)->annotations()[0]->contents(), u"saved"_qs);
    EXPECT_FALSE(command(u"save"_qs)->isEnabled());

    type(u"not saved"_qs);
    m_dialogs->saveAnswers = {SaveAnswer::Cancel};
    command(u"close"_qs)->trigger();
    settle();
    EXPECT_EQ(m_dialogs->askedToSave, QStringList{u"a.pdf"_qs});
    EXPECT_EQ(document(0)->pdfDocument()->page(0)->annotations().size(), 2U);
}

TEST_F(DocumentWindowTest, undoIsAboutTheFieldThatIsBeingFilled) {
    QFile form(m_folder.filePath(u"form.pdf"_qs));
    ASSERT_TRUE(form.open(QFile::WriteOnly));
    form.write(FormFixture::bytes());
    form.close();
    launch({QUrl::fromLocalFile(form.fileName())});
    AnnotatingPDFView* const view = window()->currentContentView()->workspace()->pdfView();
    const auto click = [&](const QRectF& field) {
        const std::shared_ptr<PDFPage> page = document(0)->pdfDocument()->page(0);
        view->reveal(*page->annotation(field.center()));
        QTest::mouseClick(view->viewport(), Qt::LeftButton, {}, view->convertFromPage(field, *page).center().toPoint());
    };
    click(FormFixture::name);
    auto* const line = view->viewport()->findChild<QLineEdit*>();
    ASSERT_TRUE(line);
    QTest::keyClicks(line, u"Ada"_qs);
    command(u"undo"_qs)->trigger();
    EXPECT_EQ(line->text(), QString());
    command(u"redo"_qs)->trigger();
    EXPECT_EQ(line->text(), u"Ada"_qs);
    EXPECT_FALSE(document(0)->isDocumentEdited());

    click(FormFixture::fruit);
    auto* const list = view->viewport()->findChild<QListWidget*>();
    ASSERT_TRUE(list);
    EXPECT_TRUE(document(0)->isDocumentEdited());
    list->setCurrentRow(list->count() - 1);
    command(u"undo"_qs)->trigger(); // what was chosen, and not what was typed before
    EXPECT_FALSE(list->isVisible());
    EXPECT_TRUE(document(0)->undoManager()->canRedo());
    EXPECT_TRUE(document(0)->undoManager()->canUndo());
    command(u"undo"_qs)->trigger();
    EXPECT_FALSE(document(0)->isDocumentEdited());

    click(FormFixture::name);
    QTest::keyClicks(window()->focusWidget(), u"Bob"_qs);
    command(u"save"_qs)->trigger();
    settle();
    QTest::keyClicks(window()->focusWidget(), u"by"_qs);
    EXPECT_EQ(view->viewport()->findChild<QLineEdit*>()->text(), u"Bobby"_qs);
    const auto value = [](const std::shared_ptr<PDFDocument>& pdf) {
        return PDFFormField::of(pdf->page(0)->annotation(FormFixture::name.center()))->value().join(u'|');
    };
    EXPECT_EQ(value(PDFDocument::fromFile(form.fileName())), u"Bob"_qs);
}

TEST_F(DocumentWindowTest, closingATabAsksWhatBecomesOfItsChanges) {
    launch({file(u"a.pdf"_qs), file(u"b.pdf"_qs)});
    edit(*document(1));
    const auto edited = document(1);

    m_dialogs->saveAnswers = {SaveAnswer::Cancel};
    command(u"close"_qs)->trigger();
    settle();
    EXPECT_EQ(tabNames(), (QStringList{u"a.pdf"_qs, u"b.pdf"_qs}));

    // The close button of the tab, and a save that fails: the tab stays.
    m_dialogs->saveAnswers = {SaveAnswer::Save};
    edited->setFileURL(QUrl::fromLocalFile(m_folder.filePath(u"gone/b.pdf"_qs)));
    QTest::mouseClick(tabs()->tabButton(1, QTabBar::RightSide), Qt::LeftButton);
    settle();
    EXPECT_EQ(tabs()->count(), 2);
    EXPECT_EQ(m_dialogs->errors.size(), 1);

    edited->setFileURL(QUrl::fromLocalFile(m_folder.filePath(u"saved.pdf"_qs)));
    m_dialogs->saveAnswers = {SaveAnswer::Save};
    command(u"close"_qs)->trigger();
    settle();
    EXPECT_EQ(tabNames(), QStringList{u"a.pdf"_qs});
    EXPECT_EQ(PDFDocument::fromFile(m_folder.filePath(u"saved.pdf"_qs))->pageCount(), 2);
    EXPECT_EQ(m_dialogs->askedToSave, (QStringList{u"b.pdf"_qs, u"b.pdf"_qs, u"saved.pdf"_qs}));
}

TEST_F(DocumentWindowTest, saveAsAsksForAPlaceAndTakesItsName) {
    launch({file(u"a.pdf"_qs)});
    command(u"saveAs"_qs)->trigger();
    settle();
    EXPECT_EQ(m_dialogs->suggestedPaths, QStringList{m_folder.filePath(u"a.pdf"_qs)});
    EXPECT_EQ(tabNames(), QStringList{u"a.pdf"_qs});

    m_dialogs->saveLocation = m_folder.filePath(u"copy.pdf"_qs);
    command(u"saveAs"_qs)->trigger();
    settle();
    EXPECT_EQ(tabNames(), QStringList{u"copy.pdf"_qs});
    EXPECT_TRUE(window()->windowTitle().startsWith(u"copy.pdf"_qs));
    EXPECT_EQ(PDFDocument::fromFile(*m_dialogs->saveLocation)->pageCount(), 3);
}

TEST_F(DocumentWindowTest, closingTheWindowAsksOnceForAllEditedDocuments) {
    launch({file(u"a.pdf"_qs), file(u"b.pdf"_qs), file(u"c.pdf"_qs)});
    edit(*document(1));
    edit(*document(2));
    m_dialogs->saveAnswers = {SaveAnswer::Cancel};
    EXPECT_FALSE(window()->close());
    settle();
    EXPECT_EQ(tabNames(), (QStringList{u"a.pdf"_qs, u"b.pdf"_qs, u"c.pdf"_qs}));
    EXPECT_EQ(m_dialogs->askedToSave, QStringList{u"b.pdf,c.pdf"_qs});

    m_dialogs->saveAnswers = {SaveAnswer::Save};
    m_dialogs->unchecked = QStringList{u"c.pdf"_qs};
    window()->close();
    settle();
    EXPECT_EQ(PDFDocument::fromFile(m_folder.filePath(u"b.pdf"_qs))->pageCount(), 2);
    EXPECT_EQ(PDFDocument::fromFile(m_folder.filePath(u"c.pdf"_qs))->pageCount(), 3);
    EXPECT_EQ(window(), nullptr);
    EXPECT_TRUE(m_app->controller().documents().empty());
    EXPECT_TRUE(landingIsVisible());
}

TEST_F(DocumentWindowTest, cancellingTheUnlockScreenClosesItsTab) {
    launch({file(u"a.pdf"_qs), file(u"locked.pdf"_qs, {.password = "key"})});
    ASSERT_EQ(current()->displayName(), u"locked.pdf"_qs);
    Q_EMIT window()->currentContentView()->closeRequested();
    settle();
    EXPECT_EQ(tabNames(), QStringList{u"a.pdf"_qs});
}

TEST_F(DocumentWindowTest, aFileDroppedOnTheWindowOpensInATab) {
    launch({file(u"a.pdf"_qs)});
    QMimeData data;
    data.setUrls({file(u"dropped.pdf"_qs)});
    QDragEnterEvent enter(QPoint(200, 200), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(window(), &enter);
    EXPECT_TRUE(enter.isAccepted());
    QDropEvent drop(QPointF(200, 200), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(window(), &drop);
    settle();
    EXPECT_EQ(tabNames(), (QStringList{u"a.pdf"_qs, u"dropped.pdf"_qs}));
}
