#include "TextDocument.h"

#include <QSignalSpy>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace {

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

TEST(DocumentTest, WritingIsACopyThatChangesNoState) {
    const QTemporaryDir folder;
    TextDocument document;
    document.append(QStringLiteral("content"));
    const QString path = folder.filePath(QStringLiteral("copy.txt"));
    document.write(path);
    EXPECT_TRUE(document.isDocumentEdited() && document.fileURL().isEmpty());
    TextDocument copy;
    copy.read(QUrl::fromLocalFile(path));
    EXPECT_EQ(copy.text, document.text);

    document.failure = QStringLiteral("It can't be represented.");
    EXPECT_THROW(document.write(path), DocumentError);
    copy.text.clear();
    copy.read(QUrl::fromLocalFile(path));
    EXPECT_EQ(copy.text, document.text);
}

} // namespace
