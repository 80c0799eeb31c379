#include "AppTest.h"

#include "AnnotatingPDFView.h"
#include "FormFixture.h"
#include "PDFAnnotation.h"
#include "PDFEditorWorkspaceView.h"
#include "PDFFormField.h"
#include "PageMimeData.h"
#include "ThumbnailList.h"
#include "ThumbnailModel.h"
#include "ThumbnailSidebar.h"
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
    QTabBar* tabs() { return window()->findChild<QTabBar*>(QStringLiteral("documentTabs")); }
    std::shared_ptr<PDFEditorDocument> current() { return window()->currentContentView()->document(); }
};

TEST_F(DocumentWindowTest, documentsAreTabsOfOneWindow) {
    launch({file(QStringLiteral("a.pdf"))});
    DocumentWindow* first = window();
    EXPECT_FALSE(tabs()->isVisible());
    open(file(QStringLiteral("b & c.pdf")));
    open(file(QStringLiteral("d[*].pdf")));
    EXPECT_EQ(window(), first);
    EXPECT_TRUE(tabs()->isVisible());
    EXPECT_EQ(tabNames(),
              (QStringList{QStringLiteral("a.pdf"), QStringLiteral("b & c.pdf"), QStringLiteral("d[*].pdf")}));
    EXPECT_EQ(tabs()->tabText(1), QStringLiteral("b && c.pdf"));
    EXPECT_EQ(tabs()->tabToolTip(1), m_folder.filePath(QStringLiteral("b & c.pdf")));
    EXPECT_EQ(m_app->controller().currentDocument(), document(2));
    EXPECT_FALSE(window()->isWindowModified());
    EXPECT_TRUE(window()->windowTitle().startsWith(QStringLiteral("d[*][*].pdf")));

    // An open file comes forward instead of opening again.
    open(file(QStringLiteral("a.pdf")));
    EXPECT_EQ(tabs()->count(), 3);
    EXPECT_EQ(current()->displayName(), QStringLiteral("a.pdf"));

    tabs()->moveTab(0, 2);
    EXPECT_EQ(tabNames(),
              (QStringList{QStringLiteral("b & c.pdf"), QStringLiteral("d[*].pdf"), QStringLiteral("a.pdf")}));
    EXPECT_EQ(current()->displayName(), QStringLiteral("a.pdf"));
    QTest::mouseClick(tabs(), Qt::LeftButton, {}, tabs()->tabRect(0).center());
    EXPECT_EQ(current()->displayName(), QStringLiteral("b & c.pdf"));
    EXPECT_EQ(m_app->controller().currentDocument(), current());
    window()->findChild<QAction*>(QStringLiteral("previousTab"))->trigger();
    EXPECT_EQ(current()->displayName(), QStringLiteral("a.pdf"));
    window()->findChild<QAction*>(QStringLiteral("nextTab"))->trigger();
    EXPECT_EQ(current()->displayName(), QStringLiteral("b & c.pdf"));

    QTest::mouseClick(tabs(), Qt::MiddleButton, {}, tabs()->tabRect(1).center());
    settle();
    EXPECT_EQ(tabNames(), (QStringList{QStringLiteral("b & c.pdf"), QStringLiteral("a.pdf")}));
}

TEST_F(DocumentWindowTest, theNewTabButtonMakesAnUntitledDocument) {
    launch({file(QStringLiteral("a.pdf")), file(QStringLiteral("b.pdf"))});
    QTest::mouseClick(window()->findChild<QToolButton*>(QStringLiteral("newTabButton")), Qt::LeftButton);
    settle();
    EXPECT_EQ(tabNames().constLast(), QStringLiteral("Untitled"));
    EXPECT_EQ(current()->displayName(), QStringLiteral("Untitled"));
}

