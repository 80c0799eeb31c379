#include "AppTest.h"

#include "AnnotatingPDFView.h"
#include "GatedSnapshot.h"
#include "PDFEditorWorkspaceView.h"
#include "PassingNotice.h"

#include <QContextMenuEvent>
#include <QTabBar>

using SaveAnswer = ScriptedDialogs::SaveAnswer;

namespace {

/// Its snapshots are written when the gate is released.
class GatedDocument : public PDFEditorDocument {
public:
    std::shared_ptr<const DocumentSnapshot> snapshot() const override {
        return std::make_shared<GatedSnapshot>(PDFEditorDocument::snapshot(), m_gate);
    }
    void release() { m_gate->release(); }

private:
    const std::shared_ptr<QSemaphore> m_gate = std::make_shared<QSemaphore>();
};

} // namespace

class SavingTest : public AppTest {
protected:
    int savedPageCount(const QString& name) { return PDFDocument::fromFile(m_folder.filePath(name))->pageCount(); }

    /// An edited document of the file, shown in a tab.
    std::shared_ptr<GatedDocument> openGated(const QString& name) {
        const QUrl url = file(name);
        auto document = std::make_shared<GatedDocument>();
        document->read(url);
        document->setFileURL(url);
        m_app->controller().openRecovered(document);
        document->undoManager()->markSaved();
        edit(*document);
        return document;
    }
};

TEST_F(SavingTest, aSaveThatTakesLongShowsUntilItEnds) {
    launch({file(u"b.pdf"_qs)});
    const auto document = openGated(u"a.pdf"_qs);
    const PassingNotice& notice = window()->currentContentView()->workspace()->notice();
    const auto* tabs = window()->findChild<QTabBar*>(u"documentTabs"_qs);
    command(u"save"_qs)->trigger();
    QCoreApplication::processEvents();
    EXPECT_TRUE(m_app->controller().isSaving(*document));
    EXPECT_FALSE(command(u"revert"_qs)->isEnabled());
    EXPECT_EQ(tabs->tabText(1), u"• a.pdf"_qs) << "most saves are over before they are worth a word";
    EXPECT_TRUE(QTest::qWaitFor([&] { return tabs->tabText(1) == u"• a.pdf — Saving…"_qs; }));
    EXPECT_TRUE(window()->windowTitle().startsWith(u"a.pdf — Saving…"_qs));
    EXPECT_EQ(notice.message(), u"Saving…"_qs);
    document->release();
    settle();
    EXPECT_EQ(tabs->tabText(1), u"a.pdf"_qs);
    EXPECT_TRUE(QTest::qWaitFor([&notice] { return !notice.isVisible(); }));
    EXPECT_EQ(savedPageCount(u"a.pdf"_qs), 2);
}

TEST_F(SavingTest, aWindowThatClosesDuringASaveGoesWhenItIsDone) {
    launch();
    const auto document = openGated(u"a.pdf"_qs);
    command(u"save"_qs)->trigger();
    EXPECT_FALSE(window()->close());
    QCoreApplication::processEvents();
    EXPECT_TRUE(window()->isVisible());
    document->release();
    settle();
    EXPECT_EQ(window(), nullptr);
    EXPECT_TRUE(m_dialogs->askedToSave.isEmpty());
    EXPECT_EQ(savedPageCount(u"a.pdf"_qs), 2);
}

TEST_F(SavingTest, quittingDuringASaveEndsTheProgramOnceItIsOnTheDisk) {
    launch();
    const auto document = openGated(u"a.pdf"_qs);
    command(u"save"_qs)->trigger();
    m_app->terminate();
    m_app->terminate();
    EXPECT_EQ(m_app->controller().documents().size(), 1U);
    QTimer::singleShot(0, qApp, [&document] { document->release(); });
    EXPECT_EQ(QCoreApplication::exec(), 0) << "it ends by itself";
    EXPECT_TRUE(m_app->controller().documents().empty());
    EXPECT_EQ(savedPageCount(u"a.pdf"_qs), 2);
    EXPECT_FALSE(landingIsVisible());
}

TEST_F(SavingTest, aSessionThatEndsAsksOnlyWhenItMay) {
    launch();
    const auto document = openGated(u"a.pdf"_qs);
    document->release();
    EXPECT_TRUE(m_app->commitSession(false));
    EXPECT_TRUE(document->isDocumentEdited());

    m_dialogs->saveAnswers = {SaveAnswer::Cancel, SaveAnswer::Save};
    EXPECT_FALSE(m_app->commitSession(true));
    EXPECT_TRUE(m_app->commitSession(true));
    EXPECT_FALSE(document->isDocumentEdited());
    EXPECT_EQ(savedPageCount(u"a.pdf"_qs), 2);
    EXPECT_EQ(m_app->controller().documents().size(), 1U);

    edit(*document);
    QTimer::singleShot(0, m_app.get(), &QuilloApp::endSession);
    EXPECT_EQ(QCoreApplication::exec(), 0);
    EXPECT_EQ(m_dialogs->askedToSave.size(), 2) << "nobody can answer any more";
    EXPECT_TRUE(document->isDocumentEdited());
}

/// A reader in the middle of a document.
class ReadingAgainTest : public SavingTest {
protected:
    PDFEditorWorkspaceView* workspace() { return window()->currentContentView()->workspace(); }

