#include "ContentView.h"

#include "AssistantDock.h"
#include "AssistantViewModel.h"
#include "LandingView.h"
#include "PDFDocument.h"
#include "PDFEditorWorkspaceView.h"
#include "PDFPage.h"
#include "UnlockDocumentView.h"
#include "ViewTest.h"

#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QSignalSpy>

class ContentViewTest : public ViewTest {
protected:
    std::unique_ptr<ContentView> contentView(const std::shared_ptr<PDFEditorDocument>& document) {
        return std::make_unique<ContentView>(document, m_controller, m_defaults, [this](QWidget*) {
            ++m_passwordQuestions;
            return m_password;
        });
    }

    /// The class of the one content that shows.
    static std::string content(const ContentView& view) {
        std::string names;
        for (const QObject* child : view.children()) {
            const auto* widget = qobject_cast<const QWidget*>(child);
            if (widget && !widget->isHidden())
                names += widget->metaObject()->className();
        }
        return names;
    }

    std::optional<QString> m_password;
    int m_passwordQuestions = 0;
};

TEST_F(ContentViewTest, showsWhatTheDocumentCallsFor) {
    const QUrl plain = TestPdf().write(m_folder.path(), QStringLiteral("plain.pdf"));
    const QUrl locked = TestPdf{.password = "key"}.write(m_folder.path(), QStringLiteral("locked.pdf"));
    const QUrl withoutPages = TestPdf{.pageCount = 0}.write(m_folder.path(), QStringLiteral("empty.pdf"));

    EXPECT_EQ(content(*contentView(std::make_shared<PDFEditorDocument>())), "LandingView");
    EXPECT_EQ(content(*contentView(opened(withoutPages))), "LandingView");
    EXPECT_EQ(content(*contentView(opened(plain))), "PDFEditorWorkspaceView");
    // A locked document has no pages to see either; the lock comes first.
    const auto lockedDocument = opened(locked);
    ASSERT_EQ(lockedDocument->pdfDocument()->pageCount(), 0);
    EXPECT_EQ(content(*contentView(lockedDocument)), "UnlockDocumentView");
}

TEST_F(ContentViewTest, theWorkspaceLivesAsLongAsItsPDFDocument) {
    const auto document = opened(TestPdf().write(m_folder.path(), QStringLiteral("a.pdf")));
    const auto view = contentView(document);
    const QPointer<PDFEditorWorkspaceView> workspace = view->workspace();
    ASSERT_TRUE(workspace);

    const auto page = document->pdfDocument()->removePage(0);
    Q_EMIT document->objectWillChange();
    EXPECT_EQ(view->workspace(), workspace.data());

    const auto assistant = view->workspace()->assistant();
    assistant->setDraft(QStringLiteral("half a question"));
    assistant->appendAssistantTurn(QStringLiteral("said before"));
    view->workspace()->setShowsAssistant(true);
    const auto dock = [&view] { return find<AssistantDock>(*view->workspace(), QStringLiteral("assistantDock")); };
    dock()->setPanelWidth(500);

    document->setPdfDocument(PDFDocument::fromData(TestPdf().bytes()));
    ASSERT_NE(view->workspace(), nullptr);
    EXPECT_TRUE(view->workspace()->showsAssistant());
    EXPECT_EQ(dock()->panelWidth(), 500);
    EXPECT_EQ(view->workspace()->assistant(), assistant) << "with its chat and its draft";
    EXPECT_NE(view->workspace(), workspace.data());
    EXPECT_EQ(content(*view), "PDFEditorWorkspaceView");
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    EXPECT_FALSE(workspace);
}

TEST_F(ContentViewTest, withoutPagesItLandsAndWithPagesItWorksAgain) {
    const auto document = opened(TestPdf{.pageCount = 1}.write(m_folder.path(), QStringLiteral("a.pdf")));
    const auto view = contentView(document);
    const auto page = document->pdfDocument()->removePage(0);
    Q_EMIT document->objectWillChange();
    EXPECT_EQ(content(*view), "LandingView");
    EXPECT_EQ(view->workspace(), nullptr);
    document->pdfDocument()->insert(page, 0);
    Q_EMIT document->objectWillChange();
    EXPECT_EQ(content(*view), "PDFEditorWorkspaceView");
}