TEST_F(DocumentWindowTest, commandsAreEnabledOnlyWhileTheyCanDoSomething) {
    launch({file(QStringLiteral("a.pdf"), {.pageCount = 2})});
    const auto expectEnabled = [this](const QStringList& names, bool enabled) {
        for (const QString& name : names)
            EXPECT_EQ(command(name)->isEnabled(), enabled) << name.toStdString();
    };
    expectEnabled({QStringLiteral("close"), QStringLiteral("saveAs"), QStringLiteral("duplicate"),
                   QStringLiteral("selectAll"), QStringLiteral("nextPage"), QStringLiteral("lastPage"),
                   QStringLiteral("zoomToFit")},
                  true);
    expectEnabled({QStringLiteral("save"), QStringLiteral("revert"), QStringLiteral("undo"), QStringLiteral("redo"),
                   QStringLiteral("copy"), QStringLiteral("previousPage"), QStringLiteral("back"),
                   QStringLiteral("forward")},
                  false);

    edit(*document(0));
    expectEnabled({QStringLiteral("save"), QStringLiteral("revert"), QStringLiteral("undo")}, true);
    command(QStringLiteral("undo"))->trigger();
    settle();
    expectEnabled({QStringLiteral("save"), QStringLiteral("revert"), QStringLiteral("undo")}, false);

    command(QStringLiteral("firstPage"))->trigger();
    expectEnabled({QStringLiteral("previousPage")}, false);
    command(QStringLiteral("lastPage"))->trigger();
    expectEnabled({QStringLiteral("previousPage"), QStringLiteral("back")}, true);
    expectEnabled({QStringLiteral("nextPage")}, false);
    command(QStringLiteral("selectAll"))->trigger();
    expectEnabled({QStringLiteral("copy")}, true);
}

TEST_F(DocumentWindowTest, namesOfTabsStayLegibleInANarrowWindow) {
    launch({file(QStringLiteral("a.pdf"))});
    for (int i = 1; i < 8; ++i)
        open(file(QStringLiteral("The minutes of meeting %1 of the board.pdf").arg(i)));
    window()->resize(500, 600);
    settle();
    const int legible = tabs()->fontMetrics().horizontalAdvance(QStringLiteral("The m…d.pdf"));
    const auto room = [this](int tab) {
        return tabs()->tabRect(tab).width() - tabs()->tabButton(tab, QTabBar::RightSide)->width();
    };
    for (int i = 1; i < 8; ++i)
        EXPECT_GE(room(i), legible) << i;
    EXPECT_LT(room(0), legible) << "A short name takes no more than it needs.";
    EXPECT_TRUE(tabs()->rect().contains(tabs()->tabRect(7).center()));
}

TEST_F(DocumentWindowTest, theMenuBelongsToTheCurrentTab) {
    launch({file(QStringLiteral("a.pdf"))});
    auto* firstView = window()->currentContentView()->workspace()->pdfView();
    open(file(QStringLiteral("locked.pdf"), {.password = "key"}));
    const auto entries = [this](const QString& menu) {
        QList<QAction*> actions;
        for (QAction* title : window()->menuBar()->actions()) {
            if (title->text().remove(QLatin1Char('&')) == menu)
                actions = title->menu()->actions();
        }
        return actions;
    };
    for (const QString& menu : {QStringLiteral("Go"), QStringLiteral("Tools")}) {
        ASSERT_FALSE(entries(menu).isEmpty());
        for (const QAction* entry : entries(menu))
            EXPECT_TRUE(entry->isSeparator() || !entry->isEnabled()) << entry->text().toStdString();
    }
    EXPECT_FALSE(command(QStringLiteral("saveAs"))->isEnabled());
    const auto prints = [&entries] {
        QList<QAction*> actions = entries(QStringLiteral("File"));
        actions.removeIf([](const QAction* entry) { return entry->objectName() != QLatin1String("print"); });
        return actions;
    };
    ASSERT_EQ(prints().size(), 1);
    EXPECT_FALSE(prints().constFirst()->isEnabled());

    window()->setCurrent(window()->contentViews().front());
    ASSERT_EQ(prints().size(), 1);
    EXPECT_TRUE(prints().constFirst()->isEnabled());
    EXPECT_TRUE(entries(QStringLiteral("Go")).contains(firstView->action(PDFViewCommand::goToNextPage)));
    QTest::keyClick(window(), Qt::Key_Down, Qt::ControlModifier);
    EXPECT_EQ(firstView->currentPageIndex(), 1);
    const double scale = firstView->scaleFactor();
    QTest::keyClick(window(), Qt::Key_Equal, Qt::ControlModifier);
    EXPECT_NEAR(firstView->scaleFactor(), scale + 0.15, 1e-9);
}

TEST_F(DocumentWindowTest, aToolIsChosenForTheCurrentTab) {
    launch({file(QStringLiteral("a.pdf")), file(QStringLiteral("b.pdf"))});
    const auto toolOf = [this](std::size_t tab) {
        return window()->contentViews()[tab]->workspace()->pdfView()->toolState()->tool();
    };
    window()->setCurrent(window()->contentViews()[0]);
    QTest::keyClick(window(), Qt::Key_2, Qt::ControlModifier);
    window()->setCurrent(window()->contentViews()[1]);
    QTest::keyClick(window(), Qt::Key_F, Qt::ControlModifier);
    EXPECT_EQ(toolOf(0), AnnotationTool::ink);
    EXPECT_EQ(toolOf(1), AnnotationTool::form);
    EXPECT_TRUE(command(QStringLiteral("form"))->isChecked());
    command(QStringLiteral("oval"))->trigger();
    EXPECT_EQ(toolOf(0), AnnotationTool::ink);
    EXPECT_EQ(toolOf(1), AnnotationTool::oval);
    command(QStringLiteral("editText"))->trigger();
    EXPECT_EQ(toolOf(1), AnnotationTool::select);
    EXPECT_TRUE(command(QStringLiteral("editText"))->isChecked());
}

