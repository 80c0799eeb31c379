#pragma once

#include "DocumentController.h"

#include "DocumentPresenter.h"
#include "TextDocument.h"
#include "UserDefaults.h"

#include <QCoreApplication>
#include <QFileInfo>
#include <QTemporaryDir>

#include <functional>
#include <utility>

#include <gtest/gtest.h>

/// Answers as it was told beforehand and writes down what it was asked to do.
class RecordingPresenter : public DocumentPresenter {
public:
    void show(const std::shared_ptr<Document>& document) override { note("show", document); }
    void bringForward(const std::shared_ptr<Document>& document) override { note("forward", document); }
    void didClose(const std::shared_ptr<Document>& document) override { note("closed", document); }

    SaveAnswer askToSave(const std::shared_ptr<Document>& document) override {
        note("ask", document);
        runWhileAsking(document);
        return answer;
    }

    SaveAllAnswer askToSaveAll(const std::vector<std::shared_ptr<Document>>& documents) override {
        QStringList names;
        SaveAllAnswer all{answer, {}};
        for (const auto& document : documents) {
            names.append(document->displayName());
            if (!uncheckedNames.contains(names.back()))
                all.toSave.push_back(document);
        }
        m_calls.append(QStringLiteral("ask ") + names.join(QLatin1Char(',')));
        runWhileAsking(documents.front());
        return all;
    }

    OverwriteAnswer askAboutChangedFile(const std::shared_ptr<Document>& document) override {
        note("changed", document);
        runWhileAsking(document);
        return changedFileAnswer;
    }

    OverwriteAnswer askAboutSignatures(const std::shared_ptr<Document>& document) override {
        note("signatures", document);
        return changedFileAnswer;
    }

    bool askToReload(const std::shared_ptr<Document>& document) override {
        note("reload", document);
        runWhileAsking(document);
        return reverts;
    }

    std::shared_ptr<void> showReading(const QString& name, const std::function<void()>& giveUp) override {
        m_calls.append(QStringLiteral("reading ") + name);
        giveUpReading = giveUp;
        return {this, [this, name](void*) { m_calls.append(QStringLiteral("no longer reading ") + name); }};
    }

    void presentNotice(const std::shared_ptr<Document>&, const QString& sentence) override { m_calls.append(sentence); }

    bool askToRevert(const std::shared_ptr<Document>& document) override {
        note("revert", document);
        return reverts;
    }

    std::optional<QString> chooseSaveLocation(const std::shared_ptr<Document>&, const QString& suggested) override {
        m_calls.append(QStringLiteral("choose ") + suggested);
        return std::exchange(location, std::nullopt);
    }

    void presentError(const QString& title, const QString& sentence) override {
        m_calls.append(title + QLatin1Char(' ') + sentence);
    }

    bool offerSaveAs(const std::shared_ptr<Document>& document, const QString& title,
                     const QString& sentence) override {
        m_calls.append(title + QLatin1Char(' ') + sentence + QStringLiteral(" [Save As]"));
        runWhileAsking(document);
        return std::exchange(takesSaveAs, false);
    }

    /// Everything since the last call.
    std::string takeCalls() { return std::exchange(m_calls, {}).join(QStringLiteral("; ")).toStdString(); }

    SaveAnswer answer = SaveAnswer::Cancel;
    QStringList uncheckedNames; ///< of the question about several
    OverwriteAnswer changedFileAnswer = OverwriteAnswer::Cancel;
    bool reverts = false;
    bool takesSaveAs = false;        ///< once
    std::optional<QString> location; ///< once
    std::function<void(const std::shared_ptr<Document>&)> whileAsking;
    std::function<void()> giveUpReading;

private:
    void runWhileAsking(const std::shared_ptr<Document>& document) const {
        if (whileAsking)
            whileAsking(document);
    }

    void note(const char* what, const std::shared_ptr<Document>& document) {
        m_calls.append(QLatin1String(what) + QLatin1Char(' ') + document->displayName());
    }

    QStringList m_calls;
};

/// A controller of text documents, with files of the test's own.
class ControllerFixture : public testing::Test {
protected:
    using Answer = DocumentPresenter::SaveAnswer;

    ControllerFixture() { FileReading::patience = std::chrono::minutes(1); }

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

    /// An edited document whose saves wait for `m_gate`.
    std::shared_ptr<TextDocument> openGated(const char* name) {
        auto document = edit(open(makeFile(name)));
        document->gate = m_gate;
        m_presenter.takeCalls();
        return document;
    }

    /// What has come of something that ends later.
    struct Outcome {
        std::optional<bool> succeeded;
        DocumentController::Completion completion() {
            return [this](bool success) {
                EXPECT_FALSE(succeeded.has_value()) << "told twice";
                succeeded = success;
            };
        }
        bool waitFor() {
            while (!succeeded)
                QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
            return *succeeded;
        }
    };

    bool save(const std::shared_ptr<Document>& document) {
        Outcome outcome;
        m_controller->saveDocument(document, outcome.completion());
        return outcome.waitFor();
    }

    bool saveAs(const std::shared_ptr<Document>& document, const char* name) {
        Outcome outcome;
        m_presenter.location = path(name);
        m_controller->saveDocumentAs(document, outcome.completion());
        return outcome.waitFor();
    }

    bool close(const std::shared_ptr<Document>& document) {
        Outcome outcome;
        m_controller->closeDocument(document, outcome.completion());
        return outcome.waitFor();
    }

    bool closeAll() {
        Outcome outcome;
        m_controller->closeAllDocuments(outcome.completion());
        return outcome.waitFor();
    }

    std::string recentNames() const {
        QStringList names;
        for (const QUrl& url : m_controller->recentDocumentURLs())
            names.append(url.fileName());
        return names.join(QLatin1Char(' ')).toStdString();
    }

    const QTemporaryDir m_folder;
    UserDefaults m_defaults{m_folder.filePath(QStringLiteral("settings.ini"))};
    const std::shared_ptr<QSemaphore> m_gate = std::make_shared<QSemaphore>();
    RecordingPresenter m_presenter;
    std::unique_ptr<DocumentController> m_controller =
        std::make_unique<DocumentController>([] { return std::make_shared<TextDocument>(); }, m_presenter, m_defaults);
    bool m_wasOpen = false;
    QString m_lastError;
};
