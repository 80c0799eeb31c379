#include "AppTest.h"

#include "AnnotatingPDFView.h"
#include "GatedSnapshot.h"
#include "PDFAnnotation.h"
#include "PDFEditorWorkspaceView.h"
#include "PassingNotice.h"
#include "PdfFixtures.h"
#include "PrintRuns.h"

#include <QContextMenuEvent>
#include <QTabBar>

using SaveAnswer = ScriptedDialogs::SaveAnswer;

namespace {

/// Its snapshots are written when the gate is released.
class GatedDocument : public PDFEditorDocument {
public:
    std::shared_ptr<const DocumentSnapshot> snapshot(SignatureCare care) const override {
        return std::make_shared<GatedSnapshot>(PDFEditorDocument::snapshot(care), m_gate);
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
    launch({file(QStringLiteral("b.pdf"))});
    const auto document = openGated(QStringLiteral("a.pdf"));
    const PassingNotice& notice = window()->currentContentView()->workspace()->notice();
    const auto* tabs = window()->findChild<QTabBar*>(QStringLiteral("documentTabs"));
    command(QStringLiteral("save"))->trigger();
    QCoreApplication::processEvents();
    EXPECT_TRUE(m_app->controller().isSaving(*document));
    EXPECT_FALSE(command(QStringLiteral("revert"))->isEnabled());
    EXPECT_EQ(notice.message(), QStringLiteral("Saving…")) << "it is told when it begins";
    EXPECT_EQ(tabs->tabText(1), QStringLiteral("• a.pdf")) << "most saves are over before they are worth a word";
    EXPECT_TRUE(QTest::qWaitFor([&] { return tabs->tabText(1) == QStringLiteral("• a.pdf — Saving…"); }));
    EXPECT_TRUE(window()->windowTitle().startsWith(QStringLiteral("a.pdf — Saving…")));
    EXPECT_EQ(notice.message(), QStringLiteral("Saving…"));
    document->release();
    settle();
    EXPECT_EQ(tabs->tabText(1), QStringLiteral("a.pdf"));
    EXPECT_TRUE(QTest::qWaitFor([&notice] { return !notice.isVisible(); }));
    EXPECT_EQ(savedPageCount(QStringLiteral("a.pdf")), 2);
}

TEST_F(SavingTest, aWindowThatClosesDuringASaveGoesWhenItIsDone) {
    launch();
    const auto document = openGated(QStringLiteral("a.pdf"));
    command(QStringLiteral("save"))->trigger();
    EXPECT_FALSE(window()->close());
    QCoreApplication::processEvents();
    EXPECT_TRUE(window()->isVisible());
    document->release();
    settle();
    EXPECT_EQ(window(), nullptr);
    EXPECT_TRUE(m_dialogs->askedToSave.isEmpty());
    EXPECT_EQ(savedPageCount(QStringLiteral("a.pdf")), 2);
}

TEST_F(SavingTest, quittingDuringASaveEndsTheProgramOnceItIsOnTheDisk) {
    launch();
    const auto document = openGated(QStringLiteral("a.pdf"));
    command(QStringLiteral("save"))->trigger();
    m_app->sessionEnd().terminate();
    m_app->sessionEnd().terminate();
    EXPECT_EQ(m_app->controller().documents().size(), 1U);
    QTimer::singleShot(0, qApp, [&document] { document->release(); });
    EXPECT_EQ(QCoreApplication::exec(), 0) << "it ends by itself";
    EXPECT_TRUE(m_app->controller().documents().empty());
    EXPECT_EQ(savedPageCount(QStringLiteral("a.pdf")), 2);
    EXPECT_FALSE(landingIsVisible());
}

TEST_F(SavingTest, quittingWaitsForWhatIsBeingPrinted) {
    launch();
    const auto document = openGated(QStringLiteral("a.pdf"));
    document->release();
    command(QStringLiteral("save"))->trigger();
    settle();
    QFile service(m_folder.filePath(QStringLiteral("lp")));
    ASSERT_TRUE(service.open(QIODevice::WriteOnly));
    service.write("#!/bin/sh\ncd \"$(dirname \"$0\")\"\ncat > printed\nwhile [ ! -e go ]; do sleep 0.02; done\n");
    service.close();
    service.setPermissions(QFile::ReadOwner | QFile::ExeOwner);
    const QByteArray path = qgetenv("PATH");
    qputenv("PATH", QFile::encodeName(m_folder.path()) + ':' + path);
    PrintOrder order{PrintCopy::of(*document->pdfDocument(), {0}, true), QStringLiteral("a.pdf"), {}, {}};
    order.job.printer = QStringLiteral("Office");
    std::optional<QString> failure;
    PrintRuns::shared().start(order, [&failure](const QString& why) { failure = why; });

    m_app->sessionEnd().terminate();
    EXPECT_EQ(m_dialogs->printing, QStringList{QStringLiteral("a.pdf")});
    m_dialogs->quitsNow(false);
    EXPECT_FALSE(failure) << "staying leaves the job alone";
    m_app->sessionEnd().terminate();
    QTimer::singleShot(50, qApp, [this] { QFile(m_folder.filePath(QStringLiteral("go"))).open(QIODevice::WriteOnly); });
    EXPECT_EQ(QCoreApplication::exec(), 0) << "it ends by itself";
    EXPECT_EQ(failure, QString());
    EXPECT_TRUE(QFile::exists(m_folder.filePath(QStringLiteral("printed"))));
    qputenv("PATH", path);
}

TEST_F(SavingTest, aSessionThatEndsAsksOnlyWhenItMay) {
    launch();
    const auto document = openGated(QStringLiteral("a.pdf"));
    document->release();
    EXPECT_TRUE(m_app->sessionEnd().commit(false));
    EXPECT_TRUE(document->isDocumentEdited());

    m_dialogs->saveAnswers = {SaveAnswer::Cancel, SaveAnswer::Save};
    EXPECT_FALSE(m_app->sessionEnd().commit(true));
    EXPECT_TRUE(m_app->sessionEnd().commit(true));
    EXPECT_FALSE(document->isDocumentEdited());
    EXPECT_EQ(savedPageCount(QStringLiteral("a.pdf")), 2);
    EXPECT_EQ(m_app->controller().documents().size(), 1U);

    edit(*document);
    QTimer::singleShot(0, &m_app->sessionEnd(), &SessionEnd::endNow);
    EXPECT_EQ(QCoreApplication::exec(), 0);
    EXPECT_EQ(m_dialogs->askedToSave.size(), 2) << "nobody can answer any more";
    EXPECT_TRUE(document->isDocumentEdited());
}

/// A reader in the middle of a document.
class ReadingAgainTest : public SavingTest {
protected:
    PDFEditorWorkspaceView* workspace() { return window()->currentContentView()->workspace(); }

