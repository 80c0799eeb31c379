#include "TextDocument.h"

#include <QSignalSpy>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace {

TEST(DocumentTest, UntitledNamesAreUniqueAndFreedAgain) {
    auto first = std::make_unique<TextDocument>();
    TextDocument second, third;
    EXPECT_EQ(second.displayName(), QStringLiteral("Untitled")) << "numbers are given when they are needed";
    EXPECT_EQ(first->displayName(), QStringLiteral("Untitled 2"));
    EXPECT_EQ(third.displayName(), QStringLiteral("Untitled 3"));
    EXPECT_EQ(first->displayName(), QStringLiteral("Untitled 2"));
    EXPECT_EQ(first->suggestedFileName(), QStringLiteral("Untitled 2.txt"));

    second.setFileURL(QUrl::fromLocalFile(QStringLiteral("/tmp/Räport 100%.txt")));
    EXPECT_EQ(second.displayName(), QStringLiteral("Räport 100%.txt"));
    EXPECT_EQ(second.suggestedFileName(), QStringLiteral("Räport 100%.txt"));
    first.reset();
    TextDocument fourth, fifth, sixth;
    EXPECT_EQ(fourth.displayName(), QStringLiteral("Untitled"));
    EXPECT_EQ(fifth.displayName(), QStringLiteral("Untitled 2"));
    EXPECT_EQ(sixth.displayName(), QStringLiteral("Untitled 4"));
}

TEST(DocumentTest, SignalsFollowTheFileAndTheUndoManager) {
    TextDocument document;
    QSignalSpy urls(&document, &Document::fileURLChanged);
    QSignalSpy names(&document, &Document::displayNameChanged);
    QSignalSpy edited(&document, &Document::documentEditedChanged);
    const auto setPath = [&](const char* path) { document.setFileURL(QUrl::fromLocalFile(QLatin1String(path))); };
    setPath("/tmp/a.txt");
    setPath("/tmp/a.txt");
    setPath("/home/a.txt");
    EXPECT_EQ(urls.count(), 2);
    EXPECT_EQ(names.count(), 1) << "another folder is not another name";

    document.append(QStringLiteral("x"));
    EXPECT_TRUE(document.isDocumentEdited());
    document.undoManager()->undo();
    EXPECT_FALSE(document.isDocumentEdited());
    EXPECT_EQ(edited.count(), 2);
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
