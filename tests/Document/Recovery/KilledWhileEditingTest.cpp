#include "DocumentController.h"
#include "DocumentRecovery.h"
#include "EditedPdf.h"
#include "LostDocuments.h"
#include "PdfPrograms.h"
#include "RecoveryRecord.h"
#include "RecoveryStore.h"
#include "SilentPresenter.h"
#include "UserDefaults.h"

#include <QDir>
#include <QProcess>
#include <QSet>
#include <QTemporaryDir>
#include <QTest>

#include <iostream>
#include <random>

#include <gtest/gtest.h>
#include <utime.h>

namespace {

constexpr int timeLimitInMilliseconds = 60'000;
constexpr int killCount = 50;
constexpr int killsOfOneFile = 10;
constexpr int pageCount = 5;
/// So many changes of a child, one each 2 ms, come long after it should have begun to record the first of them.
constexpr int mostChangesAtRisk = 120;

/// What the child has told, and what of it must have lasted.
class Log {
public:
    explicit Log(const QByteArray& firstState) : m_states{firstState} {}

    void add(const QByteArray& line) {
        const QByteArray what = line.split(' ').front();
        const QByteArray state = line.mid(what.size() + 1);
        if (what == "edit") {
            if (state != m_states.back())
                m_states.push_back(state);
            m_changesAtRisk += !m_isClean && !m_recording ? 1 : 0;
            m_mostChangesAtRisk = std::max(m_mostChangesAtRisk, m_changesAtRisk);
            m_isClean = false;
        } else if (what == "saving") {
            m_saving = m_states.size() - 1;
        } else if (what == "saved") {
            m_saved = *std::exchange(m_saving, std::nullopt);
            ++m_saveCount;
        } else if (what == "recording") {
            m_recording = m_states.size() - 1;
            m_changesAtRisk = 0;
        } else if (what == "recorded" && m_recording) {
            m_recorded = *std::exchange(m_recording, std::nullopt);
            m_hasRecord = true;
        } else if (what == "clean") {
            m_recording.reset();
            m_hasRecord = false;
            m_changesAtRisk = 0;
            m_isClean = true;
        } else if (what == "failed") {
            ADD_FAILURE() << "a save failed";
        }
    }

    bool mayBeInFile(const QByteArray& state) const {
        return state == m_states[m_saved] || (m_saving && state == m_states[*m_saving]);
    }
    bool mayBeRecorded(const QByteArray& state) const {
        return std::find(m_states.begin() + std::ptrdiff_t(m_recorded), m_states.end(), state) != m_states.end();
    }
    /// Once it is recorded; until all is saved, when the record goes. A save that is under way may have come to that.
    bool mustHaveRecord() const { return m_hasRecord && !m_saving; }
    bool isSaving() const { return m_saving.has_value(); }
    bool isRecording() const { return m_recording.has_value(); }
    int mostChangesAtRisk() const { return m_mostChangesAtRisk; }
    int saveCount() const { return m_saveCount; }

private:
    std::vector<QByteArray> m_states;
    std::size_t m_saved = 0;
    std::optional<std::size_t> m_saving;
    std::size_t m_recorded = 0;
    std::optional<std::size_t> m_recording;
    bool m_hasRecord = false;
    bool m_isClean = true;
    int m_saveCount = 0;
    int m_changesAtRisk = 0;
    int m_mostChangesAtRisk = 0;
};

QByteArray read(const QString& path) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

QByteArray state(const PDFDocument& document) {
    return EditedPdf::state(document).toUtf8();
}

class KilledWhileEditingTest : public testing::Test {
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
        EditedPdf::store(m_pdf, fixture.bytes());
    }

    /// What a child told that was killed a moment after it had told such a line for the `count`-th time.
    Log kill(unsigned seed, const QByteArray& what, int count, unsigned long microseconds) const {
        Log log(state(*PDFDocument::fromFile(m_pdf)));
        QProcess child;
        child.start(QStringLiteral(EDITING_CHILD), {m_records, m_pdf, QString::number(seed)});
        while (count > 0) {
            if (!child.canReadLine() && !child.waitForReadyRead(timeLimitInMilliseconds)) {
                ADD_FAILURE() << "the child has gone: " << child.readAllStandardError().toStdString();
                break;
            }
            while (child.canReadLine()) {
                const QByteArray line = child.readLine().trimmed();
                log.add(line);
                count -= line.startsWith(what) ? 1 : 0;
            }
        }
        QThread::usleep(microseconds);
        child.kill();
        EXPECT_TRUE(child.waitForFinished(timeLimitInMilliseconds));
        EXPECT_EQ(child.exitStatus(), QProcess::CrashExit) << "it ended by itself";
        EXPECT_EQ(child.readAllStandardError().toStdString(), "");
        while (child.canReadLine())
            log.add(child.readLine().trimmed());
        return log;
    }

    void expectFile(const Log& log) const {
        const QByteArray bytes = read(m_pdf);
        EXPECT_EQ(PdfPrograms::complaints(bytes), "");
        const auto document = PDFDocument::fromData(bytes);
        EXPECT_FALSE(document->wasRepaired());
        EXPECT_TRUE(log.mayBeInFile(state(*document))) << state(*document).constData();
    }