TEST_F(ContentViewTest, aWrongPasswordIsToldAndTheRightOneUnlocksInPlace) {
    const auto document = opened(TestPdf{.password = "right"}.write(m_folder.path(), QStringLiteral("locked.pdf")));
    const auto view = contentView(document);
    show(*view);
    const auto* unlock = view->findChild<UnlockDocumentView*>();
    ASSERT_NE(unlock, nullptr);
    auto* field = find<QLineEdit>(*view, QStringLiteral("password"));
    auto* line = find<QWidget>(*view, QStringLiteral("wrongPassword"));
    EXPECT_FALSE(line->isVisible());
    EXPECT_EQ(field->echoMode(), QLineEdit::Password);

    QTest::keyClicks(field, QStringLiteral("wrong"));
    QTest::keyClick(field, Qt::Key_Return);
    EXPECT_TRUE(unlock->wrongPassword());
    EXPECT_TRUE(line->isVisible());
    EXPECT_EQ(field->text(), QStringLiteral("wrong"));
    EXPECT_TRUE(document->pdfDocument()->isLocked());

    const auto pdfDocument = document->pdfDocument();
    field->clear();
    QTest::keyClicks(field, QStringLiteral("right"));
    QTest::mouseClick(find<QPushButton>(*view, QStringLiteral("unlock")), Qt::LeftButton);
    EXPECT_EQ(content(*view), "PDFEditorWorkspaceView");
    EXPECT_EQ(document->pdfDocument(), pdfDocument);
    EXPECT_TRUE(document->wasPasswordProtected());
    EXPECT_FALSE(document->isDocumentEdited());
}

TEST_F(ContentViewTest, theRightPasswordToADamagedFileIsTold) {
    const QUrl url = TestPdf{.password = "right"}.write(m_folder.path(), QStringLiteral("locked.pdf"));
    QFile file(url.toLocalFile());
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    QByteArray bytes = file.readAll();
    file.close();
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(bytes.replace("/Pages", "/Pagez"));
    file.close();

    const auto document = opened(url);
    const auto view = contentView(document);
    show(*view);
    QTest::keyClicks(find<QLineEdit>(*view, QStringLiteral("password")), QStringLiteral("right"));
    QTest::keyClick(find<QLineEdit>(*view, QStringLiteral("password")), Qt::Key_Return);
    EXPECT_EQ(find<QLabel>(*view, QStringLiteral("wrongPassword"))->text(),
              QStringLiteral("It is damaged beyond repair."));
    EXPECT_TRUE(document->pdfDocument()->isLocked());

    const auto untitled = contentView(std::make_shared<PDFEditorDocument>());
    QSignalSpy failures(untitled.get(), &ContentView::openingFailed);
    m_password = QStringLiteral("right");
    const QUrl other = QUrl::fromLocalFile(m_folder.filePath(QStringLiteral("other.pdf")));
    ASSERT_TRUE(QFile::copy(url.toLocalFile(), other.toLocalFile()));
    untitled->openInPlace(other);
    EXPECT_EQ(content(*untitled), "LandingView");
    ASSERT_EQ(failures.count(), 1);
    EXPECT_EQ(failures.first().at(1).toString(), QStringLiteral("It is damaged beyond repair."));
}

TEST_F(ContentViewTest, cancellingTheUnlockScreenAsksToClose) {
    const auto view =
        contentView(opened(TestPdf{.password = "k"}.write(m_folder.path(), QStringLiteral("locked.pdf"))));
    show(*view);
    QSignalSpy closing(view.get(), &ContentView::closeRequested);
    QTest::mouseClick(find<QPushButton>(*view, QStringLiteral("cancel")), Qt::LeftButton);
    EXPECT_EQ(closing.count(), 1);
    QTest::keyClick(find<QLineEdit>(*view, QStringLiteral("password")), Qt::Key_Escape);
    EXPECT_EQ(closing.count(), 2);
}

