#include "DocumentRecovery.h"

#include "DocumentController.h"
#include "EditedPdf.h"
#include "LostDocuments.h"
#include "PageReplacement.h"
#include "RecoveryRecord.h"
#include "RecoveryStore.h"
#include "SilentPresenter.h"
#include "UserDefaults.h"

#include <QDir>
#include <QDirIterator>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

#include <csignal>
#include <sys/resource.h>

#include <gtest/gtest.h>

using namespace std::chrono_literals;

namespace {

constexpr int timeLimitInMilliseconds = 60'000;

RecoveryPace quickPace() {
    RecoveryPace pace;
    pace.afterChange = pace.betweenWrites = pace.longestBetweenWrites = pace.longestBetweenWholeWrites = 5ms;
    pace.beforeRetry = pace.betweenPictures = 5ms;
    pace.pictureTimeLimit = 30s;
    return pace;
}

/// What a process has, without windows. A crash is that it is gone with its documents open.
struct Session {
    explicit Session(const QTemporaryDir& folder, const RecoveryPace& pace = quickPace())
        : defaults(folder.filePath(QStringLiteral("settings.ini"))),
          controller([] { return std::make_shared<PDFEditorDocument>(); }, presenter, defaults),
          recovery(controller, folder.filePath(QStringLiteral("recovery")), pace), lostDocuments(controller, recovery) {
        FileReading::patience = 1min;
    }

    std::shared_ptr<PDFEditorDocument> open(const QString& path) {
        std::shared_ptr<PDFEditorDocument> document;
        controller.openDocument(QUrl::fromLocalFile(path), false, [&](const auto& opened, bool, const QString&) {
            document = std::dynamic_pointer_cast<PDFEditorDocument>(opened);
        });
        return document;
    }

    /// Makes the change and waits until it is recorded.
    void record(const std::function<void()>& change) {
        QSignalSpy written(&recovery, &DocumentRecovery::written);
        change();
        EXPECT_TRUE(written.wait(timeLimitInMilliseconds));
    }

    /// The only lost document, recovered; null with `error` set when that failed.
    std::shared_ptr<PDFEditorDocument> recoverOnly(QString* error = nullptr) {
        const std::vector<LostDocument> lost = lostDocuments.take();
        EXPECT_EQ(lost.size(), 1U);
        std::shared_ptr<PDFEditorDocument> recovered;
        bool isDone = false;
        if (!lost.empty())
            lostDocuments.recover(lost.front().id, [&](const auto& document, const QString& sentence) {
                recovered = document;
                isDone = true;
                if (error)
                    *error = sentence;
            });
        EXPECT_TRUE(QTest::qWaitFor([&isDone] { return isDone; }, timeLimitInMilliseconds));
        return recovered;
    }

    SilentPresenter presenter;
    UserDefaults defaults;
    DocumentController controller;
    DocumentRecovery recovery;
    LostDocuments lostDocuments;
};

class DocumentRecoveryTest : public testing::Test {
protected:
    void SetUp() override { EditedPdf::store(m_pdf, EditedPdf::pages(3)); }

    /// Of records, whoever has them.
    int recordCount() const {
        return static_cast<int>(
            QDir(m_folder.filePath(QStringLiteral("recovery"))).entryList(QDir::Dirs | QDir::NoDotAndDotDot).size());
    }

    void expectNoRecordSoon() const {
        EXPECT_TRUE(QTest::qWaitFor([this] { return recordCount() == 0; }, timeLimitInMilliseconds));
    }

    /// Leaves a record of the file with one square more.
    void crashWithSquare() const {
        Session session(m_folder);
        const auto document = session.open(m_pdf);
        session.record([&] { EditedPdf::addSquare(*document); });
    }

