#include "ControllerFixture.h"

#include "FileStamp.h"
#include "RestrictedRuns.h"

#include <QCryptographicHash>
#include <QDir>
#include <QSignalSpy>
#include <QStandardPaths>
#include <QTest>

#include <csignal>

#include <sys/resource.h>
#include <unistd.h>

namespace {

class DocumentSavingTest : public ControllerFixture {
protected:
    using OverwriteAnswer = DocumentPresenter::OverwriteAnswer;
};

TEST_F(DocumentSavingTest, SavingWritesTheFileOrAsksForOne) {
    const auto document = edit(m_controller->newDocument());
    QSignalSpy saved(m_controller.get(), &DocumentController::documentSaved);
    EXPECT_EQ(m_presenter.takeCalls(), "show Untitled");
    EXPECT_FALSE(save(document));
    EXPECT_TRUE(document->isDocumentEdited());
    EXPECT_EQ(m_presenter.takeCalls(), "choose Untitled.txt");

    m_presenter.location = path("new.txt");
    EXPECT_TRUE(save(document));
    EXPECT_EQ(contentOf("new.txt"), "+");
    EXPECT_EQ(document->displayName(), QStringLiteral("new.txt"));
    EXPECT_FALSE(document->isDocumentEdited());
    EXPECT_EQ(recentNames(), "new.txt");
    EXPECT_EQ(saved.count(), 1);
    m_presenter.takeCalls();

    edit(document);
    EXPECT_TRUE(save(document));
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
    const auto pictureOf = [&folder](const QByteArray& address) {
        QFile picture(folder.filePath(
            QString::fromLatin1(QCryptographicHash::hash(address, QCryptographicHash::Md5).toHex() + ".png")));
        EXPECT_TRUE(picture.open(QFile::WriteOnly));
        return picture.fileName();
    };
    m_presenter.location = path("Über #1.txt");
    const QString base = QFileInfo(*m_presenter.location).path();
    const QString old = pictureOf("file://" + base.toUtf8() + "/%C3%9Cber%20%231.txt");
    const QString others = pictureOf("file:///elsewhere.txt");
    EXPECT_TRUE(save(edit(m_controller->newDocument())));
    EXPECT_FALSE(QFile::exists(old));
    EXPECT_TRUE(QFile::exists(others));
}

TEST_F(DocumentSavingTest, SavingAsMovesOnToTheOtherFile) {
    const auto first = edit(open(makeFile("first.txt")));
    const auto second = open(makeFile("second.txt", "2"));
    ASSERT_EQ(symlink("second.txt", qPrintable(path("link.txt"))), 0);
    m_presenter.takeCalls();
    for (const char* taken : {"second.txt", "link.txt"}) {
        EXPECT_FALSE(saveAs(first, taken)) << taken;
        EXPECT_NE(m_presenter.takeCalls().find("couldn't be saved. A file of this name is open in another window."),
                  std::string::npos);
    }
    EXPECT_FALSE(saveAs(first, "no folder/x.txt"));
    EXPECT_EQ(m_presenter.takeCalls(), "choose first.txt; “x.txt” couldn't be saved. The folder “no folder” doesn't "
                                       "exist. Choose Save As to store it in another place. [Save As]");
    EXPECT_EQ(contentOf("second.txt"), "2");
    EXPECT_EQ(first->displayName(), QStringLiteral("first.txt"));
    EXPECT_TRUE(first->isDocumentEdited());

    EXPECT_TRUE(saveAs(first, "third.txt"));
    EXPECT_EQ(contentOf("first.txt"), "text");
    EXPECT_EQ(contentOf("third.txt"), "text+");
    EXPECT_EQ(m_controller->documentForURL(QUrl::fromLocalFile(path("third.txt"))), first);
    EXPECT_EQ(m_controller->documentForURL(QUrl::fromLocalFile(path("first.txt"))), nullptr);

    edit(first);
    EXPECT_TRUE(saveAs(first, "third.txt")) << "its own file is not taken by another";
    EXPECT_EQ(contentOf("third.txt"), "text++");
}

TEST_F(DocumentSavingTest, AFailedSaveGoesOnElsewhereWhenTheUserWantsThat) {
    ASSERT_TRUE(QDir(m_folder.path()).mkpath(QStringLiteral("sub")));
    const auto document = edit(open(makeFile("sub/a.txt")));
    ASSERT_TRUE(QDir(path("sub")).removeRecursively());
    m_presenter.takeCalls();
    EXPECT_FALSE(save(document));
    const std::string told = "“a.txt” couldn't be saved. The folder “sub” doesn't exist. Choose Save As to store it in "
                             "another place. [Save As]";
    EXPECT_EQ(m_presenter.takeCalls(), told);
    EXPECT_TRUE(document->isDocumentEdited());
    EXPECT_EQ(document->fileURL().toLocalFile(), path("sub/a.txt"));

    m_presenter.takesSaveAs = true;
    m_presenter.location = path("b.txt");
    EXPECT_TRUE(save(document));
    EXPECT_EQ(m_presenter.takeCalls(), told + "; choose a.txt");
    EXPECT_EQ(contentOf("b.txt"), "text+");
    EXPECT_FALSE(document->isDocumentEdited());
    EXPECT_EQ(document->displayName(), QStringLiteral("b.txt"));
}

TEST_F(DocumentSavingTest, AFullOrReadOnlyDiskLeavesTheFileAndTheChanges) {
    const auto report = RestrictedRuns::onSmallDisk(m_folder.path(), [this](const auto& makeReadOnly) {
        const auto document = open(makeFile("a.txt"));
        document->append(QString(100'000, QLatin1Char('x')));
        m_presenter.takeCalls();
        QStringList lines;
        const auto noteSave = [&] {
            lines.append(save(document) ? QStringLiteral("saved") : QStringLiteral("not saved"));
            lines.append(QString::fromStdString(m_presenter.takeCalls()));
            lines.append(QString::fromUtf8(contentOf("a.txt")));
            lines.append(document->isDocumentEdited() ? QStringLiteral("edited") : QStringLiteral("unedited"));
        };
        noteSave();
        makeReadOnly();
        noteSave();
        return lines + QDir(m_folder.path()).entryList(QDir::Files | QDir::Hidden);
    });
    if (!report)
        GTEST_SKIP() << "a small disk can't be mounted here";
    EXPECT_EQ(
        report->join(QLatin1Char('\n')).toStdString(),
        "not saved\n“a.txt” couldn't be saved. There isn't enough space on the disk. Free some space and save "
        "again, or choose Save As to store it on another disk. [Save As]\ntext\nedited\n"
        "not saved\n“a.txt” couldn't be saved. The disk can't be written to. Choose Save As to store it in another "
        "place. [Save As]\ntext\nedited\na.txt");
}

TEST_F(DocumentSavingTest, AFileThatCannotGrowLeavesTheOldOne) {
    const auto document = open(makeFile("a.txt"));
    document->append(QString(100'000, QLatin1Char('x')));
    struct rlimit before = {};
    ASSERT_EQ(getrlimit(RLIMIT_FSIZE, &before), 0);
    const struct rlimit small = {1000, before.rlim_max};
    const auto oldHandler = std::signal(SIGXFSZ, SIG_IGN);
    ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &small), 0);
    const bool isSaved = save(document);
    setrlimit(RLIMIT_FSIZE, &before);
    std::signal(SIGXFSZ, oldHandler);
    EXPECT_FALSE(isSaved);
    EXPECT_EQ(contentOf("a.txt"), "text");
    EXPECT_TRUE(document->isDocumentEdited());
    EXPECT_TRUE(save(document));
    EXPECT_EQ(contentOf("a.txt").size(), 100'004);
}

TEST_F(DocumentSavingTest, ALinkStaysALinkToTheSavedFile) {
    ASSERT_TRUE(QDir(m_folder.path()).mkpath(QStringLiteral("sub")));
    makeFile("sub/target.txt");
    ASSERT_EQ(symlink("sub/target.txt", qPrintable(path("link.txt"))), 0);
    const auto document = edit(open(QUrl::fromLocalFile(path("link.txt"))));
    EXPECT_TRUE(save(document));
    EXPECT_TRUE(save(edit(document)));
    EXPECT_EQ(contentOf("sub/target.txt"), "text++");
    EXPECT_TRUE(QFileInfo(path("link.txt")).isSymLink());
    EXPECT_EQ(document->displayName(), QStringLiteral("link.txt"));
    EXPECT_EQ(m_presenter.takeCalls(), "show link.txt");
}

TEST_F(DocumentSavingTest, WhatIsChangedDuringASaveIsStillUnsaved) {
    const auto document = openGated("a.txt");
    QSignalSpy saving(m_controller.get(), &DocumentController::documentSavingChanged);
    Outcome first;
    m_controller->saveDocument(document, first.completion());
    EXPECT_TRUE(m_controller->isSaving(*document));
    edit(document);
    m_gate->release();
    EXPECT_TRUE(first.waitFor());
    EXPECT_EQ(contentOf("a.txt"), "text+");
    EXPECT_TRUE(document->isDocumentEdited());
    document->undoManager()->undo();
    EXPECT_FALSE(document->isDocumentEdited()) << "that is what the file holds";
    document->undoManager()->redo();
    EXPECT_EQ(saving.count(), 2);
    EXPECT_TRUE(saving[0][1].toBool());
    EXPECT_FALSE(saving[1][1].toBool() || m_controller->isSaving(*document));
}

TEST_F(DocumentSavingTest, ASaveDuringASaveWritesOnlyWhatChangedSince) {
    const auto document = openGated("a.txt");
    QSignalSpy saved(m_controller.get(), &DocumentController::documentSaved);
    Outcome first, second, third, fourth;
    m_controller->saveDocument(document, first.completion());
    m_controller->saveDocument(document, second.completion());
    m_gate->release();
    EXPECT_TRUE(first.waitFor() && second.waitFor());
    EXPECT_EQ(saved.count(), 1) << "nothing changed between the two";

    edit(document);
    m_controller->saveDocument(document, third.completion());
    edit(document);
    m_controller->saveDocument(document, fourth.completion());
    m_gate->release();
    EXPECT_TRUE(third.waitFor());
    EXPECT_EQ(contentOf("a.txt"), "text++");
    EXPECT_FALSE(fourth.succeeded.has_value());
    m_gate->release();
    EXPECT_TRUE(fourth.waitFor());
    EXPECT_EQ(contentOf("a.txt"), "text+++");
    EXPECT_FALSE(document->isDocumentEdited());
    EXPECT_EQ(saved.count(), 3);
    EXPECT_EQ(m_presenter.takeCalls(), "");
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
    EXPECT_EQ(document->displayName(), QStringLiteral("b.txt"));
    EXPECT_EQ(recentNames(), "b.txt a.txt other.txt");

    m_presenter.location = path("new.txt");
    m_controller->saveDocumentAs(document, third.completion());
    EXPECT_FALSE(saveAs(other, "new.txt")) << "another document is being written to it";
    m_gate->release();
    EXPECT_TRUE(third.waitFor());
}

TEST_F(DocumentSavingTest, AFileThatADocumentIsBeingSavedToIsOpenedAsThatDocument) {
    const auto document = openGated("a.txt");
    makeFile("b.txt", "old");
    Outcome outcome;
    m_presenter.location = path("b.txt");
    m_controller->saveDocumentAs(document, outcome.completion());
    EXPECT_EQ(open(QUrl::fromLocalFile(path("b.txt"))), document);
    EXPECT_TRUE(m_wasOpen);
    m_gate->release();
    EXPECT_TRUE(outcome.waitFor());
    EXPECT_EQ(m_controller->documents().size(), 1U);
    EXPECT_EQ(contentOf("b.txt"), "text+");
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
    EXPECT_EQ(m_presenter.takeCalls(), "");

    makeFile("a.txt", "theirs");
    edit(document);
    EXPECT_FALSE(save(document));
    EXPECT_EQ(m_presenter.takeCalls(), "changed a.txt");
    EXPECT_EQ(contentOf("a.txt"), "theirs");
    EXPECT_TRUE(document->isDocumentEdited());

    m_presenter.changedFileAnswer = OverwriteAnswer::SaveAs;
    m_presenter.location = path("mine.txt");
    EXPECT_TRUE(save(document));
    EXPECT_EQ(m_presenter.takeCalls(), "changed a.txt; choose a.txt");
    EXPECT_EQ(contentOf("a.txt"), "theirs");
    EXPECT_EQ(contentOf("mine.txt"), "text++++");

    // Replaced by a file that looks the same, down to its time.
    const std::optional<FileStamp> stamp = FileStamp::of(path("mine.txt"));
    makeFile("new.txt", "TEXT++++");
    QFile replacement(path("new.txt"));
    ASSERT_TRUE(replacement.open(QIODevice::ReadWrite));
    replacement.setFileTime(QFileInfo(path("mine.txt")).lastModified(), QFileDevice::FileModificationTime);
    ASSERT_EQ(rename(qPrintable(path("new.txt")), qPrintable(path("mine.txt"))), 0);
    EXPECT_EQ(FileStamp::of(path("mine.txt"))->size, stamp->size);
    m_presenter.changedFileAnswer = OverwriteAnswer::Overwrite;
    EXPECT_TRUE(save(edit(document)));
    EXPECT_EQ(m_presenter.takeCalls(), "changed mine.txt");
    EXPECT_EQ(contentOf("mine.txt"), "text+++++");

    QFile::remove(path("mine.txt"));
    EXPECT_TRUE(save(edit(document))) << "a file that has gone is written again";
    EXPECT_TRUE(save(edit(document)));
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
    m_presenter.changedFileAnswer = OverwriteAnswer::Overwrite;
    m_gate->release();
    EXPECT_TRUE(save(document));
    EXPECT_EQ(m_presenter.takeCalls(), "changed a.txt");
    EXPECT_EQ(contentOf("a.txt"), "text+");
    EXPECT_EQ(document->fileStamp(), FileStamp::of(path("a.txt")));
    EXPECT_TRUE(document->atGate->tryAcquire());

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
    EXPECT_EQ(contentOf("my %1.v2.txt"), "text");
    EXPECT_EQ(copy->suggestedFileName(), QStringLiteral("my %1.v2 copy.txt"));

    EXPECT_TRUE(duplicate(document) && duplicate(copy) && duplicate(m_controller->newDocument()));
    EXPECT_EQ(m_presenter.takeCalls(), "show my %1.v2 copy 2; show my %1.v2 copy 3; show Untitled; show Untitled copy");
    EXPECT_TRUE(saveAs(copy, "saved.txt"));
    EXPECT_EQ(contentOf("saved.txt"), "text+");
    EXPECT_EQ(copy->displayName(), QStringLiteral("saved.txt"));

    m_presenter.takeCalls();
    document->failure = QStringLiteral("It can't be represented.");
    EXPECT_FALSE(duplicate(document));
    EXPECT_EQ(m_presenter.takeCalls(), "“my %1.v2.txt” couldn't be duplicated. It can't be represented.");
}

} // namespace