    void openInTheMiddle() {
        launch({file(QStringLiteral("a.pdf"), {.pageCount = 9})});
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
    command(QStringLiteral("revert"))->trigger();
    settle();
    EXPECT_EQ(workspace(), m_oldWorkspace) << "the answer was no";
    m_dialogs->reverts = true;
    command(QStringLiteral("revert"))->trigger();
    settle();
    EXPECT_FALSE(document(0)->isDocumentEdited());
    expectAnotherViewAtTheSamePlace();
}

TEST_F(ReadingAgainTest, aFileThatAnotherProgramReplacedIsShownAtTheSamePlace) {
    openInTheMiddle();
    const auto before = document(0)->pdfDocument();
    file(QStringLiteral("b.pdf"), {.pageCount = 11});
    ASSERT_EQ(rename(qPrintable(m_folder.filePath(QStringLiteral("b.pdf"))),
                     qPrintable(m_folder.filePath(QStringLiteral("a.pdf")))),
              0);
    ASSERT_TRUE(QTest::qWaitFor([&] { return document(0)->pdfDocument() != before; }, 30'000));
    settle();
    EXPECT_EQ(document(0)->pdfDocument()->pageCount(), 11);
    EXPECT_EQ(workspace()->notice().message(), QStringLiteral("“a.pdf” was changed by another program."));
    expectAnotherViewAtTheSamePlace();
}

TEST_F(SavingTest, aDuplicateIsATabOfItsOwn) {
    launch({file(QStringLiteral("a.pdf"))});
    edit(*document(0));
    command(QStringLiteral("duplicate"))->trigger();
    EXPECT_TRUE(QTest::qWaitFor([this] { return tabNames().size() == 2; }));
    EXPECT_EQ(tabNames(), (QStringList{QStringLiteral("a.pdf"), QStringLiteral("a copy")}));
    EXPECT_EQ(document(1)->pdfDocument()->pageCount(), 2);
    EXPECT_TRUE(document(1)->isDocumentEdited());
    EXPECT_FALSE(command(QStringLiteral("revert"))->isEnabled());
    m_dialogs->saveLocation = m_folder.filePath(QStringLiteral("saved copy.pdf"));
    command(QStringLiteral("save"))->trigger();
    settle();
    EXPECT_TRUE(m_dialogs->suggestedPaths.constLast().endsWith(QStringLiteral("/a copy.pdf")));
    EXPECT_TRUE(QFileInfo(m_dialogs->suggestedPaths.constLast()).dir().exists());
    EXPECT_EQ(savedPageCount(QStringLiteral("saved copy.pdf")), 2);
    EXPECT_EQ(savedPageCount(QStringLiteral("a.pdf")), 3);
}

TEST_F(SavingTest, aFileFilledIntoATabIsWatchedForOtherProgramsToo) {
    launch();
    m_app->actions().newTab->trigger();
    settle();
    window()->currentContentView()->openInPlace(file(QStringLiteral("a.pdf")));
    settle();
    file(QStringLiteral("a.pdf"), {.pageCount = 7});
    edit(*document(0));
    command(QStringLiteral("save"))->trigger();
    settle();
    EXPECT_EQ(m_dialogs->askedAboutChange, QStringList{QStringLiteral("a.pdf")});
    EXPECT_EQ(savedPageCount(QStringLiteral("a.pdf")), 7);
}

TEST_F(SavingTest, aSignatureIsBrokenOnlyByThoseWhoWantThat) {
    PdfFixture fixture;
    for (int page = 0; page < 3; ++page)
        fixture.addPage({});
    const QByteArray field = fixture.addAnnotation(0, "<< /Type /Annot /Subtype /Widget /FT /Sig /T (S) "
                                                      "/Rect [ 0 0 9 9 ] /V << /Type /Sig /Filter /X >> >>");
    fixture.setRootKey("/AcroForm", "<< /Fields [ " + field + " ] >>");
    const auto open = [&](const QString& name) {
        QFile signedFile(m_folder.filePath(name));
        EXPECT_TRUE(signedFile.open(QIODevice::WriteOnly) && signedFile.write(fixture.bytes()) > 0);
        return QUrl::fromLocalFile(signedFile.fileName());
    };
    const auto save = [this] {
        command(QStringLiteral("save"))->trigger();
        settle();
        return std::exchange(m_dialogs->askedAboutSignature, {}).size();
    };
    launch({open(QStringLiteral("a.pdf"))});
    document(0)->pdfDocument()->page(0)->addAnnotation(
        std::make_shared<PDFAnnotation>(QRectF(72, 600, 100, 12), PDFAnnotationSubtype::square));
    document(0)->undoManager()->markEdited();
    EXPECT_EQ(save(), 0) << "an annotation leaves it valid";
    edit(*document(0));
    EXPECT_EQ(save(), 1);
    EXPECT_EQ(savedPageCount(QStringLiteral("a.pdf")), 3) << "cancelled";
    EXPECT_TRUE(document(0)->isDocumentEdited());

    m_dialogs->changedFileAnswer = DocumentPresenter::OverwriteAnswer::SaveAs;
    m_dialogs->saveLocation = m_folder.filePath(QStringLiteral("b.pdf"));
    EXPECT_EQ(save(), 1);
    EXPECT_EQ(savedPageCount(QStringLiteral("a.pdf")), 3);
    EXPECT_EQ(savedPageCount(QStringLiteral("b.pdf")), 2);
    edit(*document(0));
    EXPECT_EQ(save(), 0) << "it has none any more";
    EXPECT_EQ(savedPageCount(QStringLiteral("b.pdf")), 1);

    m_dialogs->changedFileAnswer = DocumentPresenter::OverwriteAnswer::Overwrite;
    m_app->controller().openDocument(open(QStringLiteral("c.pdf")), true);
    settle();
    edit(*document(1));
    EXPECT_EQ(save(), 1);
    EXPECT_EQ(savedPageCount(QStringLiteral("c.pdf")), 2);
}

TEST_F(SavingTest, theMenuOfATabIsAboutItsDocument) {
    launch({file(QStringLiteral("a.pdf")), file(QStringLiteral("b.pdf"))});
    auto* tabs = window()->findChild<QTabBar*>(QStringLiteral("documentTabs"));
    const QPoint first = tabs->tabRect(0).center();
    QContextMenuEvent asked(QContextMenuEvent::Mouse, first, tabs->mapToGlobal(first));
    QCoreApplication::sendEvent(tabs, &asked);
    const auto* menu = window()->findChild<QMenu*>(QStringLiteral("tabMenu"));
    ASSERT_TRUE(menu && menu->isVisible());
    EXPECT_EQ(window()->currentContentView()->document(), document(0));
    QStringList names;
    for (QAction* action : menu->actions())
        names.append(action->objectName());
    EXPECT_EQ(names, (QStringList{QStringLiteral("save"), QStringLiteral("saveAs"), QStringLiteral("duplicate"),
                                  QStringLiteral("revert"), QString(), QStringLiteral("close")}));
    menu->actions().constLast()->trigger();
    settle();
    EXPECT_EQ(tabNames(), QStringList{QStringLiteral("b.pdf")});
}
