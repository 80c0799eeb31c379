#include "FolderTest.h"
#include "PdfFixtures.h"
#include "PdfPrograms.h"
#include "RecoveryRecord.h"
#include "RecoverySession.h"
#include "RecoveryStore.h"

#include <QDirIterator>
#include <QProcess>
#include <QSet>

#include <iostream>
#include <random>

namespace {

constexpr int killCount = 20;
constexpr int killsOfOneFile = 10;
constexpr int pageCount = 5;

/// What the child has told, and what of it must have lasted.
struct Log {
    explicit Log(const QByteArray& firstState) : states{firstState} {}

    void add(const QByteArray& line) {
        const QByteArray what = line.split(' ').front();
        const QByteArray state = line.mid(what.size() + 1);
        if (what == "edit") {
            if (state != states.back())
                states.push_back(state);
        } else if (what == "saving") {
            saving = states.size() - 1;
        } else if (what == "saved") {
            saved = *std::exchange(saving, std::nullopt);
        } else if (what == "recording") {
            recording = states.size() - 1;
        } else if (what == "recorded" && recording) {
            recorded = *std::exchange(recording, std::nullopt);
            hasRecord = true;
        } else if (what == "clean") {
            recording.reset();
            hasRecord = false;
        } else if (what == "failed") {
            ADD_FAILURE() << "a save failed";
        }
    }

    bool mayBeInFile(const QByteArray& state) const {
        return state == states[saved] || (saving && state == states[*saving]);
    }
    bool mayBeRecorded(const QByteArray& state) const {
        return std::find(states.begin() + std::ptrdiff_t(recorded), states.end(), state) != states.end();
    }
    /// Once it is recorded; until all is saved, when the record goes. A save that is under way may have come to that.
    bool mustHaveRecord() const { return hasRecord && !saving; }

