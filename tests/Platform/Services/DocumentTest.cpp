#include "TextDocument.h"

#include <QSignalSpy>

#include <gtest/gtest.h>

TEST(DocumentTest, UntitledNamesAreUniqueAndFreedAgain) {
    auto first = std::make_unique<TextDocument>();
    TextDocument second, third;
    QSignalSpy names(&second, &Document::displayNameChanged);
    EXPECT_EQ(second.displayName(), QStringLiteral("Untitled")) << "numbers are given when they are needed";
    EXPECT_EQ(first->displayName(), QStringLiteral("Untitled 2"));
    EXPECT_EQ(third.displayName(), QStringLiteral("Untitled 3"));
    EXPECT_EQ(first->suggestedFileName(), QStringLiteral("Untitled 2.txt"));
    for (const char* path : {"/tmp/Räport 100%.txt", "/home/Räport 100%.txt"})
        second.setFileURL(QUrl::fromLocalFile(QString::fromUtf8(path)));
    EXPECT_EQ(second.suggestedFileName(), QStringLiteral("Räport 100%.txt"));
    EXPECT_EQ(names.count(), 1) << "another folder is not another name";
    first.reset();
    TextDocument fourth, fifth;
    EXPECT_EQ(fourth.displayName(), QStringLiteral("Untitled"));
    EXPECT_EQ(fifth.displayName(), QStringLiteral("Untitled 2"));
}