TEST_F(DocumentWindowTest, theEditedMarkShowsOnTabAndWindow) {
    launch({file(QStringLiteral("a.pdf")), file(QStringLiteral("b.pdf"))});
    edit(*document(1));
    EXPECT_EQ(tabs()->tabText(1), QStringLiteral("• b.pdf"));
    EXPECT_TRUE(window()->isWindowModified());
    command(QStringLiteral("save"))->trigger();
    settle();
    EXPECT_EQ(tabs()->tabText(1), QStringLiteral("b.pdf"));
    EXPECT_FALSE(window()->isWindowModified());
    EXPECT_EQ(PDFDocument::fromFile(m_folder.filePath(QStringLiteral("b.pdf")))->pageCount(), 2);
}

TEST_F(DocumentWindowTest, whatIsBeingTypedIsSavedAndAskedAbout) {
    launch({file(QStringLiteral("a.pdf"))});
    const auto type = [this](const QString& text) {
        command(QStringLiteral("textBox"))->trigger();
        AnnotatingPDFView* const view = window()->currentContentView()->workspace()->pdfView();
        QTest::mouseClick(view->viewport(), Qt::LeftButton, {}, view->viewport()->rect().center());
        auto* const editor = view->viewport()->findChild<QTextEdit*>();
        ASSERT_TRUE(editor);
        QTest::keyClicks(editor, text);
    };
    type(QStringLiteral("saved"));
    EXPECT_FALSE(document(0)->isDocumentEdited());
    ASSERT_TRUE(command(QStringLiteral("save"))->isEnabled());
    command(QStringLiteral("save"))->trigger();
    settle();
    const auto saved = PDFDocument::fromFile(m_folder.filePath(QStringLiteral("a.pdf")));
    ASSERT_EQ(saved->page(0)->annotations().size(), 1U);
    EXPECT_EQ(saved->page(0)->annotations()[0]->contents(), QStringLiteral("saved"));
    EXPECT_FALSE(command(QStringLiteral("save"))->isEnabled());

    type(QStringLiteral("not saved"));
    m_dialogs->saveAnswers = {SaveAnswer::Cancel};
    command(QStringLiteral("close"))->trigger();
    settle();
    EXPECT_EQ(m_dialogs->askedToSave, QStringList{QStringLiteral("a.pdf")});
    EXPECT_EQ(document(0)->pdfDocument()->page(0)->annotations().size(), 2U);
}

TEST_F(DocumentWindowTest, undoIsAboutTheFieldThatIsBeingFilled) {
    QFile form(m_folder.filePath(QStringLiteral("form.pdf")));
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
    QTest::keyClicks(line, QStringLiteral("Ada"));
    command(QStringLiteral("undo"))->trigger();
    EXPECT_EQ(line->text(), QString());
    command(QStringLiteral("redo"))->trigger();
    EXPECT_EQ(line->text(), QStringLiteral("Ada"));
    EXPECT_FALSE(document(0)->isDocumentEdited());

    click(FormFixture::fruit);
    auto* const list = view->viewport()->findChild<QListWidget*>();
    ASSERT_TRUE(list);
    EXPECT_TRUE(document(0)->isDocumentEdited());
    list->setCurrentRow(list->count() - 1);
    command(QStringLiteral("undo"))->trigger(); // what was chosen, and not what was typed before
    EXPECT_FALSE(list->isVisible());
    EXPECT_TRUE(document(0)->undoManager()->canRedo());
    EXPECT_TRUE(document(0)->undoManager()->canUndo());
    command(QStringLiteral("undo"))->trigger();
    EXPECT_FALSE(document(0)->isDocumentEdited());

    click(FormFixture::name);
    QTest::keyClicks(window()->focusWidget(), QStringLiteral("Bob"));
    command(QStringLiteral("save"))->trigger();
    settle();
    QTest::keyClicks(window()->focusWidget(), QStringLiteral("by"));
    EXPECT_EQ(view->viewport()->findChild<QLineEdit*>()->text(), QStringLiteral("Bobby"));
    const auto value = [](const std::shared_ptr<PDFDocument>& pdf) {
        return PDFFormField::of(pdf->page(0)->annotation(FormFixture::name.center()))->value().join(u'|');
    };
    EXPECT_EQ(value(PDFDocument::fromFile(form.fileName())), QStringLiteral("Bob"));
}

