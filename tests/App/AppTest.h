#pragma once

#include "AnnotatingPDFView.h"
#include "ContentView.h"
#include "DocumentTabBar.h"
#include "FileReading.h"
#include "PDFDocument.h"
#include "PDFEditorDocument.h"
#include "PDFEditorWorkspaceView.h"
#include "PDFPage.h"
#include "PassingNotice.h"
#include "QuilloApp.h"
#include "RecoveryStore.h"
#include "TestPdf.h"
#include "UndoManager.h"
#include "WelcomeWindowController.h"

#include <QDir>
#include <QMenu>
#include <QMenuBar>
#include <QTabBar>
#include <QTemporaryDir>
#include <QTest>

#include <algorithm>
#include <stdexcept>

#include <gtest/gtest.h>

/// Answers the program's questions as the test says, and notes what was asked and told.
class ScriptedDialogs : public DocumentDialogs {
public:
    using SaveAnswer = DocumentPresenter::SaveAnswer;
    using OverwriteAnswer = DocumentPresenter::OverwriteAnswer;

    SaveAnswer askToSave(QWidget*, const QString& documentName) override {
        note("save", documentName);
        EXPECT_TRUE(saveAnswer) << "Nobody expected a question about " << documentName.toStdString();
        return std::exchange(saveAnswer, std::nullopt).value_or(SaveAnswer::Cancel);
    }

    SaveAllAnswer askToSaveAll(QWidget*, const std::vector<UnsavedDocumentsDialog::Entry>& documents) override {
        QStringList names;
        SaveAllAnswer reply{SaveAnswer::Cancel, {}};
        for (const auto& entry : documents) {
            names.append(entry.name);
            reply.checked.push_back(entry.name != unchecked);
        }
        reply.answer = askToSave(nullptr, names.join(u','));
        return reply;
    }

    OverwriteAnswer askAboutChangedFile(QWidget*, const QString& name) override { return overwrite("changed", name); }
    OverwriteAnswer askAboutSignatures(QWidget*, const QString& name) override { return overwrite("signatures", name); }
    bool askToReload(QWidget*, const QString&) override { return false; }
    bool askToRevert(QWidget*, const QString&) override { return true; }

    bool offerSaveAs(QWidget*, const QString& title, const QString& sentence) override {
        presentError(nullptr, title, sentence);
        return false;
    }

    std::optional<QString> chooseSaveLocation(QWidget*, const QString& suggestedPath) override {
        note("choose", suggestedPath);
        return saveLocation;
    }

    std::optional<QString> askPassword(QWidget*) override { return std::nullopt; }
    void askToBecomeDefault(QWidget*, Answered) override {}
    void offerToBecomeDefault(Answered) override {}

    QDialog* presentPrinting(QWidget*, const QStringList& documentNames, Answered answered) override {
        note("printing", documentNames.join(u','));
        quitsNow = std::move(answered);
        return nullptr;
    }

    void presentMessage(QWidget*, const QString&, const QString&) override {}
    void presentError(QWidget*, const QString& title, const QString& sentence) override {
        m_calls.append(title + u' ' + sentence);
    }

    /// Everything since the last call.
    std::string takeCalls() { return std::exchange(m_calls, {}).join(QStringLiteral("; ")).toStdString(); }

    std::optional<SaveAnswer> saveAnswer; ///< once
    QString unchecked;                    ///< a name in the question about several documents
    OverwriteAnswer changedFileAnswer = OverwriteAnswer::Cancel;
    Answered quitsNow; ///< what quitting waits for while something is printed
    std::optional<QString> saveLocation;

private:
    OverwriteAnswer overwrite(const char* question, const QString& name) {
        note(question, name);
        return changedFileAnswer;
    }

    void note(const char* what, const QString& name) { m_calls.append(QLatin1String(what) + u' ' + name); }

    QStringList m_calls;
};

/// The whole program with scripted answers, launched by the test.
class AppTest : public testing::Test {
protected:
    using SaveAnswer = ScriptedDialogs::SaveAnswer;

    void SetUp() override {
        FileReading::patience = std::chrono::minutes(1);
        auto dialogs = std::make_unique<ScriptedDialogs>();
        m_dialogs = dialogs.get();
        m_app = std::make_unique<QuilloApp>(std::move(dialogs));
    }

    void TearDown() override {
        end();
        // What was open and unsaved would be offered to the next test.
        QDir(RecoveryStore::standardFolder()).removeRecursively();
    }

    void end() {
        m_app.reset();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }

    void launch(const QList<QUrl>& files = {}) {
        m_app->launch(files);
        settle();
    }

    /// Lets everything happen that waits for the next turns of the event loop, and for what is being saved or imported.
    void settle() {
        const auto isSaving = [this](const auto& each) { return m_app->controller().isSaving(*each); };
        for (int turn = 0; turn < 5; ++turn) {
            QCoreApplication::processEvents();
            QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
            const auto& documents = m_app->controller().documents();
            if (std::any_of(documents.begin(), documents.end(), isSaving) || m_app->importer().isConverting()) {
                QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
                turn = 0;
            }
        }
    }

    QString path(const char* name) const { return m_folder.filePath(QString::fromUtf8(name)); }
    QUrl file(const char* name, const TestPdf& pdf = {}) { return pdf.write(m_folder.path(), QString::fromUtf8(name)); }

    QUrl write(const char* name, const QByteArray& bytes) {
        QFile file(path(name));
        EXPECT_TRUE(file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size());
        return QUrl::fromLocalFile(file.fileName());
    }

    int savedPageCount(const char* name) { return PDFDocument::fromFile(path(name))->pageCount(); }

    void open(const QUrl& url) {
        m_app->delegate().openFiles({url});
        settle();
    }

    std::shared_ptr<PDFEditorDocument> document(std::size_t index) {
        return std::dynamic_pointer_cast<PDFEditorDocument>(m_app->controller().documents().at(index));
    }

    /// Takes away the first page, which can be undone.
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
    QTabBar* tabs() { return window()->findChild<QTabBar*>(QStringLiteral("documentTabs")); }

    // Of the tab that is in front.
    PDFEditorWorkspaceView* workspace() { return window()->currentContentView()->workspace(); }
    AnnotatingPDFView* view() { return workspace()->pdfView(); }
    QString message() { return workspace()->notice().message(); }

    std::string tabNames() {
        QStringList names;
        for (const ContentView* view : window()->contentViews())
            names.append(view->document()->displayName());
        return names.join(QStringLiteral(", ")).toStdString();
    }

    /// The command of the document window's menu with that name.
    QAction* command(const char* name) {
        for (const QAction* title : window()->menuBar()->actions()) {
            for (QAction* entry : title->menu()->actions()) {
                if (entry->objectName() == QLatin1String(name))
                    return entry;
            }
        }
        throw std::runtime_error(std::string("There is no command ") + name);
    }

    void run(const char* name) {
        command(name)->trigger();
        settle();
    }

    bool landingIsVisible() {
        const auto* welcome = m_app->delegate().welcomeWindowController();
        return welcome && welcome->window()->isVisible();
    }

    static int visibleWindowCount() {
        QWidgetList windows = QApplication::topLevelWidgets();
        windows.removeIf([](const QWidget* each) { return !each->isVisible(); });
        return static_cast<int>(windows.size());
    }

    QTemporaryDir m_folder;
    ScriptedDialogs* m_dialogs = nullptr;
    std::unique_ptr<QuilloApp> m_app;
};