    /// At most one, and none of an hour and more once a save came to its end.
    void expectFewLeftovers(const Log& log) const {
        EXPECT_FALSE(log.saveCount() > 0 && QFileInfo::exists(m_oldLeftover));
        QStringList names = QDir(m_folder.path()).entryList(QDir::Files | QDir::Hidden);
        names.removeAll(QStringLiteral("report.pdf"));
        names.removeAll(QFileInfo(m_oldLeftover).fileName());
        ASSERT_LE(names.size(), 1) << names.join(u' ').toStdString();
        if (names.isEmpty())
            return;
        EXPECT_TRUE(names.front().startsWith(QStringLiteral(".saving-"))) << names.front().toStdString();
        QFile::remove(m_oldLeftover);
        m_oldLeftover = m_folder.filePath(names.front());
        const utimbuf longAgo{1'000'000'000, 1'000'000'000};
        ASSERT_EQ(utime(qPrintable(m_oldLeftover), &longAgo), 0);
    }

    /// Recovers as the program does, and then saves the document or gives it up.
    void expectRecovery(const Log& log, bool saves) const {
        SilentPresenter presenter;
        UserDefaults defaults(m_folder.filePath(QStringLiteral("state/settings.ini")));
        DocumentController controller([] { return std::make_shared<PDFEditorDocument>(); }, presenter, defaults);
        DocumentRecovery recovery(controller, m_records);
        LostDocuments lostDocuments(controller, recovery);
        const std::vector<LostDocument> lost = lostDocuments.take();
        EXPECT_LE(lost.size(), 1U);
        EXPECT_TRUE(!lost.empty() || !log.mustHaveRecord());
        if (lost.empty())
            return;
        std::shared_ptr<PDFEditorDocument> document;
        QString error;
        bool isDone = false;
        lostDocuments.recover(lost.front().id, [&](const auto& recovered, const QString& sentence) {
            document = recovered;
            error = sentence;
            isDone = true;
        });
        ASSERT_TRUE(QTest::qWaitFor([&isDone] { return isDone; }, timeLimitInMilliseconds));
        ASSERT_TRUE(document) << error.toStdString();
        const QByteArray recovered = state(*document->pdfDocument());
        EXPECT_TRUE(log.mayBeRecorded(recovered)) << recovered.constData();
        EXPECT_FALSE(document->pdfDocument()->wasRepaired());
        EXPECT_EQ(PdfPrograms::complaints(document->dataRepresentation()), "");
        if (saves && !document->fileURL().isEmpty()) {
            isDone = false;
            controller.saveDocument(document, [&isDone](bool isSaved) { isDone = isSaved; });
            ASSERT_TRUE(QTest::qWaitFor([&isDone] { return isDone; }, timeLimitInMilliseconds));
            EXPECT_EQ(state(*PDFDocument::fromFile(m_pdf)), recovered);
        }
        controller.closeDocument(document);
    }

    /// Without those that were never written completely, which stay for a day.
    QStringList records() const {
        QStringList names = QDir(m_records).entryList(QDir::Dirs | QDir::Hidden | QDir::NoDotAndDotDot);
        names.removeIf([this](const QString& name) {
            return !QFileInfo::exists(m_records + u'/' + name + QStringLiteral("/document.json"));
        });
        return names;
    }

    void SetUp() override { ASSERT_TRUE(QDir(m_folder.path()).mkdir(QStringLiteral("state"))); }

    QTemporaryDir m_folder;
    const QString m_records = m_folder.filePath(QStringLiteral("state/recovery"));
    const QString m_pdf = m_folder.filePath(QStringLiteral("report.pdf"));
    mutable QString m_oldLeftover = m_folder.filePath(QStringLiteral(".saving-0"));
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
    int changesAtRisk = 0;
    for (int i = 0; i < killCount && !HasFatalFailure(); ++i) {
        SCOPED_TRACE(testing::Message() << "seed " << seed << ", kill " << i);
        if (i % killsOfOneFile == 0)
            storeNewFile();
        const QByteArray moment = moments[std::size_t(i) % std::size(moments)];
        const int count = 1 + (moment == "edit" ? below(80) : below(5));
        const int delay = below(2) * below(longestDelayInMicroseconds);
        const Log log = kill(random(), moment, count, static_cast<unsigned long>(delay));
        expectFile(log);
        expectFewLeftovers(log);
        expectRecovery(log, below(2) == 0);
        EXPECT_EQ(records().join(u' ').toStdString(), "");
        savesCut += log.isSaving() ? 1 : 0;
        recordsCut += log.isRecording() ? 1 : 0;
        changesAtRisk = std::max(changesAtRisk, log.mostChangesAtRisk());
    }
    EXPECT_LE(changesAtRisk, mostChangesAtRisk);
    EXPECT_GT(savesCut, 0) << "no kill came in the midst of a save";
    EXPECT_GT(recordsCut, 0) << "no kill came in the midst of recording";
    std::cout << savesCut << " saves and " << recordsCut << " records were cut, " << changesAtRisk
              << " changes at most were neither saved nor recorded" << std::endl;
}

TEST_F(KilledWhileEditingTest, eachLostRecordIsTakenByOneProcess) {
    constexpr int recordCount = 30;
    const auto takeLost = [this] { return RecoveryStore::takeLost(m_records, QDateTime::currentDateTime()).size(); };
    const auto nextLine = [](QProcess& process) {
        while (!process.canReadLine() && process.waitForReadyRead(timeLimitInMilliseconds)) {
        }
        return process.readLine().trimmed();
    };
    storeNewFile();
    QProcess living;
    living.start(QStringLiteral(EDITING_CHILD), {m_records, m_pdf, QStringLiteral("1")});
    for (QByteArray line = nextLine(living); line != "recorded" && !line.isEmpty();)
        line = nextLine(living);
    for (int i = 0; i < recordCount; ++i) {
        RecoveryDescription description;
        description.writeTime = QDateTime::currentDateTime();
        RecoveryRecord::create(m_records)->write(description, "base", {});
    }
    QProcess takers[3];
    for (QProcess& taker : takers)
        taker.start(QStringLiteral(EDITING_CHILD), {m_records});
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
