#include "ControllerFixture.h"

#include <QCryptographicHash>
#include <QDir>
#include <QSignalSpy>
#include <QStandardPaths>
#include <QTest>

#include <unistd.h>

namespace {

class DocumentSavingTest : public ControllerFixture {
protected:
    using OverwriteAnswer = DocumentPresenter::OverwriteAnswer;
};

TEST_F(DocumentSavingTest, SavingWritesTheFileOrAsksForOne) {
    const auto document = edit(m_controller->newDocument());
    QSignalSpy saved(m_controller.get(), &DocumentController::documentSaved);
    EXPECT_FALSE(save(document));
    EXPECT_TRUE(document->isDocumentEdited());
    EXPECT_EQ(m_presenter.takeCalls(), "show Untitled; choose Untitled.txt");
    m_presenter.location = path("new.txt");
    EXPECT_TRUE(save(document));
    EXPECT_EQ(document->displayName(), QStringLiteral("new.txt"));
    EXPECT_FALSE(document->isDocumentEdited());
    EXPECT_EQ(recentNames(), "new.txt");
    m_presenter.takeCalls();
    EXPECT_TRUE(save(edit(document)));
    EXPECT_EQ(contentOf("new.txt"), "++");
    EXPECT_EQ(m_presenter.takeCalls(), "") << "it has a file: nothing to ask";
    document->undoManager()->undo();
    EXPECT_TRUE(document->isDocumentEdited());

    document->failure = QStringLiteral("It can't be represented.");
    EXPECT_FALSE(save(document));
    EXPECT_TRUE(document->isDocumentEdited());
    EXPECT_EQ(contentOf("new.txt"), "++");
    EXPECT_EQ(m_presenter.takeCalls(), "“new.txt” couldn't be saved. It can't be represented.");
    EXPECT_EQ(saved.count(), 2);
}

TEST_F(DocumentSavingTest, TheDesktopsPictureOfTheOldContentGoes) {
    const QDir folder(QStandardPaths::writableLocation(QStandardPaths::GenericCacheLocation) +
                      QStringLiteral("/thumbnails/large"));
    ASSERT_TRUE(folder.mkpath(QStringLiteral(".")));
    m_presenter.location = path("Über #1.txt");
    const QByteArray own = "file://" + m_folder.path().toUtf8() + "/%C3%9Cber%20%231.txt";
    for (const QByteArray& address : {own, QByteArray("file:///elsewhere.txt")}) {
        const QByteArray name = QCryptographicHash::hash(address, QCryptographicHash::Md5).toHex() + ".png";
        EXPECT_TRUE(QFile(folder.filePath(QString::fromLatin1(name))).open(QFile::WriteOnly));
    }
    EXPECT_TRUE(save(edit(m_controller->newDocument())));
    EXPECT_EQ(folder.entryList(QDir::Files).size(), 1);
}

TEST_F(DocumentSavingTest, SavingAsMovesOnToTheOtherFileAndAFailedSaveMayGoOnThere) {
    ASSERT_TRUE(QDir(m_folder.path()).mkpath(QStringLiteral("sub")));
    const auto first = edit(open(makeFile("sub/first.txt")));
    const auto second = open(makeFile("second.txt", "2"));
    ASSERT_EQ(symlink("second.txt", qPrintable(path("link.txt"))), 0);
    m_presenter.takeCalls();
    for (const char* taken : {"second.txt", "link.txt"}) {
        EXPECT_FALSE(saveAs(first, taken)) << taken;
        EXPECT_NE(m_presenter.takeCalls().find("couldn't be saved. A file of this name is open in another window."),
                  std::string::npos);
    }
    EXPECT_EQ(contentOf("second.txt"), "2");
    EXPECT_TRUE(saveAs(first, "sub/third.txt"));
    EXPECT_EQ(contentOf("sub/first.txt") + contentOf("sub/third.txt"), "texttext+");
    EXPECT_EQ(m_controller->documentForURL(QUrl::fromLocalFile(path("sub/third.txt"))), first);
    EXPECT_EQ(m_controller->documentForURL(QUrl::fromLocalFile(path("sub/first.txt"))), nullptr);
    EXPECT_TRUE(saveAs(edit(first), "sub/third.txt")) << "its own file is not taken by another";

    ASSERT_TRUE(QDir(path("sub")).removeRecursively());
    edit(first);
    m_presenter.takeCalls();
    EXPECT_FALSE(save(first));
    const std::string told =
        "“third.txt” couldn't be saved. The folder “sub” doesn't exist. Choose Save As to store it "
        "in another place. [Save As]";
    EXPECT_EQ(m_presenter.takeCalls(), told);
    EXPECT_TRUE(first->isDocumentEdited());
    EXPECT_EQ(first->fileURL().toLocalFile(), path("sub/third.txt"));
    m_presenter.takesSaveAs = true;
    m_presenter.location = path("b.txt");
    EXPECT_TRUE(save(first));
    EXPECT_EQ(m_presenter.takeCalls(), told + "; choose third.txt");
    EXPECT_EQ(contentOf("b.txt"), "text+++");
    EXPECT_FALSE(first->isDocumentEdited());
}

TEST_F(DocumentSavingTest, ASaveDuringASaveWritesOnlyWhatChangedSince) {
    const auto document = openGated("a.txt");
    QSignalSpy saved(m_controller.get(), &DocumentController::documentSaved);
    QSignalSpy saving(m_controller.get(), &DocumentController::documentSavingChanged);
    Outcome first, second, third, fourth;
    m_controller->saveDocument(document, first.completion());
    EXPECT_TRUE(m_controller->isSaving(*document));
    m_controller->saveDocument(document, second.completion());
    m_gate->release();
    EXPECT_TRUE(first.waitFor() && second.waitFor());
    EXPECT_EQ(saved.count(), 1) << "nothing changed between the two";
    EXPECT_TRUE(saving[0][1].toBool());
    EXPECT_FALSE(saving.last()[1].toBool() || m_controller->isSaving(*document));

    edit(document);
    m_controller->saveDocument(document, third.completion());
    edit(document);
    m_controller->saveDocument(document, fourth.completion());
    m_gate->release();
    EXPECT_TRUE(third.waitFor());
    EXPECT_EQ(contentOf("a.txt"), "text++");
    EXPECT_TRUE(document->isDocumentEdited());
    document->undoManager()->undo();
    EXPECT_FALSE(document->isDocumentEdited()) << "that is what the file holds";
    document->undoManager()->redo();
    m_gate->release();
    EXPECT_TRUE(fourth.waitFor());
    EXPECT_EQ(contentOf("a.txt"), "text+++");
    EXPECT_FALSE(document->isDocumentEdited());
    EXPECT_EQ(saved.count(), 3);
}

TEST_F(DocumentSavingTest, SavingAsDuringASaveLeavesBothFilesWhole) {
    const auto document = openGated("a.txt");
    const auto other = openGated("other.txt");
    Outcome first, second, third;
    m_controller->saveDocument(document, first.completion());
    m_presenter.location = path("b.txt");
    m_controller->saveDocumentAs(document, second.completion());
    EXPECT_FALSE(saveAs(other, "a.txt")) << "it is the file of another document";
    m_gate->release(2);
    EXPECT_TRUE(first.waitFor() && second.waitFor());
    EXPECT_EQ(contentOf("a.txt") + contentOf("b.txt"), "text+text+");
    EXPECT_EQ(recentNames(), "b.txt a.txt other.txt");

    m_presenter.location = path("new.txt");
    makeFile("new.txt", "old");
    m_controller->saveDocumentAs(document, third.completion());
    EXPECT_FALSE(saveAs(other, "new.txt")) << "another document is being written to it";
    EXPECT_EQ(open(QUrl::fromLocalFile(path("new.txt"))), document) << "and opened as that one";
    m_gate->release();
    EXPECT_TRUE(third.waitFor());
    EXPECT_EQ(contentOf("new.txt"), "text+");
}

TEST_F(DocumentSavingTest, ASaveEndsInTheMidstOfAQuestionAboutAnotherDocument) {
    const auto document = openGated("a.txt");
    const auto other = edit(open(makeFile("b.txt")));
    makeFile("b.txt", "by another program");
    Outcome outcome;
    m_presenter.whileAsking = [&](const auto& asked) {
        EXPECT_EQ(asked, other);
        m_gate->release();
        EXPECT_TRUE(outcome.waitFor());
    };
    m_controller->saveDocument(document, outcome.completion());
    EXPECT_FALSE(save(other));
    EXPECT_FALSE(document->isDocumentEdited());
    EXPECT_EQ(contentOf("a.txt"), "text+");
}

TEST_F(DocumentSavingTest, TheControllersEndWaitsForTheFileAndTellsNobody) {
    const auto document = openGated("a.txt");
    Outcome outcome;
    m_controller->saveDocument(document, outcome.completion());
    m_gate->release();
    m_controller.reset();
    EXPECT_EQ(contentOf("a.txt"), "text+");
    QCoreApplication::processEvents();
    EXPECT_FALSE(outcome.succeeded.has_value());
}

TEST_F(DocumentSavingTest, WhatAnotherProgramHasWrittenIsOverwrittenOnlyWhenTheUserSaysSo) {
    const auto document = edit(open(makeFile("a.txt")));
    m_presenter.takeCalls();
    EXPECT_TRUE(save(edit(document)) && save(edit(document))) << "its own saves are no such change";
    makeFile("a.txt", "theirs");
    EXPECT_FALSE(save(edit(document)));
    EXPECT_EQ(m_presenter.takeCalls(), "changed a.txt");
    EXPECT_EQ(contentOf("a.txt"), "theirs");
    EXPECT_TRUE(document->isDocumentEdited());

    m_presenter.changedFileAnswer = OverwriteAnswer::SaveAs;
    m_presenter.location = path("mine.txt");
    EXPECT_TRUE(save(document));
    EXPECT_EQ(m_presenter.takeCalls(), "changed a.txt; choose a.txt");
    EXPECT_EQ(contentOf("a.txt") + contentOf("mine.txt"), "theirstext++++");

    // Replaced by a file that looks the same, down to its time.
    makeFile("new.txt", "TEXT++++");
    QFile replacement(path("new.txt"));
    ASSERT_TRUE(replacement.open(QIODevice::ReadWrite));
    replacement.setFileTime(QFileInfo(path("mine.txt")).lastModified(), QFileDevice::FileModificationTime);
    ASSERT_EQ(rename(qPrintable(path("new.txt")), qPrintable(path("mine.txt"))), 0);
    m_presenter.changedFileAnswer = OverwriteAnswer::Overwrite;
    EXPECT_TRUE(save(edit(document)));
    EXPECT_EQ(m_presenter.takeCalls(), "changed mine.txt");
    EXPECT_EQ(contentOf("mine.txt"), "text+++++");
    QFile::remove(path("mine.txt"));
    EXPECT_TRUE(save(edit(document)) && save(edit(document))) << "a file that has gone is written again";
    EXPECT_EQ(m_presenter.takeCalls(), "");
}

TEST_F(DocumentSavingTest, AVersionThatComesWhileADocumentIsBeingWrittenIsNotReplacedUnasked) {
    const auto document = openGated("a.txt");
    Outcome first;
    m_controller->saveDocument(document, first.completion());
    EXPECT_TRUE(QTest::qWaitFor([&] { return document->atGate->tryAcquire(); }));
    makeFile("a.txt", "theirs meanwhile");
    // Another version comes after the question about the first, and is asked about too.
    m_presenter.whileAsking = [this, count = 0](const auto&) mutable {
        const bool isFirst = ++count == 1;
        if (isFirst)
            makeFile("a.txt", "theirs at last");
        m_presenter.changedFileAnswer = isFirst ? OverwriteAnswer::Overwrite : OverwriteAnswer::Cancel;
    };
    m_gate->release();
    EXPECT_FALSE(first.waitFor());
    EXPECT_EQ(m_presenter.takeCalls(), "changed a.txt; changed a.txt");
    EXPECT_EQ(contentOf("a.txt"), "theirs at last");
    EXPECT_TRUE(document->isDocumentEdited());

    m_presenter.whileAsking = nullptr;
    // Saving under the name of a file replaces what was there when that began.
    makeFile("b.txt", "old");
    Outcome outcome;
    m_presenter.location = path("b.txt");
    m_controller->saveDocumentAs(document, outcome.completion());
    EXPECT_TRUE(QTest::qWaitFor([&] { return document->atGate->tryAcquire(); }));
    makeFile("b.txt", "theirs meanwhile");
    m_gate->release();
    EXPECT_FALSE(outcome.waitFor());
    EXPECT_EQ(contentOf("b.txt"), "theirs meanwhile");
    EXPECT_EQ(m_presenter.takeCalls(), "choose a.txt; “b.txt” couldn't be saved. Another program has changed it. "
                                       "Choose Save As to store it in another place. [Save As]");
}

TEST_F(DocumentSavingTest, RevertingReadsTheFileAgainAfterAsking) {
    const auto document = open(makeFile("a.txt"));
    m_presenter.takeCalls();
    m_controller->revertDocument(document);
    m_controller->revertDocument(edit(m_controller->newDocument()));
    EXPECT_EQ(m_presenter.takeCalls(), "show Untitled") << "nothing to give up, and no file to read";

    edit(document);
    m_controller->revertDocument(document);
    EXPECT_EQ(m_presenter.takeCalls(), "revert a.txt");
    EXPECT_EQ(document->text, QStringLiteral("text+"));

    makeFile("a.txt", "theirs");
    m_presenter.reverts = true;
    m_controller->revertDocument(document);
    EXPECT_EQ(document->text, QStringLiteral("theirs"));
    EXPECT_FALSE(document->isDocumentEdited() || document->undoManager()->canUndo());
    EXPECT_TRUE(save(edit(document)));
    EXPECT_EQ(m_presenter.takeCalls(), "revert a.txt") << "the file is as it was read";

    edit(document);
    makeFile("a.txt", "damaged");
    m_controller->revertDocument(document);
    EXPECT_EQ(m_presenter.takeCalls(), "revert a.txt; “a.txt” couldn't be read again. The file is damaged.");
    EXPECT_EQ(document->text, QStringLiteral("theirs++"));
    EXPECT_TRUE(document->isDocumentEdited());
}

TEST_F(DocumentSavingTest, ADuplicateIsAnUntitledEditedCopyOfThePresentState) {
    const auto document = edit(open(makeFile("my %1.v2.txt")));
    const auto duplicate = [this](const std::shared_ptr<Document>& original) {
        Outcome outcome;
        m_controller->duplicateDocument(original, outcome.completion());
        return outcome.waitFor();
    };
    m_presenter.takeCalls();
    EXPECT_TRUE(duplicate(document));
    EXPECT_EQ(m_presenter.takeCalls(), "show my %1.v2 copy");
    const auto copy = std::dynamic_pointer_cast<TextDocument>(m_controller->currentDocument());
    ASSERT_TRUE(copy && copy != document);
    EXPECT_EQ(copy->text, QStringLiteral("text+"));
    EXPECT_TRUE(copy->isDocumentEdited() && copy->fileURL().isEmpty());
    EXPECT_FALSE(copy->undoManager()->canUndo());
    EXPECT_EQ(copy->suggestedFileName(), QStringLiteral("my %1.v2 copy.txt"));

    EXPECT_TRUE(duplicate(document) && duplicate(copy) && duplicate(m_controller->newDocument()));
    EXPECT_EQ(m_presenter.takeCalls(), "show my %1.v2 copy 2; show my %1.v2 copy 3; show Untitled; show Untitled copy");
    m_presenter.takeCalls();
    document->failure = QStringLiteral("It can't be represented.");
    EXPECT_FALSE(duplicate(document));
    EXPECT_EQ(m_presenter.takeCalls(), "“my %1.v2.txt” couldn't be duplicated. It can't be represented.");
}

} // namespace
