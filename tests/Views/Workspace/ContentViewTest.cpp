#include "ContentView.h"

#include "AssistantDock.h"
#include "LandingView.h"
#include "PDFDocument.h"
#include "PDFEditorWorkspaceView.h"
#include "PDFPage.h"
#include "ViewTest.h"

#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QSignalSpy>

class ContentViewTest : public ViewTest {
protected:
    std::unique_ptr<ContentView> contentView(const std::shared_ptr<PDFEditorDocument>& document) {
        return std::make_unique<ContentView>(document, m_controller, m_defaults,
                                             [this](QWidget*) { return m_password; });
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
};

TEST_F(ContentViewTest, showsWhatTheDocumentCallsFor) {
    EXPECT_EQ(content(*contentView(std::make_shared<PDFEditorDocument>())), "LandingView");
    const auto document = opened(written(TestPdf{.pageCount = 2}.bytes(), QStringLiteral("a.pdf")));
    const auto view = contentView(document);
    const auto* const first = view->workspace();
    const auto page = document->pdfDocument()->removePage(0);
    Q_EMIT document->objectWillChange();
    EXPECT_EQ(view->workspace(), first) << "as long as it has pages";
    document->pdfDocument()->removePage(0);
    Q_EMIT document->objectWillChange();
    EXPECT_EQ(content(*view), "LandingView");
    document->pdfDocument()->insert(page, 0);
    Q_EMIT document->objectWillChange();
    const QPointer<PDFEditorWorkspaceView> workspace = view->workspace();
    ASSERT_TRUE(workspace);

    const auto assistant = view->workspace()->assistant();
    view->workspace()->setShowsAssistant(true);
    const auto dock = [&view] { return find<AssistantDock>(*view->workspace(), QStringLiteral("assistantDock")); };
    dock()->setPanelWidth(500);
    document->setPdfDocument(PDFDocument::fromData(TestPdf().bytes()));
    EXPECT_TRUE(view->workspace()->showsAssistant());
    EXPECT_EQ(dock()->panelWidth(), 500);
    EXPECT_EQ(view->workspace()->assistant(), assistant) << "with its chat and its draft";
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    EXPECT_FALSE(workspace);
}

TEST_F(ContentViewTest, aWrongPasswordIsToldAndTheRightOneUnlocksInPlaceUnlessTheUserGivesUp) {
    const auto document = opened(written(TestPdf{.password = "right"}.bytes(), QStringLiteral("locked.pdf")));
    const auto pdfDocument = document->pdfDocument();
    const auto view = contentView(document);
    show(*view);
    EXPECT_EQ(content(*view), "UnlockDocumentView") << "although it has no pages to see either";
    QSignalSpy closing(view.get(), &ContentView::closeRequested);
    auto* field = find<QLineEdit>(*view, QStringLiteral("password"));
    EXPECT_EQ(field->echoMode(), QLineEdit::Password);
    QTest::mouseClick(find<QPushButton>(*view, QStringLiteral("cancel")), Qt::LeftButton);
    QTest::keyClick(field, Qt::Key_Escape);
    EXPECT_EQ(closing.count(), 2);
    const auto* line = find<QWidget>(*view, QStringLiteral("wrongPassword"));
    EXPECT_FALSE(line->isVisible());
    QTest::keyClicks(field, QStringLiteral("wrong"));
    QTest::keyClick(field, Qt::Key_Return);
    EXPECT_TRUE(line->isVisible());
    field->setText(QStringLiteral("right"));
    QTest::mouseClick(find<QPushButton>(*view, QStringLiteral("unlock")), Qt::LeftButton);
    EXPECT_EQ(content(*view), "PDFEditorWorkspaceView");
    EXPECT_EQ(document->pdfDocument(), pdfDocument);
    EXPECT_TRUE(document->wasPasswordProtected() && !document->isDocumentEdited());
}

TEST_F(ContentViewTest, theRightPasswordToADamagedFileIsTold) {
    const QByteArray bytes = TestPdf{.password = "right"}.bytes().replace("/Pages", "/Pagez");
    const auto document = opened(written(bytes, QStringLiteral("locked.pdf")));
    const auto view = contentView(document);
    find<QLineEdit>(*view, QStringLiteral("password"))->setText(QStringLiteral("right"));
    find<QPushButton>(*view, QStringLiteral("unlock"))->click();
    EXPECT_EQ(find<QLabel>(*view, QStringLiteral("wrongPassword"))->text(),
              QStringLiteral("It is damaged beyond repair."));
    const auto untitled = contentView(std::make_shared<PDFEditorDocument>());
    QSignalSpy failures(untitled.get(), &ContentView::openingFailed);
    m_password = QStringLiteral("right");
    untitled->openInPlace(written(bytes, QStringLiteral("other.pdf")));
    EXPECT_EQ(failures.value(0).value(1).toString(), QStringLiteral("It is damaged beyond repair."));
}

TEST_F(ContentViewTest, aFileOpenedInPlaceFillsTheUntitledDocument) {
    const QUrl url = written(TestPdf{.password = "key"}.bytes(), QStringLiteral("report.pdf"));
    const auto document = std::make_shared<PDFEditorDocument>();
    const auto view = contentView(document);
    QSignalSpy done(view.get(), &ContentView::openedInPlace);
    view->openInPlace(url);
    EXPECT_EQ(content(*view), "LandingView") << "The user gave up the password.";
    EXPECT_TRUE(document->fileURL().isEmpty() && done.empty());
    m_password = QStringLiteral("key");
    view->openInPlace(url);
    EXPECT_EQ(content(*view), "PDFEditorWorkspaceView");
    EXPECT_EQ(document->displayName(), QStringLiteral("report.pdf"));
    EXPECT_EQ(done.count(), 1);
    EXPECT_EQ(m_controller.recentDocumentURLs(), QList<QUrl>{url});
}

TEST_F(ContentViewTest, aTabThatIsClosedOrChoosesAgainWhileAFileIsReadTakesNothingOfIt) {
    FileReading::patience = std::chrono::milliseconds(0);
    const QUrl first = written(TestPdf().bytes(), QStringLiteral("first.pdf"));
    const QUrl second = written(TestPdf().bytes(), QStringLiteral("second.pdf"));
    const auto document = std::make_shared<PDFEditorDocument>();
    const auto view = contentView(document);
    QSignalSpy done(view.get(), &ContentView::openedInPlace);
    view->openInPlace(first);
    EXPECT_EQ(content(*view), "LandingView") << "nobody waits";
    view->openInPlace(second);
    EXPECT_TRUE(done.wait());
    QTest::qWait(20);
    EXPECT_EQ(done.count(), 1);
    EXPECT_EQ(document->displayName(), QStringLiteral("second.pdf"));
    const auto closed = std::make_shared<PDFEditorDocument>();
    contentView(closed)->openInPlace(first);
    QTest::qWait(20);
    EXPECT_TRUE(closed->fileURL().isEmpty());
    EXPECT_EQ(m_controller.recentDocumentURLs(), QList<QUrl>{second});
}

TEST_F(ContentViewTest, whatCantBeOpenedInPlaceChangesNothing) {
    const auto document = std::make_shared<PDFEditorDocument>();
    const auto view = contentView(document);
    const auto other = opened(written(TestPdf().bytes(), QStringLiteral("open.pdf"))); // two documents of one file
    for (const QUrl& url : {written("Not a PDF at all.", QStringLiteral("text.pdf")),
                            QUrl::fromLocalFile(m_folder.path()), other->fileURL()}) {
        view->openInPlace(url);
        EXPECT_EQ(content(*view), "LandingView") << url.fileName().toStdString();
        EXPECT_TRUE(document->fileURL().isEmpty());
    }
    EXPECT_TRUE(m_presenter.errors.isEmpty());
    EXPECT_EQ(m_presenter.broughtForward, std::vector<std::shared_ptr<Document>>{other});
}