TEST_F(DocumentWindowTest, closingATabAsksWhatBecomesOfItsChanges) {
    launch({file(QStringLiteral("a.pdf")), file(QStringLiteral("b.pdf"))});
    edit(*document(1));
    const auto edited = document(1);

    m_dialogs->saveAnswers = {SaveAnswer::Cancel};
    command(QStringLiteral("close"))->trigger();
    settle();
    EXPECT_EQ(tabNames(), (QStringList{QStringLiteral("a.pdf"), QStringLiteral("b.pdf")}));

    // The close button of the tab, and a save that fails: the tab stays.
    m_dialogs->saveAnswers = {SaveAnswer::Save};
    edited->setFileURL(QUrl::fromLocalFile(m_folder.filePath(QStringLiteral("gone/b.pdf"))));
    QTest::mouseClick(tabs()->tabButton(1, QTabBar::RightSide), Qt::LeftButton);
    settle();
    EXPECT_EQ(tabs()->count(), 2);
    EXPECT_EQ(m_dialogs->errors.size(), 1);

    edited->setFileURL(QUrl::fromLocalFile(m_folder.filePath(QStringLiteral("saved.pdf"))));
    m_dialogs->saveAnswers = {SaveAnswer::Save};
    command(QStringLiteral("close"))->trigger();
    settle();
    EXPECT_EQ(tabNames(), QStringList{QStringLiteral("a.pdf")});
    EXPECT_EQ(PDFDocument::fromFile(m_folder.filePath(QStringLiteral("saved.pdf")))->pageCount(), 2);
    EXPECT_EQ(m_dialogs->askedToSave,
              (QStringList{QStringLiteral("b.pdf"), QStringLiteral("b.pdf"), QStringLiteral("saved.pdf")}));
}

TEST_F(DocumentWindowTest, saveAsAsksForAPlaceAndTakesItsName) {
    launch({file(QStringLiteral("a.pdf"))});
    command(QStringLiteral("saveAs"))->trigger();
    settle();
    EXPECT_EQ(m_dialogs->suggestedPaths, QStringList{m_folder.filePath(QStringLiteral("a.pdf"))});
    EXPECT_EQ(tabNames(), QStringList{QStringLiteral("a.pdf")});

    m_dialogs->saveLocation = m_folder.filePath(QStringLiteral("copy.pdf"));
    command(QStringLiteral("saveAs"))->trigger();
    settle();
    EXPECT_EQ(tabNames(), QStringList{QStringLiteral("copy.pdf")});
    EXPECT_TRUE(window()->windowTitle().startsWith(QStringLiteral("copy.pdf")));
    EXPECT_EQ(PDFDocument::fromFile(*m_dialogs->saveLocation)->pageCount(), 3);
}

TEST_F(DocumentWindowTest, closingTheWindowAsksOnceForAllEditedDocuments) {
    launch({file(QStringLiteral("a.pdf")), file(QStringLiteral("b.pdf")), file(QStringLiteral("c.pdf"))});
    edit(*document(1));
    edit(*document(2));
    m_dialogs->saveAnswers = {SaveAnswer::Cancel};
    EXPECT_FALSE(window()->close());
    settle();
    EXPECT_EQ(tabNames(), (QStringList{QStringLiteral("a.pdf"), QStringLiteral("b.pdf"), QStringLiteral("c.pdf")}));
    EXPECT_EQ(m_dialogs->askedToSave, QStringList{QStringLiteral("b.pdf,c.pdf")});

    m_dialogs->saveAnswers = {SaveAnswer::Save};
    m_dialogs->unchecked = QStringList{QStringLiteral("c.pdf")};
    window()->close();
    settle();
    EXPECT_EQ(PDFDocument::fromFile(m_folder.filePath(QStringLiteral("b.pdf")))->pageCount(), 2);
    EXPECT_EQ(PDFDocument::fromFile(m_folder.filePath(QStringLiteral("c.pdf")))->pageCount(), 3);
    EXPECT_EQ(window(), nullptr);
    EXPECT_TRUE(m_app->controller().documents().empty());
    EXPECT_TRUE(landingIsVisible());
}