TEST_F(ContentViewTest, aFileOpenedInPlaceFillsTheUntitledDocument) {
    const QUrl url = TestPdf{.password = "key"}.write(m_folder.path(), QStringLiteral("report.pdf"));
    const auto document = std::make_shared<PDFEditorDocument>();
    const auto view = contentView(document);
    QSignalSpy done(view.get(), &ContentView::openedInPlace);

    view->openInPlace(url);
    EXPECT_EQ(m_passwordQuestions, 1);
    EXPECT_EQ(content(*view), "LandingView") << "The user gave up the password.";
    EXPECT_TRUE(document->fileURL().isEmpty());
    EXPECT_EQ(done.count(), 0);

    m_password = QStringLiteral("key");
    view->openInPlace(url);
    EXPECT_EQ(content(*view), "PDFEditorWorkspaceView");
    EXPECT_EQ(document->displayName(), QStringLiteral("report.pdf"));
    EXPECT_TRUE(document->wasPasswordProtected());
    EXPECT_FALSE(document->isDocumentEdited());
    EXPECT_EQ(done.count(), 1);
    EXPECT_EQ(m_controller.recentDocumentURLs(), QList<QUrl>{url});
}

TEST_F(ContentViewTest, aTabThatIsClosedOrChoosesAgainWhileAFileIsReadTakesNothingOfIt) {
    FileReading::patience = std::chrono::milliseconds(0);
    const QUrl first = TestPdf{}.write(m_folder.path(), QStringLiteral("first.pdf"));
    const QUrl second = TestPdf{}.write(m_folder.path(), QStringLiteral("second.pdf"));
    const auto document = std::make_shared<PDFEditorDocument>();
    auto view = contentView(document);
    QSignalSpy done(view.get(), &ContentView::openedInPlace);
    view->openInPlace(first);
    EXPECT_EQ(content(*view), "LandingView") << "nobody waits";
    view->openInPlace(second);
    EXPECT_TRUE(done.wait());
    QTest::qWait(20);
    EXPECT_EQ(done.count(), 1);
    EXPECT_EQ(document->displayName(), QStringLiteral("second.pdf"));

    const auto closed = std::make_shared<PDFEditorDocument>();
    view = contentView(closed);
    view->openInPlace(first);
    view.reset();
    QTest::qWait(20);
    EXPECT_TRUE(closed->fileURL().isEmpty());
    EXPECT_EQ(closed->pdfDocument()->pageCount(), 0);
    EXPECT_EQ(m_controller.recentDocumentURLs(), QList<QUrl>{second});
}

TEST_F(ContentViewTest, whatCantBeOpenedInPlaceChangesNothing) {
    QFile noPdf(m_folder.filePath(QStringLiteral("text.pdf")));
    ASSERT_TRUE(noPdf.open(QFile::WriteOnly));
    noPdf.write("Not a PDF at all.");
    noPdf.close();
    const auto document = std::make_shared<PDFEditorDocument>();
    const auto view = contentView(document);
    for (const QString& name : {QStringLiteral("text.pdf"), QStringLiteral("missing.pdf"), QStringLiteral(".")}) {
        view->openInPlace(QUrl::fromLocalFile(m_folder.filePath(name)));
        EXPECT_EQ(content(*view), "LandingView") << name.toStdString();
        EXPECT_TRUE(document->fileURL().isEmpty());
    }
    EXPECT_TRUE(m_presenter.errors.isEmpty());

    const auto other = opened(TestPdf().write(m_folder.path(), QStringLiteral("open.pdf")));
    view->openInPlace(other->fileURL());
    EXPECT_EQ(content(*view), "LandingView") << "One file must not be two documents.";
    ASSERT_EQ(m_presenter.broughtForward.size(), 1U);
    EXPECT_EQ(m_presenter.broughtForward.front(), other);
}
