#include "AppTest.h"

#include "GatedSnapshot.h"
#include "PDFAnnotation.h"
#include "PdfFixtures.h"
#include "PrintRuns.h"

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

class SavingTest : public AppTest {
protected:
    /// An edited document of the file, shown in a tab.
    std::shared_ptr<GatedDocument> openGated(const char* name) {
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

TEST_F(SavingTest, aSaveThatTakesLongShowsUntilItEndsAndAWindowThatClosesWaitsForIt) {
    launch({file("b.pdf")});
    const auto document = openGated("a.pdf");
    const PassingNotice& notice = workspace()->notice();
    command("save")->trigger();
    QCoreApplication::processEvents();
    EXPECT_FALSE(command("revert")->isEnabled());
    EXPECT_EQ(notice.message(), QStringLiteral("Saving…")) << "it is told when it begins";
    EXPECT_EQ(tabs()->tabText(1), QStringLiteral("• a.pdf")) << "most saves are over before they are worth a word";
    EXPECT_TRUE(QTest::qWaitFor([&] { return tabs()->tabText(1) == QStringLiteral("• a.pdf — Saving…"); }));
    EXPECT_TRUE(window()->windowTitle().startsWith(QStringLiteral("a.pdf — Saving…")));
    document->release();
    settle();
    EXPECT_EQ(tabs()->tabText(1), QStringLiteral("a.pdf"));
    EXPECT_TRUE(QTest::qWaitFor([&notice] { return !notice.isVisible(); }));
    EXPECT_EQ(savedPageCount("a.pdf"), 2);

    edit(*document);
    command("save")->trigger();
    EXPECT_FALSE(window()->close());
    document->release();
    settle();
    EXPECT_EQ(window(), nullptr);
    EXPECT_EQ(m_dialogs->takeCalls(), "");
    EXPECT_EQ(savedPageCount("a.pdf"), 1);
}

TEST_F(SavingTest, quittingDuringASaveEndsTheProgramOnceItIsOnTheDisk) {
    launch();
    const auto document = openGated("a.pdf");
    command("save")->trigger();
    m_app->sessionEnd().terminate();
    m_app->sessionEnd().terminate();
    QTimer::singleShot(0, qApp, [&document] { document->release(); });
    EXPECT_EQ(QCoreApplication::exec(), 0) << "it ends by itself";
    EXPECT_TRUE(m_app->controller().documents().empty());
    EXPECT_EQ(savedPageCount("a.pdf"), 2);
    EXPECT_FALSE(landingIsVisible());
}

TEST_F(SavingTest, quittingWaitsForWhatIsBeingPrinted) {
    launch({file("a.pdf")});
    write("lp", "#!/bin/sh\ncd \"$(dirname \"$0\")\"\ncat > printed\nwhile [ ! -e go ]; do sleep 0.02; done\n");
    QFile::setPermissions(path("lp"), QFile::ReadOwner | QFile::ExeOwner);
    const QByteArray searched = qgetenv("PATH");
    qputenv("PATH", QFile::encodeName(m_folder.path()) + ':' + searched);
    PrintOrder order{PrintCopy::of(*document(0)->pdfDocument(), {0}, true), QStringLiteral("a.pdf"), {}, {}};
    order.job.printer = QStringLiteral("Office");
    std::optional<QString> failure;
    PrintRuns::shared().start(order, [&failure](const QString& why) { failure = why; });

    m_app->sessionEnd().terminate();
    EXPECT_EQ(m_dialogs->takeCalls(), "printing a.pdf");
    m_dialogs->quitsNow(false);
    EXPECT_FALSE(failure) << "staying leaves the job alone";
    m_app->sessionEnd().terminate();
    QTimer::singleShot(50, qApp, [this] { write("go", {}); });
    EXPECT_EQ(QCoreApplication::exec(), 0) << "it ends by itself";
    EXPECT_EQ(failure, QString());
    EXPECT_TRUE(QFile::exists(path("printed")));
    qputenv("PATH", searched);
}

TEST_F(SavingTest, aSessionThatEndsAsksOnlyWhenItMay) {
    launch({file("a.pdf")});
    const auto document = this->document(0);
    edit(*document);
    EXPECT_TRUE(m_app->sessionEnd().commit(false));
    EXPECT_TRUE(document->isDocumentEdited());

    m_dialogs->saveAnswer = SaveAnswer::Cancel;
    EXPECT_FALSE(m_app->sessionEnd().commit(true));
    m_dialogs->saveAnswer = SaveAnswer::Save;
    EXPECT_TRUE(m_app->sessionEnd().commit(true));
    EXPECT_FALSE(document->isDocumentEdited());
    EXPECT_EQ(savedPageCount("a.pdf"), 2);

    edit(*document);
    QTimer::singleShot(0, &m_app->sessionEnd(), &SessionEnd::endNow);
    EXPECT_EQ(QCoreApplication::exec(), 0);
    EXPECT_EQ(m_dialogs->takeCalls(), "save a.pdf; save a.pdf") << "nobody can answer any more";
    EXPECT_TRUE(document->isDocumentEdited());
}

TEST_F(SavingTest, whatIsReadAgainIsShownAtTheReadersPlace) {
    launch({file("a.pdf", {.pageCount = 9})});
    view()->setScaleFactor(1.25);
    view()->goToPage(document(0)->pdfDocument()->page(4));
    settle();
    // The page and the height of it at the upper edge of the view.
    const auto place = [this] {
        const auto page = view()->pageAt({0, 0}, true);
        return std::pair(view()->document()->index(page.get()), view()->convertToPage(QPointF(0, 0), *page).y());
    };
    const auto before = place();
    const PDFEditorWorkspaceView* oldWorkspace = workspace();
    const auto expectAnotherViewAtTheSamePlace = [&] {
        EXPECT_NE(workspace(), oldWorkspace);
        EXPECT_EQ(place().first, before.first);
        EXPECT_NEAR(place().second, before.second, 2);
        EXPECT_NEAR(view()->scaleFactor(), 1.25, 1e-6);
        oldWorkspace = workspace();
    };
    document(0)->undoManager()->markEdited();
    run("revert");
    expectAnotherViewAtTheSamePlace();

    // Another program replaces the file.
    const auto pages = document(0)->pdfDocument();
    file("b.pdf", {.pageCount = 11});
    ASSERT_EQ(rename(qPrintable(path("b.pdf")), qPrintable(path("a.pdf"))), 0);
    ASSERT_TRUE(QTest::qWaitFor([&] { return document(0)->pdfDocument() != pages; }, 30'000));
    settle();
    EXPECT_EQ(document(0)->pdfDocument()->pageCount(), 11);
    EXPECT_EQ(message(), QStringLiteral("“a.pdf” was changed by another program."));
    expectAnotherViewAtTheSamePlace();
}

TEST_F(SavingTest, aSignatureIsBrokenOnlyByThoseWhoWantThat) {
    PdfFixture fixture;
    for (int page = 0; page < 3; ++page)
        fixture.addPage({});
    const QByteArray field = fixture.addAnnotation(0, "<< /Type /Annot /Subtype /Widget /FT /Sig /T (S) "
                                                      "/Rect [ 0 0 9 9 ] /V << /Type /Sig /Filter /X >> >>");
    fixture.setRootKey("/AcroForm", "<< /Fields [ " + field + " ] >>");
    const auto questionsOfSave = [this] {
        run("save");
        return m_dialogs->takeCalls();
    };
    launch({write("a.pdf", fixture.bytes())});
    document(0)->pdfDocument()->page(0)->addAnnotation(
        std::make_shared<PDFAnnotation>(QRectF(72, 600, 100, 12), PDFAnnotationSubtype::square));
    document(0)->undoManager()->markEdited();
    EXPECT_EQ(questionsOfSave(), "") << "an annotation leaves it valid";
    edit(*document(0));
    EXPECT_EQ(questionsOfSave(), "signatures a.pdf");
    EXPECT_TRUE(document(0)->isDocumentEdited()) << "cancelled";

    m_dialogs->changedFileAnswer = ScriptedDialogs::OverwriteAnswer::SaveAs;
    m_dialogs->saveLocation = path("b.pdf");
    EXPECT_EQ(questionsOfSave(), "signatures a.pdf; choose " + path("a.pdf").toStdString());
    EXPECT_EQ(savedPageCount("a.pdf"), 3);
    EXPECT_EQ(savedPageCount("b.pdf"), 2);
    edit(*document(0));
    EXPECT_EQ(questionsOfSave(), "") << "it has none any more";
    EXPECT_EQ(savedPageCount("b.pdf"), 1);

    m_dialogs->changedFileAnswer = ScriptedDialogs::OverwriteAnswer::Overwrite;
    open(write("c.pdf", fixture.bytes()));
    edit(*document(1));
    EXPECT_EQ(questionsOfSave(), "signatures c.pdf");
    EXPECT_EQ(savedPageCount("c.pdf"), 2);
}

} // namespace
