#include "ControllerFixture.h"

#include <QCryptographicHash>
#include <QDir>
#include <QSignalSpy>
#include <QStandardPaths>

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
    EXPECT_EQ(seen(document), "show Untitled; choose Untitled.txt | (missing) | edited");
    m_presenter.location = path("new.txt");
    EXPECT_TRUE(save(document));
    EXPECT_EQ(seen(document), "choose Untitled.txt | + | saved");
    EXPECT_EQ(recentNames(), "new.txt");
    EXPECT_TRUE(save(edit(document)));
    EXPECT_EQ(seen(document), " | ++ | saved") << "it has a file: nothing to ask";
    EXPECT_EQ(saved.count(), 2);
}

TEST_F(DocumentSavingTest, TheDesktopsPictureOfTheOldContentGoes) {
    const QDir folder(QStandardPaths::writableLocation(QStandardPaths::GenericCacheLocation) +
                      QStringLiteral("/thumbnails/large"));
    ASSERT_TRUE(folder.mkpath(QStringLiteral(".")));
    m_presenter.location = path("Über #1.txt");
    const QByteArray address = "file://" + m_folder.path().toUtf8() + "/%C3%9Cber%20%231.txt";
    const QByteArray name = QCryptographicHash::hash(address, QCryptographicHash::Md5).toHex() + ".png";
    ASSERT_TRUE(QFile(folder.filePath(QString::fromLatin1(name))).open(QFile::WriteOnly));
    EXPECT_TRUE(save(edit(m_controller->newDocument())));
    EXPECT_TRUE(folder.isEmpty());
}

TEST_F(DocumentSavingTest, SavingAsMovesOnToTheOtherFileAndAFailedSaveMayGoOnThere) {
    makeFolder("sub");
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
    EXPECT_EQ(m_controller->documentForURL(url("sub/first.txt")), nullptr);
    EXPECT_TRUE(saveAs(edit(first), "sub/third.txt")) << "its own file is not taken by another";

    ASSERT_TRUE(QDir(path("sub")).removeRecursively());
    edit(first);
    m_presenter.takeCalls();
    EXPECT_FALSE(save(first));
    const std::string told = "“third.txt” couldn't be saved. The folder “sub” doesn't exist. Choose Save As to store "
                             "it in another place. [Save As]";
    EXPECT_EQ(seen(first), told + " | (missing) | edited");
    m_presenter.takesSaveAs = true;
    m_presenter.location = path("b.txt");
    EXPECT_TRUE(save(first));
    EXPECT_EQ(seen(first), told + "; choose third.txt | text+++ | saved");
}

TEST_F(DocumentSavingTest, ASaveDuringASaveWritesOnlyWhatChangedSince) {
    const auto document = openGated("a.txt");
    QSignalSpy saved(m_controller.get(), &DocumentController::documentSaved);
    QSignalSpy changes(m_controller.get(), &DocumentController::documentSavingChanged);
    const auto first = saving(document);
    const auto second = saving(document);
    m_gate->release();
    EXPECT_TRUE(first.waitFor() && second.waitFor());
    EXPECT_EQ(saved.count(), 1) << "nothing changed between the two";
    EXPECT_TRUE(changes[0][1].toBool());
    EXPECT_FALSE(changes.last()[1].toBool() || m_controller->isSaving(*document));

    edit(document);
    const auto third = saving(document);
    edit(document);
    const auto fourth = saving(document);
    m_gate->release();
    EXPECT_TRUE(third.waitFor());
    EXPECT_EQ(seen(document), " | text++ | edited");
    document->undoManager()->undo();
    EXPECT_FALSE(document->isDocumentEdited()) << "that is what the file holds";
    document->undoManager()->redo();
    m_gate->release();
    EXPECT_TRUE(fourth.waitFor());
    EXPECT_EQ(seen(document), " | text+++ | saved");
    EXPECT_EQ(saved.count(), 3);
}

TEST_F(DocumentSavingTest, SavingAsDuringASaveLeavesBothFilesWhole) {
    const auto document = openGated("a.txt");
    const auto other = openGated("other.txt");
    const auto first = saving(document);
    const auto second = savingAs(document, "b.txt");
    EXPECT_FALSE(saveAs(other, "a.txt")) << "it is the file of another document";
    m_gate->release(2);
    EXPECT_TRUE(first.waitFor() && second.waitFor());
    EXPECT_EQ(contentOf("a.txt") + contentOf("b.txt"), "text+text+");
    EXPECT_EQ(recentNames(), "b.txt a.txt other.txt");

    makeFile("new.txt", "old");
    const auto third = savingAs(document, "new.txt");
    EXPECT_FALSE(saveAs(other, "new.txt")) << "another document is being written to it";
    EXPECT_EQ(open(url("new.txt")), document) << "and opened as that one";
    m_gate->release();
    EXPECT_TRUE(third.waitFor());
    EXPECT_EQ(contentOf("new.txt"), "text+");
}

