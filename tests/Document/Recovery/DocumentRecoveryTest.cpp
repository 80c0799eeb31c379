#include "DocumentRecovery.h"

#include "FolderTest.h"
#include "PageOperations.h"
#include "PageReplacement.h"
#include "PdfFixtures.h"
#include "RecoveryRecord.h"
#include "RecoverySession.h"
#include "RecoveryStore.h"
#include "RestrictedRuns.h"

#include <QDirIterator>

using namespace std::chrono_literals;

namespace {

class DocumentRecoveryTest : public FolderTest {
protected:
    void SetUp() override { storePages(3); }

    /// Pages that say "Page 1", "Page 2", ….
    void storePages(int count, const QByteArray& password = {}, const char* name = "report.pdf") const {
        PdfFixture fixture;
        for (int page = 1; page <= count; ++page)
            fixture.addPage({QStringLiteral("Page %1").arg(page)});
        makeFile(name, password.isEmpty() ? fixture.bytes()
                                          : fixture.encrypted(password, password, PdfFixture::Encryption::aes256));
    }

    /// The names of records, whoever has them.
    QStringList records() const { return QDir(path("recovery")).entryList(QDir::Dirs | QDir::NoDotAndDotDot); }

    void expectNoRecordSoon() const {
        EXPECT_TRUE(QTest::qWaitFor([this] { return records().isEmpty(); }, Session::timeLimitInMilliseconds));
    }

    /// Leaves a record of the file with one square more.
    void crashWithSquare() const {
        Session session(m_folder.path());
        session.recovery.setCurrentPage([](const PDFEditorDocument&) { return 0; });
        session.recordSquare(*session.open(m_pdf));
        session.recovery.waitForDone();
    }

    void closeAndExpectNoRecord(Session& session, const std::shared_ptr<Document>& document) const {
        session.controller.closeDocument(document);
        expectNoRecordSoon();
    }