TEST_F(DocumentWindowTest, cancellingTheUnlockScreenClosesItsTab) {
    launch({file(QStringLiteral("a.pdf")), file(QStringLiteral("locked.pdf"), {.password = "key"})});
    ASSERT_EQ(current()->displayName(), QStringLiteral("locked.pdf"));
    Q_EMIT window()->currentContentView()->closeRequested();
    settle();
    EXPECT_EQ(tabNames(), QStringList{QStringLiteral("a.pdf")});
}

TEST_F(DocumentWindowTest, filesDroppedOnTheWindowOpenInTabs) {
    launch({file(QStringLiteral("a.pdf"))});
    QMimeData data;
    data.setUrls({file(QStringLiteral("dropped.pdf")), file(QStringLiteral("too.pdf"))});
    QDragEnterEvent enter(QPoint(200, 200), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(window(), &enter);
    EXPECT_TRUE(enter.isAccepted());
    QDropEvent drop(QPointF(200, 200), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(window(), &drop);
    settle();
    EXPECT_EQ(tabNames(),
              (QStringList{QStringLiteral("a.pdf"), QStringLiteral("dropped.pdf"), QStringLiteral("too.pdf")}));
}

TEST_F(DocumentWindowTest, pagesDraggedOntoAnotherDocumentAreCopiedToItsEnd) {
    launch({file(QStringLiteral("a.pdf"), {.pageCount = 3}), file(QStringLiteral("b.pdf"), {.pageCount = 2}),
            file(QStringLiteral("locked.pdf"), {.password = "secret"})});
    const auto send = [](QWidget* target, QPoint at, QMimeData& data) {
        QDragEnterEvent enter(at, Qt::CopyAction | Qt::MoveAction, &data, Qt::LeftButton, {});
        QApplication::sendEvent(target, &enter);
        QDropEvent drop(at, Qt::CopyAction | Qt::MoveAction, &data, Qt::LeftButton, {});
        if (enter.isAccepted())
            QApplication::sendEvent(target, &drop);
        return enter.isAccepted() && drop.isAccepted();
    };
    PageMimeData pages(document(0), {0, 2}, 2);
    send(tabs(), tabs()->tabRect(1).center(), pages);
    EXPECT_EQ(document(1)->pdfDocument()->pageCount(), 4);
    EXPECT_EQ(document(1)->pdfDocument()->page(3)->string().trimmed(), QStringLiteral("Page 3"));
    settle();
    document(1)->undoManager()->undo();
    EXPECT_EQ(document(1)->pdfDocument()->pageCount(), 2);
    // Held over a tab, it comes to the front; the pages there take them too.
    QDragEnterEvent hover(tabs()->tabRect(1).center(), Qt::CopyAction, &pages, Qt::LeftButton, {});
    QApplication::sendEvent(tabs(), &hover);
    EXPECT_TRUE(QTest::qWaitFor([this] { return current() == document(1); }));
    EXPECT_TRUE(send(window(), window()->rect().center(), pages));
    EXPECT_EQ(document(1)->pdfDocument()->pageCount(), 4);
    // Neither their own document nor one that is locked takes them.
    send(tabs(), tabs()->tabRect(0).center(), pages);
    send(tabs(), tabs()->tabRect(2).center(), pages);
    window()->setCurrent(window()->contentViews().front());
    EXPECT_FALSE(send(window(), window()->rect().center(), pages));
    EXPECT_FALSE(document(0)->isDocumentEdited());
    EXPECT_FALSE(document(2)->isDocumentEdited());
    m_dialogs->saveAnswers = {SaveAnswer::DontSave};
}

TEST_F(DocumentWindowTest, withoutItsLastPageADocumentIsAnEmptyOneUntilThatIsUndone) {
    launch({file(QStringLiteral("a.pdf"), {.pageCount = 2})});
    command(QStringLiteral("toggleSidebar"))->trigger();
    EXPECT_FALSE(window()->currentContentView()->workspace()->showsSidebar());
    EXPECT_FALSE(command(QStringLiteral("toggleSidebar"))->isChecked());
    command(QStringLiteral("toggleSidebar"))->trigger();
    window()->currentContentView()->workspace()->sidebar().deletePages({0, 1});
    settle();
    EXPECT_FALSE(window()->currentContentView()->workspace());
    EXPECT_FALSE(command(QStringLiteral("toggleSidebar"))->isEnabled());
    command(QStringLiteral("undo"))->trigger();
    settle();
    ASSERT_TRUE(window()->currentContentView()->workspace());
    EXPECT_EQ(window()->currentContentView()->workspace()->sidebar().list().model().rowCount(), 2);
    EXPECT_FALSE(current()->isDocumentEdited());
}
