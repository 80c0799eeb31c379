#include "DocumentController.h"

#include "DocumentPresenter.h"
#include "TextDocument.h"
#include "UserDefaults.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QTemporaryDir>

#include <gtest/gtest.h>
#include <unistd.h>

namespace {

/// Answers as it was told beforehand and writes down what it was asked to do.
class RecordingPresenter : public DocumentPresenter {
public:
    void show(const std::shared_ptr<Document>& document) override { note("show", document); }
    void bringForward(const std::shared_ptr<Document>& document) override { note("forward", document); }
    void didClose(const std::shared_ptr<Document>& document) override { note("closed", document); }

    SaveAnswer askToSave(const std::shared_ptr<Document>& document) override {
        note("ask", document);
        if (whileAsking)
            whileAsking(document);
        return answer;
    }

    std::optional<QString> chooseSaveLocation(const std::shared_ptr<Document>&, const QString& suggested) override {
        m_calls.append(QStringLiteral("choose ") + suggested);
        return location;
    }

    void presentError(const QString& title, const QString& sentence) override {
        m_calls.append(title + QLatin1Char(' ') + sentence);
    }

    /// Everything since the last call.
    std::string takeCalls() { return std::exchange(m_calls, {}).join(QStringLiteral("; ")).toStdString(); }

    SaveAnswer answer = SaveAnswer::Cancel;
    std::optional<QString> location;
    std::function<void(const std::shared_ptr<Document>&)> whileAsking;

private:
    void note(const char* what, const std::shared_ptr<Document>& document) {
        m_calls.append(QLatin1String(what) + QLatin1Char(' ') + document->displayName());
    }

    QStringList m_calls;
};

class DocumentControllerTest : public testing::Test {
protected:
    QString path(const char* name) const { return m_folder.filePath(QString::fromUtf8(name)); }

    QUrl makeFile(const char* name, const QByteArray& bytes = "text") const {
        QFile file(path(name));
        EXPECT_TRUE(file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size());
        return QUrl::fromLocalFile(path(name));
    }

    QByteArray contentOf(const char* name) const {
        QFile file(path(name));
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("(missing)");
    }

    std::shared_ptr<TextDocument> open(const QUrl& url, bool display = true) {
        std::shared_ptr<Document> opened;
        m_controller.openDocument(url, display, [&](const auto& document, bool alreadyOpen, const QString& error) {
            EXPECT_EQ(document == nullptr, !error.isEmpty());
            opened = document;
            m_wasOpen = alreadyOpen;
            m_lastError = error;
        });
        return std::dynamic_pointer_cast<TextDocument>(opened);
    }

    std::shared_ptr<TextDocument> edit(const std::shared_ptr<Document>& document) {
        auto text = std::dynamic_pointer_cast<TextDocument>(document);
        text->append(QStringLiteral("+"));
        return text;
    }

    std::string recentNames() const {
        QStringList names;
        for (const QUrl& url : m_controller.recentDocumentURLs())
            names.append(url.fileName());
        return names.join(QLatin1Char(' ')).toStdString();
    }

