#include "DocumentFileMonitor.h"

#include "ControllerFixture.h"

namespace {

using namespace std::chrono_literals;

class DocumentFileMonitorTest : public ControllerFixture {
protected:
    void SetUp() override { DocumentFileMonitor::settlingTime = 20ms; }
    void TearDown() override { DocumentFileMonitor::settlingTime = m_usualSettlingTime; }

    /// An open document, watched by somebody whose patience has soon come to an end, or never does.
    std::shared_ptr<TextDocument> openWatched(bool hasPatience = false) {
        m_monitor.reset();
        auto document = open(makeFile("a.txt"));
        m_monitor.emplace(*m_controller, m_presenter, hasPatience ? 1h : 60ms);
        m_presenter.takeCalls();
        return document;
    }

    /// Waits until the presenter has been told that, and sees what the document shows then.
    void expect(const std::shared_ptr<TextDocument>& document, const std::string& calls, const char* text,
                bool isEdited) {
        expectCalls(calls);
        EXPECT_EQ(document->text.toStdString(), text) << calls;
        EXPECT_EQ(document->isDocumentEdited(), isEdited) << calls;
    }

    /// After a while that is long enough for the monitor to look at whatever happened before.
    void expectNoCalls(const char* why) {
        QTest::qWait(200);
        EXPECT_EQ(m_presenter.takeCalls(), "") << why;
    }

    /// As editors do it: a new file takes the place of the old one.
    void replace(const QByteArray& bytes) const {
        makeFile("new", bytes);
        move("new", "a.txt");
    }
    void move(const char* from, const char* to) const {
        ASSERT_EQ(rename(qPrintable(path(from)), qPrintable(path(to))), 0);
    }

    const std::chrono::milliseconds m_usualSettlingTime = DocumentFileMonitor::settlingTime;
    std::optional<DocumentFileMonitor> m_monitor;
};

std::string gone(const std::string& name) {
    return "“" + name + "” was moved or deleted by another program. Save it to put it back.";
}

const std::string changed = "“a.txt” was changed by another program.";

TEST_F(DocumentFileMonitorTest, AnEditedDocumentIsAskedAboutOnceAndKeepsItsChangesOrTakesTheFile) {
    const auto document = openWatched();
    edit(document);
    replace("theirs");
    expect(document, "reload a.txt", "text+", true);
    m_monitor->checkAll();
    expectNoCalls("it has been answered");
    document->undoManager()->undo();
    EXPECT_TRUE(document->isDocumentEdited()) << "what is shown is nowhere on the disk";
    EXPECT_TRUE(save(document));
    EXPECT_EQ(contentOf("a.txt"), "text") << "it may be overwritten without another question";
    EXPECT_TRUE(save(edit(document)));
    expectNoCalls("one's own saves are no news");

    edit(document);
    replace("theirs again");
    m_presenter.reverts = true;
    expect(document, "reload a.txt; " + changed, "theirs again", false);

    edit(document);
    m_presenter.answer = Answer::DontSave;
    EXPECT_TRUE(close(document));
    m_controller->newDocument();
    m_presenter.takeCalls();
    replace("third");
    m_monitor->checkAll();
    expectNoCalls("closed and untitled documents are left alone");
}

TEST_F(DocumentFileMonitorTest, AFileThatIsWrittenInPiecesOrPutInPlaceAnewIsNoConflictOfItsOwn) {
    const auto document = openWatched(true);
    makeFile("a.txt", "damaged first half");
    expectNoCalls("it may be finished yet");
    makeFile("a.txt", "first half and second");
    expect(document, changed, "first half and second", false);
    QFile::remove(path("a.txt"));
    expectNoCalls("it may come back yet");
    makeFile("a.txt", "in place anew");
    expectCalls(changed);
}

TEST_F(DocumentFileMonitorTest, AFileThatCanNoLongerBeReadOrIsGoneLeavesTheDocumentAndGetsAnotherChance) {
    const auto document = openWatched();
    replace("damaged");
    // What is shown is nowhere on the disk.
    expect(document, "“a.txt” was changed by another program and can't be read any more: The file is damaged.", "text",
           true);
    expectNoCalls("told once");
    replace("whole");
    expect(document, changed, "whole", false);

    // However long the file was gone: only the reader's own changes make a conflict.
    for (const bool edits : {false, true}) {
        QFile::remove(path("a.txt"));
        expectCalls(gone("a.txt"));
        if (edits)
            edit(document);
        replace("late");
        expect(document, edits ? "reload a.txt" : changed, edits ? "late+" : "late", edits);
    }
}

TEST_F(DocumentFileMonitorTest, ADocumentFollowsItsFileAndMissesOneThatIsGone) {
    const auto document = openWatched();
    makeFolder("away");
    move("a.txt", "b.txt");
    expect(document, "“a.txt” is now called “b.txt”.", "text", false);
    makeFile("a.txt", "another file");
    move("b.txt", "away/b.txt");
    expect(document, gone("b.txt"), "text", true); // so closing asks
    // Back again, it is as before; gone for good, a save puts it back.
    move("away/b.txt", "b.txt");
    EXPECT_TRUE(QTest::qWaitFor([&] { return !document->isDocumentEdited(); }, 30'000));
    move("b.txt", "stranger");
    makeFile("stranger", "what has taken the place on the disk that was free again");
    expectCalls(gone("b.txt"));
    EXPECT_TRUE(save(document));
    EXPECT_EQ(seen(document), " | text | saved");
    move("b.txt", "away/b.txt");
    expectCalls(gone("b.txt")); // though nobody had looked since the save
    EXPECT_TRUE(save(document));
    expectNoCalls("told once");

    // Unsaved changes stay unsaved when the file comes back.
    edit(document);
    move("b.txt", "away/b.txt");
    expectCalls(gone("b.txt"));
    move("away/b.txt", "b.txt");
    expectNoCalls("it is as it was");
    EXPECT_EQ(seen(document), " | text | edited");
    // What a save puts there is another file than the one that went.
    EXPECT_TRUE(save(document));
    expectNoCalls("it was saved");
    move("b.txt", "away/b.txt");
    expectCalls(gone("b.txt"));
    EXPECT_TRUE(save(edit(document)));
    document->undoManager()->undo();
    m_monitor->checkAll();
    EXPECT_EQ(seen(document), " | text++ | edited");
}

} // namespace
