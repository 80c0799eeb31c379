#include "EditedPdf.h"
#include "RecoveryRecord.h"
#include "RecoveryStore.h"

#include <QDateTime>
#include <QDir>
#include <QProcess>
#include <QSet>
#include <QTemporaryDir>
#include <QThread>

#include <random>

#include <gtest/gtest.h>

namespace {

constexpr int timeLimitInMilliseconds = 60'000;
constexpr int pageCount = 5;

/// Other processes write records, and are killed.
class RecoveryProcessTest : public testing::Test {
protected:
    void SetUp() override { EditedPdf::store(m_pdf, EditedPdf::pages(pageCount)); }

    static void start(QProcess& process, const QStringList& arguments) {
        process.start(QStringLiteral(RECOVERY_CHILD), arguments);
        ASSERT_TRUE(process.waitForStarted());
    }

    static QByteArray readLine(QProcess& process) {
        while (!process.canReadLine() && process.waitForReadyRead(timeLimitInMilliseconds)) {
        }
        return process.readLine().trimmed();
    }

    static void end(QProcess& process) {
        process.kill();
        ASSERT_TRUE(process.waitForFinished());
    }

    std::vector<std::unique_ptr<RecoveryRecord>> takeLost() const {
        return RecoveryStore::takeLost(m_records, QDateTime::currentDateTime());
    }

    QTemporaryDir m_folder;
    const QString m_records = m_folder.filePath(QStringLiteral("recovery"));
    const QString m_pdf = m_folder.filePath(QStringLiteral("report.pdf"));
};

TEST_F(RecoveryProcessTest, aKilledProcessLeavesTheLastCompleteWrite) {
    std::mt19937 random(20);
    int wholeFiles = 0;
    for (int run = 0; run < 12; ++run) {
        SCOPED_TRACE(run);
        QProcess child;
        start(child, {QStringLiteral("edit"), m_records, m_pdf});
        int recorded = 0;
        for (int lines = std::uniform_int_distribution(1, 25)(random); lines > 0; --lines)
            recorded = readLine(child).toInt();
        ASSERT_GT(recorded, 0) << child.readAllStandardError().toStdString();
        EXPECT_TRUE(takeLost().empty()) << "it lives";
        QThread::usleep(std::uniform_int_distribution<unsigned long>(0, 20'000)(random));
        end(child);
        for (QByteArray line = child.readLine(); !line.isEmpty(); line = child.readLine())
            recorded = line.toInt();

        const auto lost = takeLost();
        ASSERT_EQ(lost.size(), 1U);
        const RecoveryManifest& manifest = *lost.front()->manifest();
        EXPECT_EQ(manifest.description.originalPath, m_pdf);
        EXPECT_EQ(manifest.description.originalStamp->size, QFileInfo(m_pdf).size());
        const auto document = PDFDocument::fromData(lost.front()->bytes());
        EXPECT_FALSE(document->wasRepaired());
        EXPECT_EQ(document->pageCount(), manifest.description.pageCount);
        EXPECT_GE(EditedPdf::squareCount(*document), recorded);
        wholeFiles += document->pageCount() == pageCount - 1 ? 1 : 0;
        lost.front()->remove();
    }
    EXPECT_GT(wholeFiles, 0);
    EXPECT_LT(wholeFiles, 12);
    EXPECT_TRUE(QDir(m_records).isEmpty(QDir::Dirs | QDir::Hidden | QDir::NoDotAndDotDot));
}

TEST_F(RecoveryProcessTest, eachLostRecordIsTakenByOneProcess) {
    constexpr int recordCount = 30;
    QProcess living;
    start(living, {QStringLiteral("edit"), m_records, m_pdf});
    ASSERT_FALSE(readLine(living).isEmpty());
    for (int i = 0; i < recordCount; ++i) {
        RecoveryDescription description;
        description.writeTime = QDateTime::currentDateTime();
        RecoveryRecord::create(m_records)->write(description, "base", {});
    }

    QProcess takers[3];
    for (QProcess& taker : takers)
        start(taker, {QStringLiteral("take"), m_records});
    QSet<QByteArray> taken;
    int count = 0;
    for (QProcess& taker : takers) {
        for (QByteArray id = readLine(taker); !id.isEmpty(); id = readLine(taker)) {
            taken.insert(id);
            ++count;
        }
    }
    EXPECT_EQ(count, recordCount);
    EXPECT_EQ(taken.size(), recordCount);
    EXPECT_TRUE(takeLost().empty());

    // A taker that ends without deciding leaves them to the next.
    for (QProcess& taker : takers)
        end(taker);
    EXPECT_EQ(takeLost().size(), std::size_t(recordCount));
    end(living);
    EXPECT_EQ(takeLost().size(), std::size_t(recordCount) + 1);
}

} // namespace