    const QTemporaryDir m_folder;
    UserDefaults m_defaults{m_folder.filePath(QStringLiteral("settings.ini"))};
    RecordingPresenter m_presenter;
    DocumentController m_controller{[] { return std::make_shared<TextDocument>(); }, m_presenter, m_defaults};
    bool m_wasOpen = false;
    QString m_lastError;
};

TEST_F(DocumentControllerTest, AFileIsOpenedOnce) {
    const QUrl url = makeFile("a.txt");
    const QUrl hidden = makeFile("b.txt");
    const auto document = open(url);
    ASSERT_TRUE(document);
    EXPECT_EQ(document->text, QStringLiteral("text"));
    EXPECT_EQ(document->fileURL(), url);
    EXPECT_FALSE(document->isDocumentEdited() || document->undoManager()->canUndo());
    EXPECT_EQ(m_controller.currentDocument(), document);
    const auto other = open(hidden, false);
    EXPECT_EQ(m_controller.currentDocument(), document) << "what is not shown does not become current";
    EXPECT_EQ(m_presenter.takeCalls(), "show a.txt");

    ASSERT_EQ(symlink("a.txt", qPrintable(path("link.txt"))), 0);
    ASSERT_TRUE(QDir(m_folder.path()).mkpath(QStringLiteral("sub")));
    for (const char* name : {"a.txt", "link.txt", "sub/../a.txt"}) {
        m_controller.setCurrentDocument(other);
        EXPECT_EQ(open(QUrl::fromLocalFile(path(name))), document) << name;
        EXPECT_TRUE(m_wasOpen);
        EXPECT_EQ(m_controller.currentDocument(), document);
        EXPECT_EQ(m_presenter.takeCalls(), "forward a.txt");
    }
    EXPECT_EQ(open(url, false), document);
    EXPECT_EQ(m_presenter.takeCalls(), "");
    EXPECT_EQ(m_controller.documents(), (std::vector<std::shared_ptr<Document>>{document, other}));

    QFile::remove(path("b.txt"));
    EXPECT_EQ(open(hidden), other) << "its file is gone, but it is still that document";
}

TEST_F(DocumentControllerTest, WhatCannotBeOpenedIsToldWithNameAndReason) {
    ASSERT_TRUE(QDir(m_folder.path()).mkpath(QStringLiteral("sub")));
    const struct {
        QUrl url;
        const char* error;
    } rows[] = {
        {makeFile("report.txt", "damaged beyond repair"), "“report.txt” couldn't be opened. The file is damaged."},
        {QUrl::fromLocalFile(path("gone.txt")), "“gone.txt” couldn't be opened. The file doesn't exist."},
        {QUrl::fromLocalFile(path("sub/")), "“sub” couldn't be opened. It is a folder."},
        {QUrl(QStringLiteral("https://example.org/x.txt")),
         "“x.txt” couldn't be opened. Only files on this computer can be opened."},
    };
    for (const auto& row : rows) {
        EXPECT_FALSE(open(row.url));
        EXPECT_EQ(m_lastError.toStdString(), row.error);
        EXPECT_EQ(m_presenter.takeCalls(), row.error);
    }
    EXPECT_TRUE(m_controller.documents().empty());
    EXPECT_EQ(m_controller.currentDocument(), nullptr);
    EXPECT_EQ(recentNames(), "");
}

TEST_F(DocumentControllerTest, SavingWritesTheFileOrAsksForOne) {
    const auto document = edit(m_controller.newDocument());
    EXPECT_EQ(m_presenter.takeCalls(), "show Untitled");
    EXPECT_FALSE(m_controller.saveDocument(document));
    EXPECT_TRUE(document->isDocumentEdited());
    EXPECT_EQ(m_presenter.takeCalls(), "choose Untitled.txt");

    m_presenter.location = path("new.txt");
    EXPECT_TRUE(m_controller.saveDocument(document));
    EXPECT_EQ(contentOf("new.txt"), "+");
    EXPECT_EQ(document->displayName(), QStringLiteral("new.txt"));
    EXPECT_FALSE(document->isDocumentEdited());
    EXPECT_EQ(recentNames(), "new.txt");
    m_presenter.takeCalls();

    edit(document);
    EXPECT_TRUE(m_controller.saveDocument(document));
    EXPECT_EQ(contentOf("new.txt"), "++");
    EXPECT_EQ(m_presenter.takeCalls(), "") << "it has a file: nothing to ask";
    document->undoManager()->undo();
    EXPECT_TRUE(document->isDocumentEdited());

    document->failure = QStringLiteral("There isn't enough space on the disk.");
    EXPECT_FALSE(m_controller.saveDocument(document));
    EXPECT_TRUE(document->isDocumentEdited());
    EXPECT_EQ(contentOf("new.txt"), "++");
    EXPECT_EQ(m_presenter.takeCalls(), "“new.txt” couldn't be saved. There isn't enough space on the disk.");
}

TEST_F(DocumentControllerTest, SavingAsMovesOnToTheOtherFile) {
    const auto first = edit(open(makeFile("first.txt")));
    const auto second = open(makeFile("second.txt", "2"));
    ASSERT_EQ(symlink("second.txt", qPrintable(path("link.txt"))), 0);
    m_presenter.takeCalls();
    for (const char* taken : {"second.txt", "link.txt"}) {
        m_presenter.location = path(taken);
        EXPECT_FALSE(m_controller.saveDocumentAs(first)) << taken;
        EXPECT_NE(m_presenter.takeCalls().find("couldn't be saved. A file of this name is open in another window."),
                  std::string::npos);
    }
    m_presenter.location = path("no folder/x.txt");
    EXPECT_FALSE(m_controller.saveDocumentAs(first));
    EXPECT_EQ(m_presenter.takeCalls(),
              "choose first.txt; “x.txt” couldn't be saved. The folder “no folder” doesn't exist.");
    EXPECT_EQ(contentOf("second.txt"), "2");
    EXPECT_EQ(first->displayName(), QStringLiteral("first.txt"));
    EXPECT_TRUE(first->isDocumentEdited());

    m_presenter.location = path("third.txt");
    EXPECT_TRUE(m_controller.saveDocumentAs(first));
    EXPECT_EQ(contentOf("first.txt"), "text");
    EXPECT_EQ(contentOf("third.txt"), "text+");
    EXPECT_EQ(m_controller.documentForURL(QUrl::fromLocalFile(path("third.txt"))), first);
    EXPECT_EQ(m_controller.documentForURL(QUrl::fromLocalFile(path("first.txt"))), nullptr);

    m_presenter.location = path("third.txt");
    edit(first);
    EXPECT_TRUE(m_controller.saveDocumentAs(first)) << "its own file is not taken by another";
    EXPECT_EQ(contentOf("third.txt"), "text++");
}

TEST_F(DocumentControllerTest, ClosingAsksAboutUnsavedChanges) {
    using Answer = DocumentPresenter::SaveAnswer;
    const struct {
        bool edited;
        Answer answer;
        const char* failure;
        bool closes;
        const char* content;
        const char* calls;
    } rows[] = {
        {false, Answer::Cancel, "", true, "text", "closed a.txt"},
        {true, Answer::Cancel, "", false, "text", "ask a.txt"},
        {true, Answer::DontSave, "", true, "text", "ask a.txt; closed a.txt"},
        {true, Answer::Save, "", true, "text+", "ask a.txt; closed a.txt"},
        {true, Answer::Save, "No.", false, "text", "ask a.txt; “a.txt” couldn't be saved. No."},
    };
    for (const auto& row : rows) {
        auto document = open(makeFile("a.txt"));
        if (row.edited)
            edit(document);
        document->failure = QLatin1String(row.failure);
        m_presenter.answer = row.answer;
        m_presenter.takeCalls();
        EXPECT_EQ(m_controller.closeDocument(document), row.closes);
        EXPECT_EQ(m_presenter.takeCalls(), row.calls);
        EXPECT_EQ(contentOf("a.txt"), row.content);
        EXPECT_EQ(m_controller.documents().size(), row.closes ? 0u : 1u) << row.calls;
        EXPECT_EQ(m_controller.currentDocument(), row.closes ? nullptr : document);
        const std::weak_ptr<Document> watch = document;
        m_presenter.answer = Answer::DontSave;
        EXPECT_TRUE(m_controller.closeDocument(document));
        document.reset();
        EXPECT_TRUE(watch.expired()) << "nobody keeps a closed document";
    }
}

TEST_F(DocumentControllerTest, AQuestionIsAskedOnceAtATime) {
    const auto document = edit(m_controller.newDocument());
    m_presenter.answer = DocumentPresenter::SaveAnswer::Save;
    m_presenter.location = std::nullopt;
    m_presenter.takeCalls();
    m_presenter.whileAsking = [&](const auto& asked) { EXPECT_FALSE(m_controller.closeDocument(asked)); };
    EXPECT_FALSE(m_controller.closeDocument(document)) << "no place to save to was chosen";
    EXPECT_EQ(m_presenter.takeCalls(), "ask Untitled; choose Untitled.txt");
    m_presenter.whileAsking = nullptr;
    m_presenter.answer = DocumentPresenter::SaveAnswer::DontSave;
    EXPECT_TRUE(m_controller.closeDocument(m_controller.documents().front())) << "and it can be asked again";
}

TEST_F(DocumentControllerTest, QuittingStopsAtTheFirstThatStaysOpen) {
    QStringList signalled;
    const auto note = [&signalled](const char* what) {
        return [&signalled, what](const std::shared_ptr<Document>& document) {
            signalled.append(QLatin1String(what) + (document ? document->displayName() : QString()));
        };
    };
    QObject::connect(&m_controller, &DocumentController::documentAdded, note("+"));
    QObject::connect(&m_controller, &DocumentController::documentRemoved, note("-"));
    QObject::connect(&m_controller, &DocumentController::currentDocumentChanged, note("*"));
    open(makeFile("a.txt"));
    edit(open(makeFile("b.txt")));
    open(makeFile("c.txt"));
    m_presenter.takeCalls();
    EXPECT_FALSE(m_controller.closeAllDocuments());
    EXPECT_EQ(m_presenter.takeCalls(), "closed a.txt; forward b.txt; ask b.txt");
    m_presenter.answer = DocumentPresenter::SaveAnswer::Save;
    EXPECT_TRUE(m_controller.closeAllDocuments());
    EXPECT_EQ(m_presenter.takeCalls(), "forward b.txt; ask b.txt; closed b.txt; closed c.txt");
    EXPECT_EQ(contentOf("b.txt"), "text+");
    EXPECT_TRUE(m_controller.closeAllDocuments());
    EXPECT_EQ(signalled.join(QLatin1Char(' ')).toStdString(),
              "+a.txt *a.txt +b.txt *b.txt +c.txt *c.txt -a.txt *b.txt * -b.txt -c.txt");
}

TEST_F(DocumentControllerTest, RecentDocumentsAreNewestFirst) {
    int changes = 0;
    QObject::connect(&m_controller, &DocumentController::recentDocumentsChanged, [&] { ++changes; });
    for (int i = 0; i < 12; ++i)
        m_controller.noteNewRecentDocumentURL(makeFile(qPrintable(QStringLiteral("%1").arg(i))));
    EXPECT_EQ(recentNames(), "11 10 9 8 7 6 5 4 3 2");
    ASSERT_EQ(symlink("5", qPrintable(path("link"))), 0);
    m_controller.noteNewRecentDocumentURL(QUrl::fromLocalFile(path("link")));
    EXPECT_EQ(recentNames(), "link 11 10 9 8 7 6 4 3 2") << "the same file is listed once";
    QFile::remove(path("9"));
    EXPECT_EQ(recentNames(), "link 11 10 8 7 6 4 3 2");
    open(QUrl::fromLocalFile(path("4")));
    EXPECT_EQ(recentNames(), "4 link 11 10 8 7 6 3 2");
    EXPECT_EQ(changes, 14);
    open(QUrl::fromLocalFile(path("4")));
    m_controller.noteNewRecentDocumentURL(QUrl(QStringLiteral("https://example.org/x")));
    EXPECT_EQ(changes, 14) << "nothing changed";

    ASSERT_TRUE(m_defaults.synchronize());
    UserDefaults reread(m_defaults.filePath());
    DocumentController later([] { return std::make_shared<TextDocument>(); }, m_presenter, reread);
    EXPECT_EQ(later.recentDocumentURLs(), m_controller.recentDocumentURLs());
    m_controller.clearRecentDocuments();
    m_controller.clearRecentDocuments();
    EXPECT_EQ(changes, 15);
    EXPECT_TRUE(m_controller.recentDocumentURLs().isEmpty());
}

} // namespace