    void openInTheMiddle() {
        launch({file(u"a.pdf"_qs, {.pageCount = 9})});
        workspace()->pdfView()->setScaleFactor(1.25);
        workspace()->pdfView()->goToPage(document(0)->pdfDocument()->page(4));
        settle();
        m_before = place();
        m_oldWorkspace = workspace();
    }

    void expectAnotherViewAtTheSamePlace() {
        EXPECT_NE(workspace(), m_oldWorkspace);
        EXPECT_EQ(place().first, m_before.first);
        EXPECT_NEAR(place().second.y(), m_before.second.y(), 2);
        EXPECT_NEAR(workspace()->pdfView()->scaleFactor(), 1.25, 1e-6);
    }

    const PDFEditorWorkspaceView* m_oldWorkspace = nullptr;

private:
    /// The page and the point of it at the upper left of the view.
    std::pair<int, QPointF> place() {
        const PDFView& view = *workspace()->pdfView();
        const auto page = view.pageAt({0, 0}, true);
        return {view.document()->index(page.get()), view.convertToPage(QPointF(0, 0), *page)};
    }

    std::pair<int, QPointF> m_before;
};

TEST_F(ReadingAgainTest, revertingKeepsTheReadersPlace) {
    openInTheMiddle();
    document(0)->undoManager()->markEdited();
    command(u"revert"_qs)->trigger();
    settle();
    EXPECT_EQ(workspace(), m_oldWorkspace) << "the answer was no";
    m_dialogs->reverts = true;
    command(u"revert"_qs)->trigger();
    settle();
    EXPECT_FALSE(document(0)->isDocumentEdited());
    expectAnotherViewAtTheSamePlace();
}

TEST_F(ReadingAgainTest, aFileThatAnotherProgramReplacedIsShownAtTheSamePlace) {
    openInTheMiddle();
    const auto before = document(0)->pdfDocument();
    file(u"b.pdf"_qs, {.pageCount = 11});
    ASSERT_EQ(rename(qPrintable(m_folder.filePath(u"b.pdf"_qs)), qPrintable(m_folder.filePath(u"a.pdf"_qs))), 0);
    ASSERT_TRUE(QTest::qWaitFor([&] { return document(0)->pdfDocument() != before; }, 30'000));
    settle();
    EXPECT_EQ(document(0)->pdfDocument()->pageCount(), 11);
    EXPECT_EQ(workspace()->notice().message(), u"“a.pdf” was changed by another program."_qs);
    expectAnotherViewAtTheSamePlace();
}

TEST_F(SavingTest, aDuplicateIsATabOfItsOwn) {
    launch({file(u"a.pdf"_qs)});
    edit(*document(0));
    command(u"duplicate"_qs)->trigger();
    EXPECT_TRUE(QTest::qWaitFor([this] { return tabNames().size() == 2; }));
    EXPECT_EQ(tabNames(), (QStringList{u"a.pdf"_qs, u"a copy"_qs}));
    EXPECT_EQ(document(1)->pdfDocument()->pageCount(), 2);
    EXPECT_TRUE(document(1)->isDocumentEdited());
    EXPECT_FALSE(command(u"revert"_qs)->isEnabled());
    m_dialogs->saveLocation = m_folder.filePath(u"saved copy.pdf"_qs);
    command(u"save"_qs)->trigger();
    settle();
    EXPECT_TRUE(m_dialogs->suggestedPaths.constLast().endsWith(u"/a copy.pdf"_qs));
    EXPECT_TRUE(QFileInfo(m_dialogs->suggestedPaths.constLast()).dir().exists());
    EXPECT_EQ(savedPageCount(u"saved copy.pdf"_qs), 2);
    EXPECT_EQ(savedPageCount(u"a.pdf"_qs), 3);
}

TEST_F(SavingTest, aFileFilledIntoATabIsWatchedForOtherProgramsToo) {
    launch();
    m_app->actions().newTab->trigger();
    settle();
    window()->currentContentView()->openInPlace(file(u"a.pdf"_qs));
    settle();
    file(u"a.pdf"_qs, {.pageCount = 7});
    edit(*document(0));
    command(u"save"_qs)->trigger();
    settle();
    EXPECT_EQ(m_dialogs->askedAboutChange, QStringList{u"a.pdf"_qs});
    EXPECT_EQ(savedPageCount(u"a.pdf"_qs), 7);
}

TEST_F(SavingTest, theMenuOfATabIsAboutItsDocument) {
    launch({file(u"a.pdf"_qs), file(u"b.pdf"_qs)});
    auto* tabs = window()->findChild<QTabBar*>(u"documentTabs"_qs);
    const QPoint first = tabs->tabRect(0).center();
    QContextMenuEvent asked(QContextMenuEvent::Mouse, first, tabs->mapToGlobal(first));
    QCoreApplication::sendEvent(tabs, &asked);
    const auto* menu = window()->findChild<QMenu*>(u"tabMenu"_qs);
    ASSERT_TRUE(menu && menu->isVisible());
    EXPECT_EQ(window()->currentContentView()->document(), document(0));
    QStringList names;
    for (QAction* action : menu->actions())
        names.append(action->objectName());
    EXPECT_EQ(names, (QStringList{u"save"_qs, u"saveAs"_qs, u"duplicate"_qs, u"revert"_qs, QString(), u"close"_qs}));
    menu->actions().constLast()->trigger();
    settle();
    EXPECT_EQ(tabNames(), QStringList{u"b.pdf"_qs});
}
