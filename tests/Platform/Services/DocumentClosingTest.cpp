#include "ControllerFixture.h"

#include <QSignalSpy>

#include <tuple>

namespace {

class DocumentClosingTest : public ControllerFixture {};

TEST_F(DocumentClosingTest, ClosingAsksAboutUnsavedChanges) {
    const std::tuple<bool, Answer, const char*, bool, const char*> rows[] = {
        {false, Answer::Cancel, "", true, "closed a.txt | text | saved"},
        {true, Answer::Cancel, "", false, "ask a.txt | text | edited"},
        {true, Answer::DontSave, "", true, "ask a.txt; closed a.txt | text | edited"},
        {true, Answer::Save, "", true, "ask a.txt; closed a.txt | text+ | saved"},
        {true, Answer::Save, "No.", false, "ask a.txt; “a.txt” couldn't be saved. No. | text | edited"},
    };
    for (const auto& [isEdited, answer, failure, closes, expected] : rows) {
        auto document = open(makeFile("a.txt"));
        if (isEdited)
            edit(document);
        document->failure = QLatin1String(failure);
        m_presenter.answer = answer;
        m_presenter.takeCalls();
        EXPECT_EQ(close(document), closes);
        EXPECT_EQ(seen(document), expected);
        EXPECT_EQ(m_controller->documents().size(), closes ? 0u : 1u) << expected;
        EXPECT_EQ(m_controller->currentDocument(), closes ? nullptr : document);
        const std::weak_ptr<Document> watch = document;
        m_presenter.answer = Answer::DontSave;
        EXPECT_TRUE(close(document));
        document.reset();
        // The thread that saved it lets go of it last.
        EXPECT_TRUE(QTest::qWaitFor([&watch] { return watch.expired(); })) << "nobody keeps a closed document";
    }
}

TEST_F(DocumentClosingTest, AQuestionIsAskedOnceAtATime) {
    const auto document = edit(m_controller->newDocument());
    m_presenter.answer = Answer::Save;
    m_presenter.takeCalls();
    m_presenter.whileAsking = [&](const auto& asked) {
        EXPECT_FALSE(close(asked));
        EXPECT_FALSE(save(asked));
        EXPECT_FALSE(closeAll());
    };
    EXPECT_FALSE(close(document)) << "no place to save to was chosen";
    EXPECT_EQ(m_presenter.takeCalls(), "ask Untitled; choose Untitled.txt");
    m_presenter.whileAsking = nullptr;
    m_presenter.answer = Answer::DontSave;
    EXPECT_TRUE(close(m_controller->documents().front())) << "and it can be asked again";
}

TEST_F(DocumentClosingTest, ClosingDuringASaveWaitsForIt) {
    const auto document = openGated("a.txt");
    m_controller->saveDocument(document);
    const auto closed = closing(document);
    const auto closedAgain = closing(document);
    EXPECT_EQ(closedAgain.succeeded, false) << "it will be closed already";
    EXPECT_FALSE(closed.succeeded.has_value());
    m_gate->release();
    EXPECT_TRUE(closed.waitFor());
    EXPECT_EQ(seen(document), "closed a.txt | text+ | saved");

    const auto changed = openGated("b.txt");
    m_controller->saveDocument(changed);
    const auto closedChanged = closing(changed);
    edit(changed);
    m_gate->release();
    EXPECT_FALSE(closedChanged.waitFor());
    EXPECT_EQ(seen(changed), "ask b.txt | text+ | edited") << "the save did not hold the last change";

    changed->setFileURL(url("gone/c.txt"));
    m_controller->saveDocument(changed);
    const auto closedFailing = closing(changed);
    m_gate->release();
    EXPECT_FALSE(closedFailing.waitFor());
    EXPECT_EQ(m_controller->documents().size(), 1u);
}

TEST_F(DocumentClosingTest, QuittingAsksOnceAboutAllUnsavedChanges) {
    QSignalSpy added(m_controller.get(), &DocumentController::documentAdded);
    QSignalSpy removed(m_controller.get(), &DocumentController::documentRemoved);
    QSignalSpy current(m_controller.get(), &DocumentController::currentDocumentChanged);
    open(makeFile("a.txt"));
    const auto second = openEdited("b.txt");
    EXPECT_FALSE(closeAll());
    EXPECT_EQ(m_presenter.takeCalls(), "forward b.txt; ask b.txt") << "with one, the ordinary question";

    edit(m_controller->newDocument());
    m_presenter.takeCalls();
    m_presenter.answer = Answer::Save;
    EXPECT_FALSE(closeAll());
    EXPECT_EQ(m_presenter.takeCalls(), "ask b.txt,Untitled; forward Untitled; choose Untitled.txt");
    EXPECT_EQ(contentOf("b.txt"), "text+");
    EXPECT_EQ(m_controller->documents().size(), 3u) << "all stay when one has no place";
    edit(second);
    m_presenter.location = path("d.txt");
    EXPECT_TRUE(closeAll());
    EXPECT_EQ(m_presenter.takeCalls(), "ask b.txt,Untitled; forward Untitled; choose Untitled.txt; closed a.txt; "
                                       "closed b.txt; closed d.txt");
    EXPECT_EQ(contentOf("b.txt") + ' ' + contentOf("d.txt"), "text++ +");
    EXPECT_TRUE(added.size() == 3 && removed.size() == 3 && current.size() == 4);

    // What is checked is saved, and the rest given up.
    for (const auto& [answer, contents] : {std::pair(Answer::Save, "text+text"), {Answer::DontSave, "texttext"}}) {
        for (const char* name : {"a.txt", "b.txt"})
            edit(open(makeFile(name)));
        m_presenter.uncheckedNames = QStringList{QStringLiteral("b.txt")};
        m_presenter.answer = answer;
        EXPECT_TRUE(closeAll());
        EXPECT_EQ(contentOf("a.txt") + contentOf("b.txt"), contents);
    }
}

TEST_F(DocumentClosingTest, QuittingDuringASaveWaitsAndAsksAboutLaterChanges) {
    const auto document = openGated("a.txt");
    m_controller->saveDocument(document);
    const auto quit = closingAll();
    const auto quitAgain = closingAll();
    EXPECT_FALSE(quitAgain.succeeded) << "it waits for the one that is under way";
    m_presenter.answer = Answer::Save;
    edit(document);
    m_gate->release();
    expectCalls("forward a.txt; ask a.txt");
    edit(document); // while quitting saves it
    m_gate->release(2);
    EXPECT_TRUE(quit.waitFor());
    EXPECT_TRUE(quitAgain.waitFor());
    EXPECT_EQ(seen(document), "forward a.txt; ask a.txt; closed a.txt | text+++ | saved");
}

TEST_F(DocumentClosingTest, AFailedSaveOrANewDocumentStopsQuitting) {
    openEdited("a.txt");
    const auto failing = openEdited("b.txt");
    failing->failure = QStringLiteral("No.");
    m_presenter.answer = Answer::Save;
    EXPECT_FALSE(closeAll());
    EXPECT_EQ(seen(failing), "ask a.txt,b.txt; “b.txt” couldn't be saved. No. | text | edited");
    EXPECT_EQ(m_controller->documents().size(), 2u);

    failing->failure.clear();
    const auto quit = closingAll();
    const auto late = open(makeFile("late.txt"));
    EXPECT_FALSE(quit.waitFor());
    EXPECT_EQ(m_controller->documents(), std::vector<std::shared_ptr<Document>>{late})
        << "who opens a file wants to see it";
}

TEST_F(DocumentClosingTest, ASessionsEndAsksNothingAndWaitsForWhatIsBeingSaved) {
    const auto document = openGated("a.txt");
    openEdited("b.txt");
    QSignalSpy ending(m_controller.get(), &DocumentController::sessionWillEnd);
    m_controller->saveDocument(document);
    const Outcome prepared([this](const auto& done) { m_controller->prepareForSessionEnd(done); });
    EXPECT_EQ(ending.count(), 1);
    EXPECT_FALSE(prepared.succeeded.has_value());
    m_gate->release();
    EXPECT_TRUE(prepared.waitFor());
    EXPECT_EQ(contentOf("a.txt") + contentOf("b.txt"), "text+text");
    EXPECT_EQ(m_controller->documents().size(), 2u);
    EXPECT_EQ(m_presenter.takeCalls(), "");
}

} // namespace