    QTemporaryDir m_folder;
    const QString m_pdf = m_folder.filePath(QStringLiteral("report.pdf"));
};

TEST_F(DocumentRecoveryTest, thereIsARecordWhileSomethingIsUnsaved) {
    Session session(m_folder);
    const auto document = session.open(m_pdf);
    QTest::qWait(30);
    EXPECT_EQ(recordCount(), 0);

    // Undone.
    session.record([&] { EditedPdf::addSquare(*document); });
    EXPECT_EQ(recordCount(), 1);
    document->undoManager()->undo();
    expectNoRecordSoon();

    // Saved.
    QCoreApplication::processEvents(); // a step of its own
    session.record([&] { EditedPdf::addSquare(*document); });
    session.controller.saveDocument(document);
    expectNoRecordSoon();

    // A save that failed keeps it.
    QCoreApplication::processEvents();
    session.record([&] { EditedPdf::addSquare(*document); });
    session.presenter.saveLocation = m_folder.filePath(QStringLiteral("no/such/folder.pdf"));
    bool isDone = false;
    session.controller.saveDocumentAs(document, [&isDone](bool) { isDone = true; });
    EXPECT_TRUE(QTest::qWaitFor([&isDone] { return isDone; }, timeLimitInMilliseconds));
    EXPECT_EQ(session.presenter.errors.size(), 1);
    EXPECT_EQ(recordCount(), 1);

    // Closed, and the changes given up.
    session.controller.closeDocument(document);
    expectNoRecordSoon();
}

TEST_F(DocumentRecoveryTest, aPageThatAPictureReplacedLeavesNothingInRecords) {
    Session session(m_folder);
    const auto document = session.open(m_pdf);
    const auto recorded = [this] {
        QByteArray all;
        QDirIterator files(m_folder.filePath(QStringLiteral("recovery")), QDir::Files, QDirIterator::Subdirectories);
        while (files.hasNext()) {
            QFile file(files.next());
            EXPECT_TRUE(file.open(QFile::ReadOnly));
            all += PdfFixture::withStreamsInflated(file.readAll());
        }
        return all;
    };
    session.record([&] { EditedPdf::addSquare(*document); });
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

    session.record([&] { EditedPdf::addSquare(*document); });
    EXPECT_TRUE(recorded().contains("Page 2"));
    EXPECT_FALSE(recorded().contains("Page 1"));
}

TEST_F(DocumentRecoveryTest, changesThatComeTogetherAreWrittenTogetherAndAnEndingSessionWaitsForNoPause) {
    RecoveryPace pace = quickPace();
    pace.afterChange = 50ms;
    pace.betweenWrites = pace.longestBetweenWrites = pace.longestBetweenWholeWrites = 1min;
    Session session(m_folder, pace);
    const auto document = session.open(m_pdf);
    QSignalSpy written(&session.recovery, &DocumentRecovery::written);
    for (int i = 0; i < 5; ++i)
        EditedPdf::addSquare(*document);
    ASSERT_TRUE(written.wait(timeLimitInMilliseconds));
    EditedPdf::addSquare(*document);
    QTest::qWait(100);
    EXPECT_EQ(written.size(), 1);
    session.controller.prepareForSessionEnd();
    const QDir records(m_folder.filePath(QStringLiteral("recovery")));
    const QString name = records.entryList(QDir::Dirs | QDir::NoDotAndDotDot).value(0);
    EXPECT_TRUE(records.exists(name + QStringLiteral("/update-3"))) << "the base and two updates";
}

TEST_F(DocumentRecoveryTest, anEndingSessionRecordsAlsoWhatCameDuringAWriteAndWaitsForNoSlowPicture) {
    PdfFixture slow;
    slow.addPageWithContent(QByteArray("0 0 m 600 700 l S 600 0 m 0 700 l S\n").repeated(300'000));
    EditedPdf::store(m_pdf, slow.bytes());
    {
        RecoveryPace pace = quickPace();
        pace.pictureTimeLimit = 20ms;
        Session session(m_folder, pace);
        const auto document = session.open(m_pdf);
        EditedPdf::addSquare(*document);
        session.recovery.writePending();
        EditedPdf::addSquare(*document);
        session.controller.prepareForSessionEnd();
    }
    Session session(m_folder);
    EXPECT_TRUE(session.lostDocuments.take().front().picture.isNull());
    session.lostDocuments.release();
    const auto document = session.recoverOnly();
    ASSERT_TRUE(document);
    EXPECT_EQ(EditedPdf::squareCount(*document->pdfDocument()), 2);
}

TEST_F(DocumentRecoveryTest, whatWasChangedDuringASaveIsRecoveredIntoTheSavedFile) {
    const QString other = m_folder.filePath(QStringLiteral("other.pdf"));
    for (const QString& path : {m_pdf, other}) {
        SCOPED_TRACE(path.toStdString());
        const int squares = EditedPdf::squareCount(*PDFDocument::fromFile(m_pdf));
        {
            Session session(m_folder);
            const auto document = session.open(m_pdf);
            EditedPdf::addSquare(*document);
            bool isSaved = false;
            session.presenter.saveLocation = path;
            session.controller.saveDocumentAs(document, [&isSaved](bool succeeded) { isSaved = succeeded; });
            EditedPdf::addSquare(*document);
            session.recovery.writePending();
            EXPECT_TRUE(QTest::qWaitFor([&isSaved] { return isSaved; }, timeLimitInMilliseconds));
            EXPECT_TRUE(document->isDocumentEdited());
            session.controller.prepareForSessionEnd();
        }
        EXPECT_EQ(EditedPdf::squareCount(*PDFDocument::fromFile(path)), squares + 1);
        Session session(m_folder);
        const auto document = session.recoverOnly();
        ASSERT_TRUE(document);
        EXPECT_EQ(document->fileURL(), QUrl::fromLocalFile(path));
        EXPECT_EQ(EditedPdf::squareCount(*document->pdfDocument()), squares + 2);
        session.controller.closeDocument(document);
        expectNoRecordSoon();
    }
}

TEST_F(DocumentRecoveryTest, aRecoveredDocumentIsEditedAndHasItsFileAndKeepsItsRecord) {
    crashWithSquare();
    for (const int squares : {1, 2}) {
        Session session(m_folder);
        const auto document = session.recoverOnly();
        ASSERT_TRUE(document);
        EXPECT_EQ(document->fileURL(), QUrl::fromLocalFile(m_pdf));
        EXPECT_TRUE(document->isDocumentEdited());
        EXPECT_FALSE(document->undoManager()->canUndo());
        EXPECT_EQ(session.presenter.shown.size(), 1U);
        EXPECT_EQ(EditedPdf::squareCount(*document->pdfDocument()), squares);
        if (squares == 1)
            session.record([&] { EditedPdf::addSquare(*document); });
        EXPECT_EQ(recordCount(), 1) << "it goes on with its record";
    } // and another crash
    Session session(m_folder);
    const auto document = session.recoverOnly();
    ASSERT_TRUE(document);
    while (document->pdfDocument()->pageCount() > 1)
        EditedPdf::removeLastPage(*document);
    session.record([&] { EditedPdf::removeLastPage(*document); });
    session.controller.saveDocument(document);
    expectNoRecordSoon();
    EXPECT_EQ(PDFDocument::fromFile(m_pdf)->pageCount(), 0) << "a document may have no pages";
}

TEST_F(DocumentRecoveryTest, whereTheOriginalIsNoLongerAsItWasTheRecoveredOneIsUntitled) {
    crashWithSquare();
    const std::pair<LostDocument::Original, QString> cases[] = {
        {LostDocument::Original::changed, QStringLiteral("report (recovered)")},
        {LostDocument::Original::missing, QStringLiteral("report")}};
    for (const auto& [original, name] : cases) {
        if (original == LostDocument::Original::changed)
            EditedPdf::store(m_pdf, EditedPdf::pages(4));
        else
            QFile::remove(m_pdf);
        Session session(m_folder);
        EXPECT_EQ(session.lostDocuments.take().front().original, original);
        session.lostDocuments.release();
        const auto document = session.recoverOnly();
        ASSERT_TRUE(document);
        EXPECT_TRUE(document->fileURL().isEmpty());
        EXPECT_EQ(document->suggestedFileName(), name + QStringLiteral(".pdf"));
        EXPECT_EQ(EditedPdf::squareCount(*document->pdfDocument()), 1);
    }
}

TEST_F(DocumentRecoveryTest, theOriginalThatWasOpenedMeanwhileMakesRoomUnlessItIsEdited) {
    crashWithSquare();
    {
        Session session(m_folder);
        const auto edited = session.open(m_pdf);
        EditedPdf::addSquare(*edited);
        EditedPdf::addSquare(*edited);
        const auto document = session.recoverOnly();
        ASSERT_TRUE(document);
        EXPECT_EQ(document->displayName(), QStringLiteral("report (recovered)"));
        EXPECT_EQ(session.controller.documents().size(), 2U);
        session.controller.closeDocument(edited);
    }
    Session session(m_folder);
    const auto untouched = session.open(m_pdf);
    const auto document = session.recoverOnly();
    ASSERT_TRUE(document);
    EXPECT_EQ(document->fileURL(), QUrl::fromLocalFile(m_pdf));
    EXPECT_TRUE(QTest::qWaitFor([&] { return session.controller.documents().size() == 1; }));
    EXPECT_EQ(session.controller.documents().front(), document);
}

TEST_F(DocumentRecoveryTest, aDocumentThatWasNeverSavedIsRecoveredWhole) {
    for (const QUrl& source : {QUrl(), QUrl::fromLocalFile(QStringLiteral("/papers/Brief.docx"))}) {
        {
            Session session(m_folder);
            const auto document = std::dynamic_pointer_cast<PDFEditorDocument>(session.controller.newDocument());
            if (!source.isEmpty())
                document->becomeImport(source);
            session.record([&] {
                const auto pages = PDFDocument::fromFile(m_pdf);
                document->pdfDocument()->insert(pages->page(1)->copy(), 0);
                document->undoManager()->markEdited();
            });
        }
        Session session(m_folder);
        EXPECT_EQ(session.lostDocuments.take().front().original, LostDocument::Original::none);
        session.lostDocuments.release();
        const auto document = session.recoverOnly();
        ASSERT_TRUE(document);
        EXPECT_TRUE(document->fileURL().isEmpty() && document->isDocumentEdited());
        EXPECT_EQ(document->importedFrom(), source);
        EXPECT_TRUE(document->displayName().startsWith(source.isEmpty() ? QStringLiteral("Untitled")
                                                                        : QStringLiteral("Brief")));
        ASSERT_EQ(document->pdfDocument()->pageCount(), 1);
        EXPECT_TRUE(document->pdfDocument()->page(0)->string().contains(QStringLiteral("Page 2")));
        session.controller.closeDocument(document);
        expectNoRecordSoon();
    }
}

TEST_F(DocumentRecoveryTest, aProtectedDocumentStaysProtectedInItsRecordAndWaitsForItsPassword) {
    EditedPdf::store(m_pdf, EditedPdf::pages(3, "secret"));
    const QString marker = QStringLiteral("Nobody may read this");
    {
        Session session(m_folder);
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
        const auto lost =
            RecoveryStore::takeLost(m_folder.filePath(QStringLiteral("recovery")), QDateTime::currentDateTime());
        ASSERT_EQ(lost.size(), 1U);
        EXPECT_TRUE(lost.front()->picture().isNull());
        const QByteArray bytes = lost.front()->bytes();
        EXPECT_FALSE(bytes.contains("Page 1") || bytes.contains(marker.toLatin1()));
    }
    Session session(m_folder);
    const auto document = session.recoverOnly();
    ASSERT_TRUE(document && document->pdfDocument()->isLocked());
    EXPECT_TRUE(document->wasPasswordProtected());
    Q_EMIT document->objectWillChange();
    QTest::qWait(50);
    session.controller.closeDocument(document); // the password is not at hand
    session.recovery.waitForDone();
    EXPECT_EQ(recordCount(), 1);

    const auto again = session.recoverOnly();
    ASSERT_TRUE(again);
    EXPECT_FALSE(again->pdfDocument()->unlock(QStringLiteral("wrong")));
    ASSERT_TRUE(again->pdfDocument()->unlock(QStringLiteral("secret")));
    EXPECT_EQ(again->pdfDocument()->page(0)->annotations().back()->contents(), marker);
    session.controller.closeDocument(again);
    expectNoRecordSoon();
}

TEST_F(DocumentRecoveryTest, thePictureShowsThePageThatTheReaderWasOnWithItsAnnotations) {
    {
        Session session(m_folder);
        session.recovery.setCurrentPage([](const PDFEditorDocument&) { return 0; });
        const auto document = session.open(m_pdf);
        session.record([&] { EditedPdf::addSquare(*document); });
        session.recovery.waitForDone();
    }
    Session session(m_folder);
    const std::vector<LostDocument> lost = session.lostDocuments.take();
    ASSERT_EQ(lost.size(), 1U);
    const QImage& picture = lost.front().picture;
    ASSERT_EQ(picture.height(), 240); // of 792 points
    const auto colorAt = [&picture](double x, double y) {
        return picture.pixelColor(int(x * picture.width() / 612), int((792 - y) * picture.height() / 792));
    };
    EXPECT_EQ(colorAt(200, 175), QColor(Qt::red));
    EXPECT_EQ(colorAt(400, 175), QColor(Qt::white));
    EXPECT_EQ(lost.front().description.pageCount, 3);
}

TEST_F(DocumentRecoveryTest, whatCannotBeWrittenIsToldOnceAndTriedAgain) {
    std::signal(SIGXFSZ, SIG_IGN);
    rlimit former = {};
    ASSERT_EQ(getrlimit(RLIMIT_FSIZE, &former), 0);
    const auto limitFiles = [&former](qint64 bytes) {
        const rlimit limit{bytes > 0 ? rlim_t(bytes) : former.rlim_cur, former.rlim_max};
        ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &limit), 0);
    };
    const QString large = m_folder.filePath(QStringLiteral("large.pdf"));
    EditedPdf::store(large, EditedPdf::pages(300));
    Session session(m_folder);
    const auto tooLarge = session.open(large);
    const auto document = session.open(m_pdf);
    QSignalSpy failed(&session.recovery, &DocumentRecovery::writingFailed);
    limitFiles((QFileInfo(m_pdf).size() + QFileInfo(large).size()) / 2);
    EditedPdf::addSquare(*tooLarge);
    EXPECT_TRUE(failed.wait(timeLimitInMilliseconds));
    for (int i = 0; i < 5; ++i) {
        session.record([&] { EditedPdf::addSquare(*document); });
        QTest::qWait(30); // the other is tried again
    }
    EXPECT_EQ(failed.size(), 1) << "not told again when another is written";
    // When nothing of that one is unsaved any more, it is news that the other can't be written.
    tooLarge->undoManager()->undo();
    limitFiles(300);
    EditedPdf::addSquare(*document);
    EXPECT_TRUE(failed.wait(timeLimitInMilliseconds));
    EXPECT_EQ(
        failed.last().front().toString(),
        QStringLiteral("Unsaved changes can't be kept safe from a crash now. The file is too large for this disk."));
    EXPECT_TRUE(document->isDocumentEdited());
    session.record([&] { limitFiles(0); });
    EXPECT_EQ(recordCount(), 1);
    QDir(m_folder.filePath(QStringLiteral("recovery"))).removeRecursively(); // by somebody else
    session.record([&] { EditedPdf::addSquare(*document); });
    EXPECT_EQ(recordCount(), 1);
}

TEST_F(DocumentRecoveryTest, oneThatCannotBeReadStaysAndCanBeDeleted) {
    crashWithSquare();
    const QString records = m_folder.filePath(QStringLiteral("recovery/"));
    const QString name = QDir(records).entryList(QDir::Dirs | QDir::NoDotAndDotDot).constFirst();
    QFile base(records + name + QStringLiteral("/base-1"));
    ASSERT_TRUE(base.open(QIODevice::ReadWrite));
    base.write("?");
    base.close();
    Session session(m_folder);
    QString error;
    EXPECT_EQ(session.recoverOnly(&error), nullptr);
    EXPECT_EQ(error, QStringLiteral("It is damaged."));
    EXPECT_TRUE(session.controller.documents().empty());
    EXPECT_EQ(recordCount(), 1);
    session.lostDocuments.discard(name);
    EXPECT_EQ(recordCount(), 0);
}

} // namespace
