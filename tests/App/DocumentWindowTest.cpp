#include "AppTest.h"

#include "FormFixture.h"
#include "PDFAnnotation.h"
#include "PDFFormField.h"
#include "PageMimeData.h"
#include "ThumbnailSidebar.h"
#include "ToolState.h"

#include <QContextMenuEvent>
#include <QDropEvent>
#include <QLineEdit>
#include <QListWidget>
#include <QMimeData>
#include <QToolButton>

class DocumentWindowTest : public AppTest {
protected:
    std::shared_ptr<PDFEditorDocument> current() { return window()->currentContentView()->document(); }
    QPoint middleOfTab(int tab) { return tabs()->tabRect(tab).center(); }

    void expectEnabled(std::initializer_list<const char*> names, bool enabled) {
        for (const char* name : names)
            EXPECT_EQ(command(name)->isEnabled(), enabled) << name;
    }
};

TEST_F(DocumentWindowTest, documentsAreTabsOfOneWindow) {
    launch({file("a.pdf")});
    EXPECT_FALSE(tabs()->isVisible());
    open(file("b.pdf"));
    open(file("c.pdf"));
    EXPECT_TRUE(tabs()->isVisible());
    EXPECT_EQ(tabNames(), "a.pdf, b.pdf, c.pdf");
    EXPECT_EQ(tabs()->tabToolTip(1), path("b.pdf"));
    open(file("a.pdf"));
    EXPECT_EQ(current(), document(0)) << "it comes forward";

    tabs()->moveTab(0, 2);
    EXPECT_EQ(tabNames(), "b.pdf, c.pdf, a.pdf");
    QTest::mouseClick(tabs(), Qt::LeftButton, {}, middleOfTab(0));
    EXPECT_EQ(current(), document(1));
    EXPECT_EQ(m_app->controller().currentDocument(), current());
    window()->findChild<QAction*>(QStringLiteral("previousTab"))->trigger();
    EXPECT_EQ(current(), document(0));
    window()->findChild<QAction*>(QStringLiteral("nextTab"))->trigger();
    EXPECT_EQ(current(), document(1));

    QContextMenuEvent asked(QContextMenuEvent::Mouse, middleOfTab(1), tabs()->mapToGlobal(middleOfTab(1)));
    QCoreApplication::sendEvent(tabs(), &asked);
    const auto* menu = window()->findChild<QMenu*>(QStringLiteral("tabMenu"));
    ASSERT_TRUE(menu && menu->isVisible());
    EXPECT_EQ(current(), document(2)) << "the menu is about the tab";
    menu->actions().constLast()->trigger();
    settle();
    EXPECT_EQ(tabNames(), "b.pdf, a.pdf");
    QTest::mouseClick(window()->findChild<QToolButton*>(QStringLiteral("newTabButton")), Qt::LeftButton);
    settle();
    EXPECT_EQ(tabNames(), "b.pdf, a.pdf, Untitled");
    QTest::mouseClick(tabs(), Qt::MiddleButton, {}, middleOfTab(1));
    settle();
    EXPECT_EQ(tabNames(), "b.pdf, Untitled");
}

TEST_F(DocumentWindowTest, commandsAreEnabledOnlyWhileTheyCanDoSomethingAndChangesAreMarked) {
    launch({file("a.pdf", {.pageCount = 2})});
    expectEnabled({"close", "saveAs", "duplicate", "selectAll", "nextPage", "lastPage", "zoomToFit"}, true);
    expectEnabled({"redo", "copy", "previousPage", "back", "forward"}, false);
    const auto expectEdited = [this](bool edited) {
        expectEnabled({"save", "revert", "undo"}, edited);
        EXPECT_EQ(tabs()->tabText(0), edited ? QStringLiteral("• a.pdf") : QStringLiteral("a.pdf"));
        EXPECT_EQ(window()->isWindowModified(), edited);
    };
    expectEdited(false);
    edit(*document(0));
    expectEdited(true);
    run("undo");
    expectEdited(false);
    // Without its last page it is an empty one until that is undone.
    workspace()->sidebar().deletePages({0, 1});
    settle();
    EXPECT_FALSE(workspace());
    expectEnabled({"nextPage", "toggleSidebar"}, false);
    run("undo");
    EXPECT_TRUE(workspace());
    expectEdited(false);

    command("lastPage")->trigger();
    command("selectAll")->trigger();
    expectEnabled({"nextPage"}, false);
    expectEnabled({"previousPage", "back", "copy"}, true);
}

