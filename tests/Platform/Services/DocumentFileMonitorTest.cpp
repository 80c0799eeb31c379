#include "DocumentFileMonitor.h"

#include "ControllerFixture.h"

#include <QTest>

#include <gtest/gtest.h>

namespace {

class DocumentFileMonitorTest : public ControllerFixture {
protected:
    /// Waits until the presenter was told something, and gives it.
    std::string nextCalls() {
        std::string calls;
        EXPECT_TRUE(QTest::qWaitFor(
            [&] {
                calls = m_presenter.takeCalls();
                return !calls.empty();
            },
            30'000));
        return calls;
    }

    /// Long enough for the monitor to have looked at whatever happened before.
    std::string callsAfterSettling() {
        QTest::qWait(static_cast<int>((3 * DocumentFileMonitor::settlingTime + patience).count()));
        return m_presenter.takeCalls();
    }

    /// As editors do it: a new file takes the place of the old one.
    void replace(const char* name, const QByteArray& bytes) const {
        makeFile("new", bytes);
        ASSERT_EQ(rename(qPrintable(path("new")), qPrintable(path(name))), 0);
    }

    std::shared_ptr<TextDocument> openWatched(const char* name) {
        auto document = open(makeFile(name));
        m_presenter.takeCalls();
        return document;
    }

    static constexpr std::chrono::milliseconds patience{1'000};
    DocumentFileMonitor m_monitor{*m_controller, m_presenter, patience};
};

TEST_F(DocumentFileMonitorTest, AnEditedDocumentIsAskedAboutOnceAndKeepsItsChangesOrTakesTheFile) {
    const auto document = openWatched("a.txt");
    edit(document);
    replace("a.txt", "theirs");
    EXPECT_EQ(nextCalls(), "reload a.txt");
    EXPECT_EQ(document->text, QStringLiteral("text+"));
    m_monitor.checkAll();
    EXPECT_EQ(callsAfterSettling(), "") << "it has been answered";
    document->undoManager()->undo();
    EXPECT_TRUE(document->isDocumentEdited()) << "what is shown is nowhere on the disk";
    EXPECT_TRUE(save(document));
    EXPECT_EQ(contentOf("a.txt"), "text") << "it may be overwritten without another question";
    EXPECT_TRUE(save(edit(document)));
    EXPECT_EQ(callsAfterSettling(), "") << "one's own saves are no news";

    edit(document);
    replace("a.txt", "theirs again");
    m_presenter.reverts = true;
    EXPECT_EQ(nextCalls(), "reload a.txt; “a.txt” was changed by another program.");
    EXPECT_EQ(document->text, QStringLiteral("theirs again"));
    EXPECT_FALSE(document->isDocumentEdited());

    // Closed in the middle of the question, as quitting at that moment does.
    edit(document);
    m_presenter.answer = Answer::DontSave;
    m_presenter.whileAsking = [this](const auto& asked) {
        m_presenter.whileAsking = nullptr;
        EXPECT_EQ(m_controller->documents().size(), 1U);
        m_controller->closeDocument(asked);
    };
    replace("a.txt", "third");
    nextCalls();
    EXPECT_EQ(callsAfterSettling(), "");
}

TEST_F(DocumentFileMonitorTest, ClosedAndUntitledDocumentsAreLeftAlone) {
    const auto document = openWatched("a.txt");
    m_controller->newDocument();
    m_controller->closeDocument(document);
    m_presenter.takeCalls();
    replace("a.txt", "theirs");
    m_monitor.checkAll();
    EXPECT_EQ(callsAfterSettling(), "");
    EXPECT_EQ(document->text, QStringLiteral("text"));
}

TEST_F(DocumentFileMonitorTest, AFileThatCanNoLongerBeReadLeavesTheDocumentAndGetsAnotherChance) {
    const auto document = openWatched("a.txt");
    replace("a.txt", "damaged");
    EXPECT_EQ(nextCalls(), "“a.txt” was changed by another program and can't be read any more: The file is damaged.");
    EXPECT_EQ(document->text, QStringLiteral("text"));
    EXPECT_TRUE(document->isDocumentEdited()) << "what is shown is nowhere on the disk";
    EXPECT_EQ(callsAfterSettling(), "");
    replace("a.txt", "whole");
    EXPECT_EQ(nextCalls(), "“a.txt” was changed by another program.") << "the reader changed nothing";
    EXPECT_EQ(document->text, QStringLiteral("whole"));
    EXPECT_FALSE(document->isDocumentEdited());
}

TEST_F(DocumentFileMonitorTest, AFileThatIsWrittenInPiecesOrPutInPlaceAnewIsNoConflictOfItsOwn) {
    const auto document = openWatched("a.txt");
    const auto settle = [] { QTest::qWait(static_cast<int>((2 * DocumentFileMonitor::settlingTime).count())); };
    makeFile("a.txt", "damaged first half");
    settle();
    makeFile("a.txt", "first half and second");
    EXPECT_EQ(nextCalls(), "“a.txt” was changed by another program.");
    EXPECT_EQ(document->text, QStringLiteral("first half and second"));
    EXPECT_FALSE(document->isDocumentEdited() || document->undoManager()->canUndo());
    QFile::remove(path("a.txt"));
    settle();
    makeFile("a.txt", "in place anew");
    EXPECT_EQ(nextCalls(), "“a.txt” was changed by another program.");

    // However long the file was gone: only the reader's own changes make a conflict.
    for (const bool edits : {false, true}) {
        QFile::remove(path("a.txt"));
        EXPECT_EQ(nextCalls(), "“a.txt” was moved or deleted by another program. Save it to put it back.");
        if (edits)
            edit(document);
        makeFile("a.txt", "late");
        EXPECT_EQ(nextCalls(), edits ? "reload a.txt" : "“a.txt” was changed by another program.");
        EXPECT_EQ(document->text, edits ? QStringLiteral("late+") : QStringLiteral("late"));
        EXPECT_EQ(document->isDocumentEdited(), edits);
    }
}

TEST_F(DocumentFileMonitorTest, ADocumentFollowsItsFileAndMissesOneThatIsGone) {
    const auto document = openWatched("a.txt");
    ASSERT_EQ(rename(qPrintable(path("a.txt")), qPrintable(path("b.txt"))), 0);
    EXPECT_EQ(nextCalls(), "“a.txt” is now called “b.txt”.");
    EXPECT_EQ(document->fileURL(), QUrl::fromLocalFile(path("b.txt")));
    EXPECT_FALSE(document->isDocumentEdited());
    makeFile("a.txt", "another file");
    QTemporaryDir elsewhere;
    const QByteArray away = elsewhere.filePath(QStringLiteral("b.txt")).toLocal8Bit();
    ASSERT_EQ(rename(qPrintable(path("b.txt")), away.constData()), 0);
    EXPECT_EQ(nextCalls(), "“b.txt” was moved or deleted by another program. Save it to put it back.");
    EXPECT_TRUE(document->isDocumentEdited()) << "so closing asks";
    // Back again, it is as before; gone for good, a save puts it back.
    ASSERT_EQ(rename(away.constData(), qPrintable(path("b.txt"))), 0);
    EXPECT_TRUE(QTest::qWaitFor([&] { return !document->isDocumentEdited(); }, 30'000));
    QFile::remove(path("b.txt"));
    nextCalls();
    EXPECT_TRUE(save(document));
    EXPECT_EQ(contentOf("b.txt"), "text");
    EXPECT_FALSE(document->isDocumentEdited());
    EXPECT_EQ(callsAfterSettling(), "") << "told once";
}

TEST_F(DocumentFileMonitorTest, UnsavedChangesStayUnsavedWhenTheFileComesBack) {
    const QTemporaryDir elsewhere;
    const QByteArray away = elsewhere.filePath(QStringLiteral("a.txt")).toLocal8Bit();
    const auto takeAway = [&] {
        ASSERT_EQ(rename(qPrintable(path("a.txt")), away.constData()), 0);
        EXPECT_EQ(nextCalls(), "“a.txt” was moved or deleted by another program. Save it to put it back.");
    };
    const auto document = openWatched("a.txt");
    edit(document);
    takeAway();
    ASSERT_EQ(rename(away.constData(), qPrintable(path("a.txt"))), 0);
    EXPECT_EQ(callsAfterSettling(), "");
    EXPECT_TRUE(document->isDocumentEdited());
    EXPECT_EQ(contentOf("a.txt"), "text");

    // What a save puts there is another file than the one that went.
    EXPECT_TRUE(save(document));
    EXPECT_EQ(callsAfterSettling(), "");
    takeAway();
    EXPECT_TRUE(save(edit(document)));
    document->undoManager()->undo();
    m_monitor.checkAll();
    EXPECT_TRUE(document->isDocumentEdited());
    EXPECT_EQ(contentOf("a.txt"), "text++");
}

} // namespace
