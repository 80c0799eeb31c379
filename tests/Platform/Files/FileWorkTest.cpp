#include "FileWork.h"

#include <QFile>
#include <QTemporaryDir>
#include <QTest>

#include <memory>
#include <sys/stat.h>

#include <gtest/gtest.h>

using namespace std::chrono_literals;

namespace {

/// A file whose reading hangs until somebody writes to it.
class FileWorkTest : public testing::Test {
protected:
    void SetUp() override { ASSERT_EQ(mkfifo(qPrintable(m_path), 0600), 0); }

    void read(QObject* receiver, std::chrono::milliseconds patience) {
        FileWork::run(
            receiver,
            [path = m_path] {
                QFile file(path);
                return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("unreadable");
            },
            [this](const QByteArray& bytes) { m_results.append(bytes); }, patience);
    }
    void write(const QByteArray& bytes) const {
        QFile file(m_path);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(bytes);
    }

    const QTemporaryDir m_folder;
    const QString m_path = m_folder.filePath(QStringLiteral("fifo"));
    QByteArrayList m_results;
};

TEST_F(FileWorkTest, WhatHangsIsWaitedForNoLongerThanAskedAndComesLaterOnce) {
    QObject receiver;
    for (const auto patience : {0ms, 5ms}) {
        m_results.clear();
        read(&receiver, patience);
        EXPECT_TRUE(m_results.isEmpty());
        write("words");
        EXPECT_TRUE(QTest::qWaitFor([this] { return !m_results.isEmpty(); }));
        QTest::qWait(10);
        EXPECT_EQ(m_results, QByteArrayList{"words"});
    }
}

TEST_F(FileWorkTest, WhatIsAtHandIsThereAtOnceAndNothingReachesOneThatIsGone) {
    QObject receiver;
    int value = 0;
    FileWork::run(
        &receiver, [] { return 7; }, [&value](int result) { value = result; }, 1min);
    EXPECT_EQ(value, 7);

    auto gone = std::make_unique<QObject>();
    read(gone.get(), 0ms);
    gone.reset();
    write("late");
    QTest::qWait(20);
    EXPECT_TRUE(m_results.isEmpty());
}

} // namespace