TEST_F(DocumentWindowTest, theMenuAndItsToolsBelongToTheCurrentTab) {
    launch({file("a.pdf"), file("b.pdf"), file("locked.pdf", {.password = "key"})});
    const auto fileEntryCount = [this] { return window()->menuBar()->actions()[0]->menu()->actions().size(); };
    const auto before = fileEntryCount();
    expectEnabled({"saveAs", "print", "askAssistant", "nextPage", "form"}, false);

    window()->setCurrent(window()->contentViews()[0]);
    EXPECT_TRUE(command("print")->isEnabled());
    EXPECT_EQ(fileEntryCount(), before) << "one takes the place of the other";
    QTest::keyClick(window(), Qt::Key_Down, Qt::ControlModifier);
    EXPECT_EQ(view()->currentPageIndex(), 1);
    const ToolState& first = *view()->toolState();
    QTest::keyClick(window(), Qt::Key_2, Qt::ControlModifier);
    window()->setCurrent(window()->contentViews()[1]);
    QTest::keyClick(window(), Qt::Key_F, Qt::ControlModifier);
    EXPECT_EQ(first.tool(), AnnotationTool::ink);
    EXPECT_EQ(view()->toolState()->tool(), AnnotationTool::form);
    EXPECT_TRUE(command("form")->isChecked());
    command("editText")->trigger();
    EXPECT_EQ(view()->toolState()->tool(), AnnotationTool::select);
    EXPECT_TRUE(command("editText")->isChecked());
    command("askAssistant")->trigger();
    EXPECT_TRUE(workspace()->showsAssistant());
    EXPECT_TRUE(command("askAssistant")->isChecked());

    Q_EMIT window()->contentViews()[2]->closeRequested(); // as its unlock screen does when it is cancelled
    settle();
    EXPECT_EQ(tabNames(), "a.pdf, b.pdf");
}

TEST_F(DocumentWindowTest, undoIsAboutTheFieldThatIsBeingFilledAndSavingAndClosingTakeItIn) {
    launch({write("form.pdf", FormFixture::bytes())});
    const auto click = [&](const QRectF& field) {
        const std::shared_ptr<PDFPage> page = document(0)->pdfDocument()->page(0);
        view()->reveal(*page->annotation(field.center()));
        QTest::mouseClick(view()->viewport(), Qt::LeftButton, {},
                          view()->convertFromPage(field, *page).center().toPoint());
    };
    click(FormFixture::name);
    auto* const line = view()->viewport()->findChild<QLineEdit*>();
    ASSERT_TRUE(line);
    QTest::keyClicks(line, QStringLiteral("Ada"));
    command("undo")->trigger();
    EXPECT_EQ(line->text(), QString());
    command("redo")->trigger();
    EXPECT_EQ(line->text(), QStringLiteral("Ada"));
    EXPECT_FALSE(document(0)->isDocumentEdited());
    ASSERT_TRUE(command("save")->isEnabled());
    run("save");
    const auto saved = PDFDocument::fromFile(path("form.pdf"));
    const auto field = PDFFormField::of(saved->page(0)->annotation(FormFixture::name.center()));
    EXPECT_EQ(field->value(), QStringList{QStringLiteral("Ada")});
    QTest::keyClicks(window()->focusWidget(), QStringLiteral("m"));

    click(FormFixture::fruit);
    auto* const list = view()->viewport()->findChild<QListWidget*>();
    ASSERT_TRUE(list);
    EXPECT_TRUE(document(0)->isDocumentEdited());
    list->setCurrentRow(list->count() - 1);
    command("undo")->trigger(); // what was chosen, and not what was typed before
    EXPECT_FALSE(list->isVisible());
    EXPECT_TRUE(document(0)->undoManager()->canRedo());
    command("undo")->trigger();
    EXPECT_FALSE(document(0)->isDocumentEdited());

    click(FormFixture::name);
    QTest::keyClicks(window()->focusWidget(), QStringLiteral("Bob"));
    m_dialogs->saveAnswer = SaveAnswer::Cancel;
    run("close");
    EXPECT_EQ(m_dialogs->takeCalls(), "save form.pdf");
}

