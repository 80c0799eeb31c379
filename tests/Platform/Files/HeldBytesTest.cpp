#include "HeldBytes.h"

#include "FolderTest.h"

#include <memory>

class HeldBytesTest : public FolderTest {};

TEST_F(HeldBytesTest, BytesOutliveTheirPlaceAndTheDiskShowsNoName) {
    const QByteArray state = qgetenv("XDG_STATE_HOME");
    for (const QString& place : {m_folder.path(), QStringLiteral("/proc/nowhere")}) {
        qputenv("XDG_STATE_HOME", place.toUtf8());
        for (const qsizetype size : {qsizetype(0), HeldBytes::fewestOnDisk - 1, HeldBytes::fewestOnDisk * 3 + 7}) {
            QByteArray bytes;
            for (qsizetype i = 0; i < size; ++i)
                bytes += char(i * i >> 5);
            const bool goesToDisk = size >= HeldBytes::fewestOnDisk && place == m_folder.path();
            auto held = std::make_unique<HeldBytes>(QByteArray(bytes.constData(), size), HeldBytes::Place::disk);
            EXPECT_EQ(held->isInMemory(), !goesToDisk) << size;
            EXPECT_TRUE(held->view() == bytes) << size;
            held->rest();
            EXPECT_EQ(names(), "");
            const QByteArray kept = held->bytes();
            held.reset();
            EXPECT_EQ(kept, bytes);
        }
    }
    qputenv("XDG_STATE_HOME", state);
}