    const QString m_pdf = path("report.pdf");
};

TEST_F(DocumentRecoveryTest, thereIsARecordWhileSomethingIsUnsaved) {
    Session session(m_folder.path());
    const auto document = session.open(m_pdf);
    QTest::qWait(30);
    EXPECT_EQ(records().size(), 0);

    session.recordSquare(*document);
    EXPECT_EQ(records().size(), 1);
    document->undoManager()->undo();
    expectNoRecordSoon();

    // A save that failed keeps it.
    QCoreApplication::processEvents();
    session.recordSquare(*document);
    session.presenter.saveLocation = path("no/such/folder.pdf");
    session.controller.saveDocumentAs(document);
    EXPECT_TRUE(
        QTest::qWaitFor([&] { return session.presenter.errors.size() == 1; }, Session::timeLimitInMilliseconds));
    EXPECT_EQ(records().size(), 1);

    // Closed, and the changes given up.
    closeAndExpectNoRecord(session, document);
}

TEST_F(DocumentRecoveryTest, aPageThatAPictureReplacedLeavesNothingInRecords) {
    Session session(m_folder.path());
    const auto document = session.open(m_pdf);
    const auto recorded = [this] {
        QByteArray all;
        QDirIterator files(path("recovery"), QDir::Files, QDirIterator::Subdirectories);
        while (files.hasNext()) {
            QFile file(files.next());
            EXPECT_TRUE(file.open(QFile::ReadOnly));
            all += PdfFixture::withStreamsInflated(file.readAll());
        }
        return all;
    };
    session.recordSquare(*document);
    EXPECT_TRUE(recorded().contains("Page 1"));

    const std::shared_ptr<PDFPage> page = document->pdfDocument()->page(0);
    QImage picture(60, 80, QImage::Format_Grayscale8);
    picture.fill(Qt::gray);
    QCoreApplication::processEvents(); // a step of its own
    session.record([&] {
        PageReplacement::apply({{0, page, PDFPage::fromImage(picture, *page)}}, *document,
                               document->undoManager().get());
    });
    EXPECT_FALSE(recorded().contains("Page 1"));
    session.controller.saveDocument(document);
    expectNoRecordSoon();

    session.recordSquare(*document);
    EXPECT_TRUE(recorded().contains("Page 2"));
    EXPECT_FALSE(recorded().contains("Page 1"));
}

TEST_F(DocumentRecoveryTest, changesThatComeTogetherAreWrittenTogetherAndAnEndingSessionWaitsForNoPause) {
    RecoveryPace pace = Session::quickPace();
    pace.afterChange = 50ms;
    pace.betweenWrites = pace.longestBetweenWrites = pace.longestBetweenWholeWrites = 1min;
    Session session(m_folder.path(), pace);
    const auto document = session.open(m_pdf);
    QSignalSpy written(&session.recovery, &DocumentRecovery::written);
    for (int i = 0; i < 5; ++i)
        EditedPdf::addSquare(*document);
    ASSERT_TRUE(written.wait(Session::timeLimitInMilliseconds));
    EditedPdf::addSquare(*document);
    QTest::qWait(100);
    EXPECT_EQ(written.size(), 1);
    session.controller.prepareForSessionEnd();
    EXPECT_TRUE(QFile::exists(path("recovery/") + records().value(0) + QStringLiteral("/update-3")))
        << "the base and two updates";
}

TEST_F(DocumentRecoveryTest, anEndingSessionRecordsAlsoWhatCameDuringAWriteAndWaitsForNoSlowPicture) {
    PdfFixture slow;
    slow.addPageWithContent(QByteArray("0 0 m 600 700 l S 600 0 m 0 700 l S\n").repeated(300'000));
    makeFile("report.pdf", slow.bytes());
    {
        RecoveryPace pace = Session::quickPace();
        pace.pictureTimeLimit = 20ms;
        Session session(m_folder.path(), pace);
        const auto document = session.open(m_pdf);
        EditedPdf::addSquare(*document);
        session.recovery.writePending();
        EditedPdf::addSquare(*document);
        session.controller.prepareForSessionEnd();
    }
    Session session(m_folder.path());
    const auto document = session.recoverLost();
    EXPECT_TRUE(session.lost->picture.isNull());
    EXPECT_EQ(EditedPdf::squareCount(*document->pdfDocument()), 2);
}

TEST_F(DocumentRecoveryTest, whatWasChangedDuringASaveIsRecoveredIntoTheSavedFile) {
    const QString other = path("other.pdf");
    for (const QString& path : {m_pdf, other}) {
        SCOPED_TRACE(path.toStdString());
        const int squares = EditedPdf::squareCount(*PDFDocument::fromFile(m_pdf));
        {
            Session session(m_folder.path());
            const auto document = session.open(m_pdf);
            EditedPdf::addSquare(*document);
            bool isSaved = false;
            session.presenter.saveLocation = path;
            session.controller.saveDocumentAs(document, [&isSaved](bool succeeded) { isSaved = succeeded; });
            EditedPdf::addSquare(*document);
            session.recovery.writePending();
            EXPECT_TRUE(QTest::qWaitFor([&isSaved] { return isSaved; }, Session::timeLimitInMilliseconds));
            EXPECT_TRUE(document->isDocumentEdited());
            session.controller.prepareForSessionEnd();
        }
        EXPECT_EQ(EditedPdf::squareCount(*PDFDocument::fromFile(path)), squares + 1);
        Session session(m_folder.path());
        const auto document = session.recoverLost();
        EXPECT_EQ(document->fileURL(), QUrl::fromLocalFile(path));
        EXPECT_EQ(EditedPdf::squareCount(*document->pdfDocument()), squares + 2);
        closeAndExpectNoRecord(session, document);
    }
}

TEST_F(DocumentRecoveryTest, aRecoveredDocumentIsEditedAndHasItsFileAndKeepsItsRecord) {
    crashWithSquare();
    for (const int squares : {1, 2}) {
        Session session(m_folder.path());
        const auto document = session.recoverLost();
        EXPECT_EQ(document->fileURL(), QUrl::fromLocalFile(m_pdf));
        EXPECT_TRUE(document->isDocumentEdited());
        EXPECT_FALSE(document->undoManager()->canUndo());
        EXPECT_EQ(EditedPdf::squareCount(*document->pdfDocument()), squares);
        if (squares == 1)
            session.recordSquare(*document);
        EXPECT_EQ(records().size(), 1) << "it goes on with its record";
    } // and another crash
    Session session(m_folder.path());
    const auto document = session.recoverLost();
    session.record([&] { PageOperations::deletePages(*document, {0, 1, 2}, document->undoManager().get()); });
    session.controller.saveDocument(document);
    expectNoRecordSoon();
    EXPECT_EQ(PDFDocument::fromFile(m_pdf)->pageCount(), 0) << "a document may have no pages";
}

TEST_F(DocumentRecoveryTest, theOriginalThatWasOpenedMeanwhileMakesRoomUnlessItIsEdited) {
    crashWithSquare();
    {
        Session session(m_folder.path());
        const auto edited = session.open(m_pdf);
        EditedPdf::addSquare(*edited);
        EditedPdf::addSquare(*edited);
        const auto document = session.recoverLost();
        EXPECT_EQ(document->displayName(), QStringLiteral("report (recovered)"));
        EXPECT_EQ(session.controller.documents().size(), 2U);
        session.controller.closeDocument(edited);
    }
    Session session(m_folder.path());
    const auto untouched = session.open(m_pdf);
    const auto document = session.recoverLost();
    EXPECT_EQ(document->fileURL(), QUrl::fromLocalFile(m_pdf));
    EXPECT_TRUE(QTest::qWaitFor([&] { return session.controller.documents().size() == 1; }));
    EXPECT_EQ(session.controller.documents().front(), document);
}

TEST_F(DocumentRecoveryTest, whereTheOriginalIsNoLongerAsItWasTheRecoveredOneIsUntitled) {
    crashWithSquare();
    const std::pair<LostDocument::Original, QString> cases[] = {
        {LostDocument::Original::changed, QStringLiteral("report (recovered)")},
        {LostDocument::Original::missing, QStringLiteral("report")}};
    for (const auto& [original, name] : cases) {
        storePages(4);
        if (original == LostDocument::Original::missing)
            QFile::remove(m_pdf);
        Session session(m_folder.path());
        const auto document = session.recoverLost();
        EXPECT_EQ(session.lost->original, original);
        EXPECT_TRUE(document->fileURL().isEmpty());
        EXPECT_EQ(document->suggestedFileName(), name + QStringLiteral(".pdf"));
        EXPECT_EQ(EditedPdf::squareCount(*document->pdfDocument()), 1);
    }
}

TEST_F(DocumentRecoveryTest, aDocumentThatWasNeverSavedIsRecoveredWhole) {
    for (const QUrl& source : {QUrl(), QUrl::fromLocalFile(QStringLiteral("/papers/Brief.docx"))}) {
        {
            Session session(m_folder.path());
            const auto document = std::dynamic_pointer_cast<PDFEditorDocument>(session.controller.newDocument());
            if (!source.isEmpty())
                document->becomeImport(source);
            session.record([&] {
                const auto pages = PDFDocument::fromFile(m_pdf);
                document->pdfDocument()->insert(pages->page(1)->copy(), 0);
                document->undoManager()->markEdited();
            });
        }
        Session session(m_folder.path());
        const auto document = session.recoverLost();
        EXPECT_EQ(session.lost->original, LostDocument::Original::none);
        EXPECT_TRUE(document->fileURL().isEmpty() && document->isDocumentEdited());
        EXPECT_EQ(document->importedFrom(), source);
        EXPECT_EQ(document->displayName().startsWith(QStringLiteral("Brief")), !source.isEmpty());
        ASSERT_EQ(document->pdfDocument()->pageCount(), 1);
        EXPECT_TRUE(document->pdfDocument()->page(0)->string().contains(QStringLiteral("Page 2")));
        closeAndExpectNoRecord(session, document);
    }
}

TEST_F(DocumentRecoveryTest, aProtectedDocumentStaysProtectedInItsRecordAndWaitsForItsPassword) {
    storePages(3, "secret");
    const QString marker = QStringLiteral("Nobody may read this");
    {
        Session session(m_folder.path());
        const auto document = session.open(m_pdf);
        ASSERT_TRUE(document->pdfDocument()->unlock(QStringLiteral("secret")));
        Q_EMIT document->objectWillChange();
        session.record([&] {
            EditedPdf::addSquare(*document);
            document->pdfDocument()->page(0)->annotations().back()->setContents(marker);
        });
        session.recovery.waitForDone();
    }
    {
        const auto lost = RecoveryStore::takeLost(path("recovery"), QDateTime::currentDateTime());
        ASSERT_EQ(lost.size(), 1U);
        EXPECT_TRUE(lost.front()->picture().isNull());
        const QByteArray bytes = lost.front()->bytes();
        EXPECT_FALSE(bytes.contains("Page 1") || bytes.contains(marker.toLatin1()));
    }
    Session session(m_folder.path());
    const auto document = session.recoverLost();
    ASSERT_TRUE(document->pdfDocument()->isLocked());
    session.controller.closeDocument(document); // the password is not at hand
    session.recovery.waitForDone();
    EXPECT_EQ(records().size(), 1);

    const auto again = session.recoverLost();
    ASSERT_TRUE(again->pdfDocument()->unlock(QStringLiteral("secret")));
    EXPECT_EQ(again->pdfDocument()->page(0)->annotations().back()->contents(), marker);
    closeAndExpectNoRecord(session, again);
}

TEST_F(DocumentRecoveryTest, thePictureShowsThePageThatTheReaderWasOnWithItsAnnotations) {
    crashWithSquare();
    Session session(m_folder.path());
    session.recoverLost();
    EXPECT_EQ(session.lost->description.pageCount, 3);
    const QImage& picture = session.lost->picture;
    ASSERT_EQ(picture.height(), 240); // of 792 points
    EXPECT_EQ(picture.pixelColor(60, 187), QColor(Qt::red));
    EXPECT_EQ(picture.pixelColor(121, 187), QColor(Qt::white));
}

TEST_F(DocumentRecoveryTest, whatCannotBeWrittenIsToldOnceAndTriedAgain) {
    const QString large = path("large.pdf");
    storePages(300, {}, "large.pdf");
    Session session(m_folder.path());
    const auto tooLarge = session.open(large);
    const auto document = session.open(m_pdf);
    QSignalSpy failed(&session.recovery, &DocumentRecovery::writingFailed);
    std::optional<RestrictedRuns::FileLimit> limit((QFileInfo(m_pdf).size() + QFileInfo(large).size()) / 2);
    EditedPdf::addSquare(*tooLarge);
    EXPECT_TRUE(failed.wait(Session::timeLimitInMilliseconds));
    for (int i = 0; i < 5; ++i) {
        session.recordSquare(*document);
        QTest::qWait(30); // the other is tried again
    }
    EXPECT_EQ(failed.size(), 1) << "not told again when another is written";
    // When nothing of that one is unsaved any more, it is news that the other can't be written.
    tooLarge->undoManager()->undo();
    limit.emplace(300);
    EditedPdf::addSquare(*document);
    EXPECT_TRUE(failed.wait(Session::timeLimitInMilliseconds));
    EXPECT_EQ(
        failed.last().front().toString(),
        QStringLiteral("Unsaved changes can't be kept safe from a crash now. The file is too large for this disk."));
    EXPECT_TRUE(document->isDocumentEdited());
    session.record([&limit] { limit.reset(); });
    EXPECT_EQ(records().size(), 1);
    QDir(path("recovery")).removeRecursively(); // by somebody else
    session.recordSquare(*document);
    EXPECT_EQ(records().size(), 1);
}

TEST_F(DocumentRecoveryTest, oneThatCannotBeReadStaysAndCanBeDeleted) {
    crashWithSquare();
    const QString name = records().constFirst();
    const QString base = QStringLiteral("recovery/%1/base-1").arg(name);
    makeFile(qPrintable(base), QByteArray(QFileInfo(path(base)).size(), '?'));
    Session session(m_folder.path());
    try {
        session.recoverLost();
        ADD_FAILURE() << "it was recovered";
    } catch (const std::runtime_error& error) {
        EXPECT_STREQ(error.what(), "It is damaged.");
    }
    EXPECT_TRUE(session.controller.documents().empty());
    EXPECT_EQ(records().size(), 1);
    session.lostDocuments.discard(name);
    EXPECT_EQ(records().size(), 0);
}

} // namespace
