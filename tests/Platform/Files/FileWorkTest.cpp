#include "FileWork.h"

#include "FolderTest.h"

#include <QTest>

#include <memory>
#include <sys/stat.h>

namespace {

using namespace std::chrono_literals;

class FileWorkTest : public FolderTest {};

TEST_F(FileWorkTest, WhatHangsIsWaitedForNoLongerThanAskedAndComesLaterUnlessItsReceiverIsGone) {
    ASSERT_EQ(mkfifo(qPrintable(path("fifo")), 0600), 0);
    QByteArrayList results;
    auto receiver = std::make_unique<QObject>();
    // Hangs until somebody writes to the file.
    const auto read = [&](std::chrono::milliseconds patience) {
        const auto work = [this] { return contentOf("fifo"); };
        const auto note = [&results](const QByteArray& bytes) { results.append(bytes); };
        FileWork::run(receiver.get(), work, note, patience);
    };
    for (const auto patience : {0ms, 5ms}) {
        results.clear();
        read(patience);
        EXPECT_TRUE(results.isEmpty());
        makeFile("fifo", "words");
        EXPECT_TRUE(QTest::qWaitFor([&results] { return results == QByteArrayList{"words"}; }));
    }
    int value = 0;
    FileWork::run(
        receiver.get(), [] { return 7; }, [&value](int result) { value = result; }, 1min);
    EXPECT_EQ(value, 7) << "what is at hand is there at once";
    read(0ms);
    receiver.reset();
    makeFile("fifo", "late");
    QTest::qWait(20);
    EXPECT_EQ(results.size(), 1) << "each came once, and the last to nobody";
}

} // namespace
