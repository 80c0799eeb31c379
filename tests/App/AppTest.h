#pragma once

#include "ContentView.h"
#include "DocumentTabBar.h"
#include "FileReading.h"
#include "PDFDocument.h"
#include "PDFEditorDocument.h"
#include "PDFPage.h"
#include "QuilloApp.h"
#include "RecoveryStore.h"
#include "TestPdf.h"
#include "UndoManager.h"
#include "WelcomeWindowController.h"

#include <QDir>
#include <QMenu>
#include <QMenuBar>
#include <QTemporaryDir>
#include <QTest>

#include <algorithm>
#include <deque>
#include <stdexcept>

#include <gtest/gtest.h>

/// Answers the program's questions as the test says, and notes what was asked and told.
class ScriptedDialogs : public DocumentDialogs {
public:
    using SaveAnswer = DocumentPresenter::SaveAnswer;

    SaveAnswer askToSave(QWidget*, const QString& documentName) override {
        askedToSave.append(documentName);
        if (saveAnswers.empty()) {
            ADD_FAILURE() << "Nobody expected a question about " << documentName.toStdString();
            return SaveAnswer::Cancel;
        }
        const SaveAnswer answer = saveAnswers.front();
        saveAnswers.pop_front();
        return answer;
    }

    SaveAllAnswer askToSaveAll(QWidget*, const std::vector<UnsavedDocumentsDialog::Entry>& documents) override {
        QStringList names;
        SaveAllAnswer reply{SaveAnswer::Cancel, {}};
        for (const auto& entry : documents) {
            names.append(entry.name);
            reply.checked.push_back(!unchecked.contains(entry.name));
        }
        reply.answer = askToSave(nullptr, names.join(u','));
        return reply;
    }

    DocumentPresenter::OverwriteAnswer askAboutChangedFile(QWidget*, const QString& documentName) override {
        askedAboutChange.append(documentName);
        return changedFileAnswer;
    }

    DocumentPresenter::OverwriteAnswer askAboutSignatures(QWidget*, const QString& documentName) override {
        askedAboutSignature.append(documentName);
        return changedFileAnswer;
    }

    bool askToReload(QWidget*, const QString&) override { return reverts; }
    bool askToRevert(QWidget*, const QString&) override { return reverts; }

    bool offerSaveAs(QWidget*, const QString& title, const QString& sentence) override {
        errors.append(title + QStringLiteral(" ") + sentence);
        return false;
    }

    std::optional<QString> chooseSaveLocation(QWidget*, const QString& suggestedPath) override {
        suggestedPaths.append(suggestedPath);
        return saveLocation;
    }

    std::optional<QString> askPassword(QWidget*) override { return std::nullopt; }
    void askToBecomeDefault(QWidget*, Answered) override {}
    void offerToBecomeDefault(Answered) override {}

    QDialog* presentPrinting(QWidget*, const QStringList& documentNames, Answered answered) override {
        printing = documentNames;
        quitsNow = std::move(answered);
        return nullptr;
    }

    void presentMessage(QWidget*, const QString&, const QString&) override {}
    void presentError(QWidget*, const QString& title, const QString& sentence) override {
        errors.append(title + QStringLiteral(" ") + sentence);
    }

    std::deque<SaveAnswer> saveAnswers;
    QStringList unchecked; ///< names in the question about several documents
    DocumentPresenter::OverwriteAnswer changedFileAnswer = DocumentPresenter::OverwriteAnswer::Cancel;
    QStringList askedAboutChange;
    QStringList askedAboutSignature;
    bool reverts = false;
    QStringList printing; ///< what quitting waited for
    Answered quitsNow;
    std::optional<QString> saveLocation;
    QStringList askedToSave;
    QStringList suggestedPaths;
    QStringList errors;
};

/// The whole program with scripted answers, launched by the test.
class AppTest : public testing::Test {
protected:
    void SetUp() override {
        FileReading::patience = std::chrono::minutes(1);
        auto dialogs = std::make_unique<ScriptedDialogs>();
        m_dialogs = dialogs.get();
        m_app = std::make_unique<QuilloApp>(std::move(dialogs));
    }

    void TearDown() override {
        m_app.reset();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        // What was open and unsaved would be offered to the next test.
        QDir(RecoveryStore::standardFolder()).removeRecursively();
    }

    void launch(const QList<QUrl>& files = {}) {
        m_app->launch(files);
        settle();
    }

    /// Lets everything happen that waits for the next turns of the event loop, and for what is being saved or imported.
    void settle() {
        for (int turn = 0; turn < 5; ++turn) {
            QCoreApplication::processEvents();
            QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
            if (isSaving() || m_app->importer().isConverting()) {
                QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
                turn = 0;
            }
        }
    }

    bool isSaving() {
        const auto& documents = m_app->controller().documents();
        return std::any_of(documents.begin(), documents.end(),
                           [this](const auto& each) { return m_app->controller().isSaving(*each); });
    }

    QUrl file(const QString& name, const TestPdf& pdf = {}) { return pdf.write(m_folder.path(), name); }

    void open(const QUrl& url) {
        m_app->delegate().openFiles({url});
        settle();
    }

    std::shared_ptr<PDFEditorDocument> document(std::size_t index) {
        return std::dynamic_pointer_cast<PDFEditorDocument>(m_app->controller().documents().at(index));
    }

    /// An edit that can be undone.
    void edit(PDFEditorDocument& document) {
        const auto pdf = document.pdfDocument();
        const auto page = pdf->removePage(0);
        document.undoManager()->registerUndo(&document, [&document, pdf, page] {
            pdf->insert(page, 0);
            Q_EMIT document.objectWillChange();
        });
        Q_EMIT document.objectWillChange();
        settle();
    }

    DocumentWindow* window() { return m_app->presenter().documentWindow(); }

    QStringList tabNames() {
        QStringList names;
        for (const ContentView* view : window()->contentViews())
            names.append(view->document()->displayName());
        return names;
    }

    /// The command of the document window's menu with that name.
    QAction* command(const QString& name) {
        for (const QAction* title : window()->menuBar()->actions()) {
            for (QAction* entry : title->menu()->actions()) {
                if (entry->objectName() == name)
                    return entry;
            }
        }
        throw std::runtime_error("There is no command " + name.toStdString());
    }

    bool landingIsVisible() {
        const auto* welcome = m_app->delegate().welcomeWindowController();
        return welcome && welcome->window()->isVisible();
    }

    int visibleWindowCount() const {
        const QWidgetList windows = QApplication::topLevelWidgets();
        return static_cast<int>(
            std::count_if(windows.begin(), windows.end(), [](const QWidget* each) { return each->isVisible(); }));
    }

    QTemporaryDir m_folder;
    ScriptedDialogs* m_dialogs = nullptr;
    std::unique_ptr<QuilloApp> m_app;
};