TEST_F(DocumentWindowTest, closingATabOrTheWindowAsksWhatBecomesOfTheChanges) {
    launch({file("a.pdf"), file("b.pdf"), file("c.pdf")});
    edit(*document(1));
    edit(*document(2));
    m_dialogs->saveAnswer = SaveAnswer::Cancel;
    EXPECT_FALSE(window()->close());
    settle();
    m_dialogs->saveAnswer = SaveAnswer::Cancel;
    run("close");
    EXPECT_EQ(m_dialogs->takeCalls(), "save b.pdf,c.pdf; save c.pdf");
    m_dialogs->saveAnswer = SaveAnswer::Save; // by the close button of a tab, and it fails
    document(1)->setFileURL(QUrl::fromLocalFile(path("gone/b.pdf")));
    QTest::mouseClick(tabs()->tabButton(1, QTabBar::RightSide), Qt::LeftButton);
    settle();
    EXPECT_TRUE(m_dialogs->takeCalls().starts_with("save b.pdf; “b.pdf” couldn't be saved."));

    document(1)->setFileURL(QUrl::fromLocalFile(path("saved.pdf")));
    m_dialogs->saveAnswer = SaveAnswer::Save;
    m_dialogs->unchecked = QStringLiteral("c.pdf");
    window()->close();
    settle();
    EXPECT_EQ(savedPageCount("saved.pdf"), 2);
    EXPECT_EQ(savedPageCount("c.pdf"), 3);
    EXPECT_EQ(window(), nullptr);
}

TEST_F(DocumentWindowTest, aTabTakesTheNameThatItIsSavedAsAndADuplicateIsATabOfItsOwn) {
    launch({file("a.pdf")});
    m_dialogs->saveLocation = path("b.pdf");
    run("saveAs");
    EXPECT_EQ(m_dialogs->takeCalls(), "choose " + path("a.pdf").toStdString());
    EXPECT_EQ(tabNames(), "b.pdf");
    EXPECT_TRUE(window()->windowTitle().startsWith(QStringLiteral("b.pdf")));
    EXPECT_EQ(savedPageCount("b.pdf"), 3);

    edit(*document(0));
    command("duplicate")->trigger();
    EXPECT_TRUE(QTest::qWaitFor([this] { return tabs()->count() == 2; }));
    EXPECT_EQ(tabNames(), "b.pdf, b copy");
    EXPECT_TRUE(document(1)->isDocumentEdited());
    EXPECT_FALSE(command("revert")->isEnabled());
    m_dialogs->saveLocation = path("saved copy.pdf");
    run("save");
    EXPECT_TRUE(m_dialogs->takeCalls().ends_with("/b copy.pdf"));
    EXPECT_EQ(savedPageCount("saved copy.pdf"), 2);
    EXPECT_EQ(savedPageCount("b.pdf"), 3);
}

TEST_F(DocumentWindowTest, droppedFilesOpenInTabsAndPagesAreCopiedToTheEndOfAnotherDocument) {
    launch({file("a.pdf"), file("b.pdf", {.pageCount = 2}), file("locked.pdf", {.password = "secret"})});
    const auto send = [](QWidget* target, QPoint at, const QMimeData& data) {
        QDragEnterEvent enter(at, Qt::CopyAction | Qt::MoveAction, &data, Qt::LeftButton, {});
        QApplication::sendEvent(target, &enter);
        QDropEvent drop(at, Qt::CopyAction | Qt::MoveAction, &data, Qt::LeftButton, {});
        if (enter.isAccepted())
            QApplication::sendEvent(target, &drop);
        return enter.isAccepted() && drop.isAccepted();
    };
    QMimeData files;
    files.setUrls({file("dropped.pdf"), file("too.pdf")});
    EXPECT_TRUE(send(window(), {200, 200}, files));
    settle();
    EXPECT_EQ(tabNames(), "a.pdf, b.pdf, locked.pdf, dropped.pdf, too.pdf");

    PageMimeData pages(document(0), {0, 2}, 2);
    send(tabs(), middleOfTab(1), pages);
    const auto target = document(1)->pdfDocument();
    EXPECT_EQ(target->pageCount(), 4);
    EXPECT_EQ(target->page(3)->string().trimmed(), QStringLiteral("Page 3"));
    settle();
    document(1)->undoManager()->undo();
    EXPECT_EQ(target->pageCount(), 2);
    // Held over a tab, it comes to the front; the pages there take them too.
    QDragEnterEvent hover(middleOfTab(1), Qt::CopyAction, &pages, Qt::LeftButton, {});
    QApplication::sendEvent(tabs(), &hover);
    EXPECT_TRUE(QTest::qWaitFor([this] { return current() == document(1); }));
    EXPECT_TRUE(send(window(), window()->rect().center(), pages));
    EXPECT_EQ(target->pageCount(), 4);
    // Neither their own document nor one that is locked takes them.
    send(tabs(), middleOfTab(0), pages);
    send(tabs(), middleOfTab(2), pages);
    window()->setCurrent(window()->contentViews().front());
    EXPECT_FALSE(send(window(), window()->rect().center(), pages));
    EXPECT_FALSE(document(0)->isDocumentEdited() || document(2)->isDocumentEdited());
}
