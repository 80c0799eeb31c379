#include "ControllerFixture.h"

#include <unistd.h>

namespace {

class DocumentControllerTest : public ControllerFixture {};

TEST_F(DocumentControllerTest, AFileIsOpenedOnce) {
    const QUrl url = makeFile("a.txt");
    const QUrl hidden = makeFile("b.txt");
    const auto document = open(url);
    ASSERT_TRUE(document);
    EXPECT_FALSE(document->isDocumentEdited() || document->undoManager()->canUndo());
    const auto other = open(hidden, false);
    EXPECT_EQ(m_controller->currentDocument(), document) << "what is not shown does not become current";
    EXPECT_EQ(m_presenter.takeCalls(), "show a.txt");

    ASSERT_EQ(symlink("a.txt", qPrintable(path("link.txt"))), 0);
    makeFolder("sub");
    for (const char* name : {"a.txt", "link.txt", "sub/../a.txt"}) {
        m_controller->setCurrentDocument(other);
        EXPECT_EQ(open(QUrl::fromLocalFile(path(name))), document) << name;
        EXPECT_TRUE(m_wasOpen);
        EXPECT_EQ(m_controller->currentDocument(), document);
        EXPECT_EQ(m_presenter.takeCalls(), "forward a.txt");
    }
    QFile::remove(path("b.txt"));
    EXPECT_EQ(open(hidden, false), other) << "its file is gone, but it is still that document";
    EXPECT_EQ(m_presenter.takeCalls(), "");
}

TEST_F(DocumentControllerTest, WhatCannotBeOpenedIsToldWithNameAndReason) {
    makeFolder("sub");
    const std::pair<QUrl, std::string> rows[] = {
        {makeFile("report.txt", "damaged beyond repair"), "“report.txt” couldn't be opened. The file is damaged."},
        {url("gone.txt"), "“gone.txt” couldn't be opened. The file doesn't exist."},
        {url("sub/"), "“sub” couldn't be opened. It is a folder."},
        {QUrl(QStringLiteral("https://example.org/x.txt")),
         "“x.txt” couldn't be opened. Only files on this computer can be opened."},
    };
    for (const auto& [url, error] : rows) {
        EXPECT_FALSE(open(url));
        EXPECT_EQ(m_lastError.toStdString(), error);
        EXPECT_EQ(m_presenter.takeCalls(), error);
    }
    EXPECT_TRUE(m_controller->documents().empty());
    EXPECT_EQ(recentNames(), "");
}

TEST_F(DocumentControllerTest, RecentDocumentsAreNewestFirst) {
    const auto expectRecents = [this](const std::string& names) {
        EXPECT_TRUE(QTest::qWaitFor([&] { return recentNames() == names; })) << recentNames();
    };
    int changes = 0;
    QObject::connect(m_controller.get(), &DocumentController::recentDocumentsChanged, [&] { ++changes; });
    for (int i = 0; i < 12; ++i)
        m_controller->noteNewRecentDocumentURL(makeFile(qPrintable(QStringLiteral("%1").arg(i))));
    EXPECT_EQ(changes, 12);
    expectRecents("11 10 9 8 7 6 5 4 3 2");
    ASSERT_EQ(symlink("5", qPrintable(path("link"))), 0);
    m_controller->noteNewRecentDocumentURL(url("link"));
    expectRecents("link 11 10 9 8 7 6 4 3 2"); // the same file is listed once
    m_controller->lookUpRecentDocuments();
    QTest::qSleep(30); // it has been seen, but that hasn't been told
    QFile::remove(path("9"));
    m_controller->lookUpRecentDocuments();
    expectRecents("link 11 10 8 7 6 4 3 2 1");
    open(url("4"));
    EXPECT_EQ(recentNames(), "4 link 11 10 8 7 6 3 2 1");
    changes = 0;

    DocumentController later([] { return std::make_shared<TextDocument>(); }, m_presenter, m_defaults);
    EXPECT_TRUE(QTest::qWaitFor([&] { return later.recentDocumentURLs() == m_controller->recentDocumentURLs(); }));
    for (int i = 0; i < 2; ++i)
        m_controller->clearRecentDocuments();
    EXPECT_EQ(changes, 1);
    EXPECT_TRUE(m_controller->recentDocumentURLs().isEmpty());
}

/// Files whose reading waits for a gate of its own, and nobody waits for them.
class SlowReadingTest : public ControllerFixture {
protected:
    SlowReadingTest() {
        FileReading::patience = std::chrono::milliseconds(0);
        const auto factory = [this] {
            auto document = std::make_shared<TextDocument>();
            document->readingGate = m_nextGate;
            return document;
        };
        m_controller = std::make_unique<DocumentController>(factory, m_presenter, m_defaults);
    }

    using Gate = std::shared_ptr<QSemaphore>;

    Gate openSlowly(const char* name) {
        auto gate = std::make_shared<QSemaphore>();
        m_nextGate = gate;
        m_controller->openDocument(makeFile(name), true, [this](const auto& document, bool, const QString&) {
            m_ended.append(document ? "o" : "-");
        });
        m_nextGate.reset();
        return gate;
    }

    Gate m_nextGate;
    QByteArray m_ended;
};

TEST_F(SlowReadingTest, FilesComeUpInOrderAndNoneWaitsForASlowOneThatTakesNoFocus) {
    const Gate first = openSlowly("first.txt");
    const Gate second = openSlowly("second.txt");
    second->release();
    QTest::qWait(20);
    EXPECT_EQ(m_presenter.takeCalls(), "") << "the first may come yet";
    first->release();
    expectCalls("show first.txt; show second.txt");

    const Gate slow = openSlowly("slow.txt");
    const Gate quick = openSlowly("quick.txt");
    quick->release();
    expectCalls("reading slow.txt; show quick.txt");
    slow->release();
    expectCalls("no longer reading slow.txt; show slow.txt; forward quick.txt");
    EXPECT_EQ(m_controller->currentDocument()->displayName(), QStringLiteral("quick.txt"));
    EXPECT_EQ(m_ended, "oooo");
}

TEST_F(SlowReadingTest, WhatIsGivenUpOrClosedLeavesNothing) {
    const Gate gate = openSlowly("a.txt");
    expectCalls("reading a.txt");
    m_presenter.giveUpReading();
    EXPECT_EQ(m_presenter.takeCalls(), "no longer reading a.txt");
    gate->release();
    openSlowly("b.txt")->release();
    expectCalls("show b.txt");
    EXPECT_EQ(m_ended, "-o");
    ASSERT_EQ(m_controller->documents().size(), 1U);

    // Read again: a change meanwhile is kept, and a closed document takes nothing.
    const auto document = edit(m_controller->documents().front());
    document->readingGate = gate;
    m_presenter.reverts = true;
    m_controller->revertDocument(document);
    EXPECT_FALSE(m_controller->canRevertDocument(*document));
    edit(document);
    gate->release();
    expectCalls("revert b.txt; “b.txt” was changed while its file was being read, and is left as it is.");
    EXPECT_EQ(document->text, QStringLiteral("text++"));
    m_controller->revertDocument(document);
    m_presenter.answer = Answer::DontSave;
    EXPECT_TRUE(close(document));
    gate->release();
    QTest::qWait(20);
    EXPECT_EQ(m_presenter.takeCalls(), "revert b.txt; ask b.txt; closed b.txt");
    EXPECT_EQ(document->text, QStringLiteral("text++"));
}

} // namespace
