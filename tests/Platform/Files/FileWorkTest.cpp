#include "FileWork.h"

#include <QFile>
#include <QTemporaryDir>
#include <QTest>

#include <memory>
#include <sys/stat.h>

#include <gtest/gtest.h>

using namespace std::chrono_literals;

TEST(FileWorkTest, WhatHangsIsWaitedForNoLongerThanAskedAndComesLaterUnlessItsReceiverIsGone) {
    const QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("fifo"));
    ASSERT_EQ(mkfifo(qPrintable(path), 0600), 0);
    QByteArrayList results;
    // Hangs until somebody writes to the file.
    const auto read = [&](QObject* receiver, std::chrono::milliseconds patience) {
        const auto work = [path] {
            QFile file(path);
            return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("unreadable");
        };
        FileWork::run(
            receiver, work, [&results](const QByteArray& bytes) { results.append(bytes); }, patience);
    };
    const auto write = [&path](const QByteArray& bytes) {
        QFile file(path);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(bytes);
    };
    auto receiver = std::make_unique<QObject>();
    for (const auto patience : {0ms, 5ms}) {
        results.clear();
        read(receiver.get(), patience);
        EXPECT_TRUE(results.isEmpty());
        write("words");
        EXPECT_TRUE(QTest::qWaitFor([&results] { return !results.isEmpty(); }));
        QTest::qWait(10);
        EXPECT_EQ(results, QByteArrayList{"words"});
    }
    int value = 0;
    FileWork::run(
        receiver.get(), [] { return 7; }, [&value](int result) { value = result; }, 1min);
    EXPECT_EQ(value, 7) << "what is at hand is there at once";
    read(receiver.get(), 0ms);
    receiver.reset();
    write("late");
    QTest::qWait(20);
    EXPECT_EQ(results.size(), 1);
}
