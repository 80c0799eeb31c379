#pragma once

#include "DocumentController.h"

#include "DocumentPresenter.h"
#include "FolderTest.h"
#include "TextDocument.h"
#include "UserDefaults.h"

#include <QCoreApplication>
#include <QTest>

#include <functional>
#include <utility>

/// Answers as it was told beforehand and writes down what it was asked to do.
class RecordingPresenter : public DocumentPresenter {
public:
    using Asked = std::shared_ptr<Document>;

    void show(const Asked& document) override { note("show", document); }
    void bringForward(const Asked& document) override { note("forward", document); }
    void didClose(const Asked& document) override { note("closed", document); }
    SaveAnswer askToSave(const Asked& document) override { return ask("ask", document, answer); }
    OverwriteAnswer askAboutChangedFile(const Asked& document) override {
        return ask("changed", document, changedFileAnswer);
    }
    OverwriteAnswer askAboutSignatures(const Asked& document) override {
        return ask("signatures", document, changedFileAnswer);
    }
    bool askToReload(const Asked& document) override { return ask("reload", document, reverts); }
    bool askToRevert(const Asked& document) override { return ask("revert", document, reverts); }

    SaveAllAnswer askToSaveAll(const std::vector<Asked>& documents) override {
        QStringList names;
        SaveAllAnswer all{answer, {}};
        for (const auto& document : documents) {
            names.append(document->displayName());
            if (!uncheckedNames.contains(names.back()))
                all.toSave.push_back(document);
        }
        m_calls.append(QStringLiteral("ask ") + names.join(u','));
        return all;
    }

    std::shared_ptr<void> showReading(const QString& name, const std::function<void()>& giveUp) override {
        m_calls.append(QStringLiteral("reading ") + name);
        giveUpReading = giveUp;
        return {this, [this, name](void*) { m_calls.append(QStringLiteral("no longer reading ") + name); }};
    }

    void presentNotice(const Asked&, const QString& sentence) override { m_calls.append(sentence); }
    void presentError(const QString& title, const QString& sentence) override {
        m_calls.append(title + u' ' + sentence);
    }
    bool offerSaveAs(const Asked&, const QString& title, const QString& sentence) override {
        m_calls.append(title + u' ' + sentence + QStringLiteral(" [Save As]"));
        return std::exchange(takesSaveAs, false);
    }
    std::optional<QString> chooseSaveLocation(const Asked&, const QString& suggested) override {
        m_calls.append(QStringLiteral("choose ") + suggested);
        return std::exchange(location, std::nullopt);
    }

    /// Everything since the last call.
    std::string takeCalls() { return std::exchange(m_calls, {}).join(QStringLiteral("; ")).toStdString(); }

    SaveAnswer answer = SaveAnswer::Cancel;
    QStringList uncheckedNames; ///< of the question about several
    OverwriteAnswer changedFileAnswer = OverwriteAnswer::Cancel;
    bool reverts = false;
    bool takesSaveAs = false;        ///< once
    std::optional<QString> location; ///< once
    std::function<void(const Asked&)> whileAsking;
    std::function<void()> giveUpReading;

private:
    void note(const char* what, const Asked& document) {
        m_calls.append(QLatin1String(what) + u' ' + document->displayName());
    }

    template <typename Answer>
    Answer ask(const char* what, const Asked& document, const Answer& given) {
        note(what, document);
        if (whileAsking)
            whileAsking(document);
        return given;
    }

    QStringList m_calls;
};

/// A controller of text documents, with files of the test's own.
class ControllerFixture : public FolderTest {
protected:
    using Answer = DocumentPresenter::SaveAnswer;

    ControllerFixture() { FileReading::patience = std::chrono::minutes(1); }

    std::shared_ptr<TextDocument> open(const QUrl& url, bool display = true) {
        std::shared_ptr<Document> opened;
        m_controller->openDocument(url, display, [&](const auto& document, bool alreadyOpen, const QString& error) {
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
        QCoreApplication::processEvents(); // a step of its own
        return text;
    }

    /// With no calls to the presenter that anybody would hear of.
    std::shared_ptr<TextDocument> openEdited(const char* name) {
        auto document = edit(open(makeFile(name)));
        m_presenter.takeCalls();
        return document;
    }

    /// Its saves wait for `m_gate`.
    std::shared_ptr<TextDocument> openGated(const char* name) {
        auto document = openEdited(name);
        document->gate = m_gate;
        return document;
    }

    /// What has come of something that ends later.
    struct Outcome {
        explicit Outcome(const std::function<void(const DocumentController::Completion&)>& begin) {
            begin([this](bool success) {
                EXPECT_FALSE(succeeded.has_value()) << "told twice";
                succeeded = success;
            });
        }
        Outcome(const Outcome&) = delete;
        bool waitFor() const {
            while (!succeeded)
                QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
            return *succeeded;
        }
        std::optional<bool> succeeded;
    };
    Outcome saving(const std::shared_ptr<Document>& document) {
        return Outcome([&](const auto& done) { m_controller->saveDocument(document, done); });
    }
    Outcome savingAs(const std::shared_ptr<Document>& document, const char* name) {
        m_presenter.location = path(name);
        return Outcome([&](const auto& done) { m_controller->saveDocumentAs(document, done); });
    }
    Outcome closing(const std::shared_ptr<Document>& document) {
        return Outcome([&](const auto& done) { m_controller->closeDocument(document, done); });
    }
    Outcome closingAll() {
        return Outcome([&](const auto& done) { m_controller->closeAllDocuments(done); });
    }
    bool save(const std::shared_ptr<Document>& document) { return saving(document).waitFor(); }
    bool saveAs(const auto& document, const char* name) { return savingAs(document, name).waitFor(); }
    bool close(const std::shared_ptr<Document>& document) { return closing(document).waitFor(); }
    bool closeAll() { return closingAll().waitFor(); }

    /// Waits until the presenter has been told that.
    void expectCalls(const std::string& expected) {
        std::string calls;
        const auto came = [&] {
            const std::string more = m_presenter.takeCalls();
            calls += (calls.empty() || more.empty() ? "" : "; ") + more;
            return calls.size() >= expected.size();
        };
        EXPECT_TRUE(QTest::qWaitFor(came, 30'000) && calls == expected) << calls;
    }

    /// What the presenter was told since the last look, what the document's file holds, and whether anything is
    /// unsaved.
    std::string seen(const std::shared_ptr<Document>& document) {
        return m_presenter.takeCalls() + " | " + contentOf(document->displayName()).toStdString() +
               (document->isDocumentEdited() ? " | edited" : " | saved");
    }

    std::string recentNames() const {
        QStringList names;
        for (const QUrl& url : m_controller->recentDocumentURLs())
            names.append(url.fileName());
        return names.join(QLatin1Char(' ')).toStdString();
    }

    UserDefaults m_defaults{path("settings.ini")};
    const std::shared_ptr<QSemaphore> m_gate = std::make_shared<QSemaphore>();
    RecordingPresenter m_presenter;
    std::unique_ptr<DocumentController> m_controller =
        std::make_unique<DocumentController>([] { return std::make_shared<TextDocument>(); }, m_presenter, m_defaults);
    bool m_wasOpen = false;
    QString m_lastError;
};