    std::vector<QByteArray> states;
    std::size_t saved = 0;
    std::optional<std::size_t> saving;
    std::size_t recorded = 0;
    std::optional<std::size_t> recording;
    bool hasRecord = false;
};

class KilledWhileEditingTest : public FolderTest {
protected:
    /// With a form, and so large that writing it takes a while.
    void storeNewFile() const {
        PdfFixture fixture;
        for (int page = 0; page < pageCount; ++page)
            fixture.addPage({QStringLiteral("Page")}, QSizeF(601 + page, 792));
        fixture.addTextField(0, QStringLiteral("name"), QRectF(50, 500, 200, 24), QStringLiteral("nobody"));
        QByteArray bulk(500'000, '\0');
        std::mt19937 random(1);
        std::generate(bulk.begin(), bulk.end(), [&random] { return static_cast<char>(random() & 0xFF); });
        fixture.attach(QStringLiteral("bulk"), bulk);
        makeFile("report.pdf", fixture.bytes());
    }

    static QByteArray nextLine(QProcess& process) {
        while (!process.canReadLine() && process.waitForReadyRead(Session::timeLimitInMilliseconds)) {
        }
        return process.readLine().trimmed();
    }

    /// What a child told that was killed a moment after it had told such a line for the `count`-th time.
    Log kill(unsigned seed, const QByteArray& what, int count, unsigned long microseconds) const {
        Log log(EditedPdf::state(*PDFDocument::fromFile(m_pdf)));
        QProcess child;
        child.start(QStringLiteral(EDITING_CHILD), {path("state"), m_pdf, QString::number(seed)});
        while (count > 0) {
            const QByteArray line = nextLine(child);
            if (line.isEmpty()) {
                ADD_FAILURE() << "the child has gone: " << child.readAllStandardError().toStdString();
                break;
            }
            log.add(line);
            count -= line.startsWith(what) ? 1 : 0;
        }
        QThread::usleep(microseconds);
        child.kill();
        EXPECT_TRUE(child.waitForFinished(Session::timeLimitInMilliseconds));
        EXPECT_EQ(child.exitStatus(), QProcess::CrashExit) << "it ended by itself";
        EXPECT_EQ(child.readAllStandardError().toStdString(), "");
        while (child.canReadLine())
            log.add(child.readLine().trimmed());
        return log;
    }

    void expectFile(const Log& log) const {
        const QByteArray bytes = contentOf("report.pdf");
        EXPECT_EQ(PdfPrograms::complaints(bytes), "");
        const auto document = PDFDocument::fromData(bytes);
        EXPECT_FALSE(document->wasRepaired());
        const QByteArray found = EditedPdf::state(*document);
        EXPECT_TRUE(log.mayBeInFile(found)) << found.constData();
    }

    /// The half of a file at most, of a name that a later save knows to be one.
    void expectFewLeftovers() const {
        const QDir folder(m_folder.path());
        QFile::remove(path(folder.entryList({QStringLiteral(".saving-*")}, QDir::Files | QDir::Hidden).value(0)));
        EXPECT_TRUE(std::string("report.pdf state").starts_with(names())) << names();
    }

    /// Recovers as the program does, and then saves the document or gives it up.
    void expectRecovery(const Log& log, bool saves) const {
        Session session(path("state"));
        const auto document = session.recoverLost();
        EXPECT_TRUE(document || !log.mustHaveRecord());
        if (!document)
            return;
        const QByteArray recovered = EditedPdf::state(*document->pdfDocument());
        EXPECT_TRUE(log.mayBeRecorded(recovered)) << recovered.constData();
        EXPECT_FALSE(document->pdfDocument()->wasRepaired());
        EXPECT_EQ(PdfPrograms::complaints(document->dataRepresentation()), "");
        if (saves && !document->fileURL().isEmpty()) {
            QSignalSpy saved(&session.controller, &DocumentController::documentSaved);
            session.controller.saveDocument(document);
            ASSERT_TRUE(saved.wait(Session::timeLimitInMilliseconds));
            EXPECT_EQ(EditedPdf::state(*PDFDocument::fromFile(m_pdf)), recovered);
        }
        session.controller.closeDocument(document);
    }

    const QString m_pdf = path("report.pdf");
    const QString m_records = path("state/recovery");
};

TEST_F(KilledWhileEditingTest, theFileIsWholeAndWhatWasRecordedIsThere) {
    const char* const moments[] = {"edit", "recording", "recorded", "saving", "saved"};
    constexpr int longestDelayInMicroseconds = 12'000;
    const unsigned seed = std::random_device()();
    std::cout << "seed " << seed << std::endl;
    std::mt19937 random(seed);
    const auto below = [&random](int limit) { return std::uniform_int_distribution(0, limit - 1)(random); };
    int savesCut = 0;
    int recordsCut = 0;
    for (int i = 0; i < killCount && !HasFatalFailure(); ++i) {
        SCOPED_TRACE(testing::Message() << "seed " << seed << ", kill " << i);
        if (i % killsOfOneFile == 0)
            storeNewFile();
        const QByteArray moment = moments[std::size_t(i) % std::size(moments)];
        const int count = 1 + (moment == "edit" ? below(80) : below(5));
        const int delay = below(2) * below(longestDelayInMicroseconds);
        const Log log = kill(random(), moment, count, static_cast<unsigned long>(delay));
        expectFile(log);
        expectFewLeftovers();
        expectRecovery(log, below(2) == 0);
        // One that was never written completely, and has no manifest, stays for a day.
        EXPECT_FALSE(QDirIterator(m_records, {QStringLiteral("document.json")}, QDir::Files | QDir::Hidden,
                                  QDirIterator::Subdirectories)
                         .hasNext());
        savesCut += log.saving ? 1 : 0;
        recordsCut += log.recording ? 1 : 0;
    }
    EXPECT_GT(savesCut, 0) << "no kill came in the midst of a save";
    EXPECT_GT(recordsCut, 0) << "no kill came in the midst of recording";
}

TEST_F(KilledWhileEditingTest, eachLostRecordIsTakenByOneProcess) {
    constexpr int recordCount = 30;
    const auto takeLost = [this] { return RecoveryStore::takeLost(m_records, QDateTime::currentDateTime()).size(); };
    storeNewFile();
    QProcess living;
    living.start(QStringLiteral(EDITING_CHILD), {path("state"), m_pdf, QStringLiteral("1")});
    while (nextLine(living) != "recorded")
        ASSERT_EQ(living.state(), QProcess::Running);
    for (int i = 0; i < recordCount; ++i) {
        RecoveryDescription description;
        description.writeTime = QDateTime::currentDateTime();
        RecoveryRecord::create(m_records)->write(description, "base", {});
    }
    QProcess takers[3];
    for (QProcess& taker : takers)
        taker.start(QStringLiteral(EDITING_CHILD), {path("state")});
    QByteArrayList taken;
    for (QProcess& taker : takers)
        for (QByteArray id = nextLine(taker); !id.isEmpty(); id = nextLine(taker))
            taken.append(id);
    EXPECT_EQ(taken.size(), recordCount) << "the living one keeps its own";
    EXPECT_EQ(QSet<QByteArray>(taken.begin(), taken.end()).size(), recordCount);
    EXPECT_EQ(takeLost(), 0U);
    // A taker that ends without deciding leaves them to the next.
    for (QProcess& taker : takers) {
        taker.kill();
        ASSERT_TRUE(taker.waitForFinished());
    }
    EXPECT_EQ(takeLost(), std::size_t(recordCount));
    living.kill();
    ASSERT_TRUE(living.waitForFinished());
}

} // namespace