TEST_F(DocumentSavingTest, TheControllersEndWaitsForTheFileAndTellsNobody) {
    const auto document = openGated("a.txt");
    const auto outcome = saving(document);
    m_gate->release();
    m_controller.reset();
    EXPECT_EQ(contentOf("a.txt"), "text+");
    QCoreApplication::processEvents();
    EXPECT_FALSE(outcome.succeeded.has_value());
}

TEST_F(DocumentSavingTest, WhatAnotherProgramHasWrittenIsOverwrittenOnlyWhenTheUserSaysSo) {
    const auto document = openEdited("a.txt");
    EXPECT_TRUE(save(edit(document)) && save(edit(document))) << "its own saves are no such change";
    makeFile("a.txt", "theirs");
    EXPECT_FALSE(save(edit(document)));
    EXPECT_EQ(seen(document), "changed a.txt | theirs | edited");
    m_presenter.changedFileAnswer = OverwriteAnswer::SaveAs;
    m_presenter.location = path("mine.txt");
    EXPECT_TRUE(save(document));
    EXPECT_EQ(seen(document), "changed a.txt; choose a.txt | text++++ | saved");
    EXPECT_EQ(contentOf("a.txt"), "theirs");

    makeFile("mine.txt", "theirs too");
    m_presenter.changedFileAnswer = OverwriteAnswer::Overwrite;
    EXPECT_TRUE(save(edit(document)));
    EXPECT_EQ(seen(document), "changed mine.txt | text+++++ | saved");
    QFile::remove(path("mine.txt"));
    EXPECT_TRUE(save(edit(document)) && save(edit(document))) << "a file that has gone is written again";
    EXPECT_EQ(m_presenter.takeCalls(), "");
}

TEST_F(DocumentSavingTest, AVersionThatComesWhileADocumentIsBeingWrittenIsNotReplacedUnasked) {
    const auto document = openGated("a.txt");
    const auto first = saving(document);
    document->atGate->acquire();
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
    EXPECT_EQ(seen(document), "changed a.txt; changed a.txt | theirs at last | edited");

    m_presenter.whileAsking = nullptr;
    // Saving under the name of a file replaces what was there when that began.
    makeFile("b.txt", "old");
    const auto outcome = savingAs(document, "b.txt");
    document->atGate->acquire();
    makeFile("b.txt", "theirs meanwhile");
    m_gate->release();
    EXPECT_FALSE(outcome.waitFor());
    EXPECT_EQ(contentOf("b.txt"), "theirs meanwhile");
    EXPECT_EQ(m_presenter.takeCalls().find("choose a.txt; “b.txt” couldn't be saved. Another program has"), 0U);
}

TEST_F(DocumentSavingTest, RevertingReadsTheFileAgainAfterAsking) {
    const auto document = open(makeFile("a.txt"));
    m_presenter.takeCalls();
    m_controller->revertDocument(document);
    m_controller->revertDocument(edit(m_controller->newDocument()));
    EXPECT_EQ(m_presenter.takeCalls(), "show Untitled") << "nothing to give up, and no file to read";

    edit(document);
    m_controller->revertDocument(document);
    EXPECT_EQ(document->text, QStringLiteral("text+"));
    makeFile("a.txt", "theirs");
    m_presenter.reverts = true;
    m_controller->revertDocument(document);
    EXPECT_FALSE(document->isDocumentEdited() || document->undoManager()->canUndo());
    EXPECT_TRUE(save(edit(document)));
    EXPECT_EQ(seen(document), "revert a.txt; revert a.txt | theirs+ | saved") << "the file is as it was read";

    edit(document);
    makeFile("a.txt", "damaged");
    m_controller->revertDocument(document);
    EXPECT_EQ(seen(document), "revert a.txt; “a.txt” couldn't be read again. The file is damaged. | damaged | edited");
    EXPECT_EQ(document->text, QStringLiteral("theirs++"));
}

TEST_F(DocumentSavingTest, ADuplicateIsAnUntitledEditedCopyOfThePresentState) {
    const auto document = openEdited("my %1.v2.txt");
    const auto duplicate = [this](const std::shared_ptr<Document>& original) {
        return Outcome([&](const auto& done) { m_controller->duplicateDocument(original, done); }).waitFor();
    };
    EXPECT_TRUE(duplicate(document));
    const auto copy = std::dynamic_pointer_cast<TextDocument>(m_controller->currentDocument());
    EXPECT_EQ(seen(copy), "show my %1.v2 copy | (missing) | edited");
    EXPECT_EQ(copy->text, QStringLiteral("text+"));
    EXPECT_FALSE(copy->undoManager()->canUndo() || !copy->fileURL().isEmpty());

    EXPECT_TRUE(duplicate(document) && duplicate(copy) && duplicate(m_controller->newDocument()));
    EXPECT_EQ(m_presenter.takeCalls(), "show my %1.v2 copy 2; show my %1.v2 copy 3; show Untitled; show Untitled copy");
    document->failure = QStringLiteral("It can't be represented.");
    EXPECT_FALSE(duplicate(document));
    EXPECT_EQ(m_presenter.takeCalls(), "“my %1.v2.txt” couldn't be duplicated. It can't be represented.");
}

} // namespace
