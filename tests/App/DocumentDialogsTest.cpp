#include "DocumentDialogs.h"

#include <QAbstractButton>
#include <QApplication>
#include <QFileDialog>
#include <QLineEdit>
#include <QListWidget>
#include <QMessageBox>
#include <QPointer>
#include <QPushButton>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>

#include <functional>
#include <optional>

#include <gtest/gtest.h>

using SaveAnswer = DocumentPresenter::SaveAnswer;

/// Does `answer` to the dialog that is about to be asked. A dialog that doesn't come up fails the test.
static void whenAsked(std::function<void(QDialog& dialog)> answer) {
    QTimer::singleShot(0, [answer = std::move(answer)] {
        auto* dialog = qobject_cast<QDialog*>(QApplication::activeModalWidget());
        ASSERT_NE(dialog, nullptr);
        const QPointer<QDialog> left(dialog);
        answer(*dialog);
        if (left && left->isVisible())
            left->reject();
    });
}

static void press(QDialog& dialog, const QString& buttonText) {
    for (QAbstractButton* button : dialog.findChildren<QAbstractButton*>()) {
        if (button->text().remove(QLatin1Char('&')) == buttonText) {
            QTest::mouseClick(button, Qt::LeftButton);
            return;
        }
    }
    ADD_FAILURE() << "There is no button " << buttonText.toStdString();
}

TEST(DocumentDialogs, theSaveQuestionHasThreeAnswers) {
    DocumentDialogs dialogs;
    const struct {
        std::function<void(QDialog&)> reply;
        SaveAnswer answer;
    } cases[] = {
        {[](QDialog& dialog) { press(dialog, QStringLiteral("Save")); }, SaveAnswer::Save},
        {[](QDialog& dialog) { press(dialog, QStringLiteral("Don't Save")); }, SaveAnswer::DontSave},
        {[](QDialog& dialog) { press(dialog, QStringLiteral("Cancel")); }, SaveAnswer::Cancel},
        {[](QDialog& dialog) { QTest::keyClick(&dialog, Qt::Key_Escape); }, SaveAnswer::Cancel},
        {[](QDialog& dialog) { QTest::keyClick(&dialog, Qt::Key_Return); }, SaveAnswer::Save},
        {[](QDialog& dialog) { dialog.close(); }, SaveAnswer::Cancel},
    };
    for (const auto& each : cases) {
        whenAsked([&each](QDialog& dialog) {
            const auto& box = dynamic_cast<QMessageBox&>(dialog);
            EXPECT_TRUE(box.text().contains(QStringLiteral("“<i>a</i>.pdf”")));
            EXPECT_EQ(box.textFormat(), Qt::PlainText);
            each.reply(dialog);
        });
        EXPECT_EQ(dialogs.askToSave(nullptr, QStringLiteral("<i>a</i>.pdf")), each.answer);
    }
}

TEST(DocumentDialogs, theQuestionAboutSeveralDocumentsSavesWhatIsChecked) {
    DocumentDialogs dialogs;
    const std::vector<UnsavedDocumentsDialog::Entry> documents = {
        {QStringLiteral("a.pdf"), QStringLiteral("/one")},
        {QStringLiteral("a.pdf"), QStringLiteral("/two")},
        {QStringLiteral("Untitled"), QStringLiteral("not in a file yet")}};
    const auto toggle = [](QDialog& dialog, int row) {
        auto* list = dialog.findChild<QListWidget*>(QStringLiteral("unsavedList"));
        list->setCurrentRow(row);
        QTest::keyClick(list, Qt::Key_Space);
    };
    const auto save = [](QDialog& dialog) { return dialog.findChild<QPushButton*>(QStringLiteral("saveChecked")); };
    const struct {
        std::function<void(QDialog&)> reply;
        SaveAnswer answer;
        std::vector<bool> checked;
    } cases[] = {
        {[](QDialog& dialog) { press(dialog, QStringLiteral("Save")); }, SaveAnswer::Save, {true, true, true}},
        {[](QDialog& dialog) { QTest::keyClick(&dialog, Qt::Key_Return); }, SaveAnswer::Save, {true, true, true}},
        {[&](QDialog& dialog) {
             toggle(dialog, 1);
             press(dialog, QStringLiteral("Save Selected"));
         },
         SaveAnswer::Save,
         {true, false, true}},
        {[&](QDialog& dialog) {
             for (const int row : {0, 1, 2})
                 toggle(dialog, row);
             EXPECT_FALSE(save(dialog)->isEnabled());
             toggle(dialog, 2);
             EXPECT_TRUE(save(dialog)->isEnabled());
             press(dialog, QStringLiteral("Discard All"));
         },
         SaveAnswer::DontSave,
         {false, false, true}},
        {[](QDialog& dialog) { press(dialog, QStringLiteral("Cancel")); }, SaveAnswer::Cancel, {true, true, true}},
        {[](QDialog& dialog) { QTest::keyClick(&dialog, Qt::Key_Escape); }, SaveAnswer::Cancel, {true, true, true}},
    };
    for (const auto& each : cases) {
        whenAsked([&each](QDialog& dialog) {
            const auto* list = dialog.findChild<QListWidget*>(QStringLiteral("unsavedList"));
            ASSERT_EQ(list->count(), 3);
            EXPECT_NE(list->item(0)->text(), list->item(1)->text());
            each.reply(dialog);
        });
        const DocumentDialogs::SaveAllAnswer reply = dialogs.askToSaveAll(nullptr, documents);
        EXPECT_EQ(reply.answer, each.answer);
        EXPECT_EQ(reply.checked, each.checked);
    }
}

TEST(DocumentDialogs, questionsAboutAFileTakeTheAnswerThatLosesNothingAsUsual) {
    using OverwriteAnswer = DocumentPresenter::OverwriteAnswer;
    DocumentDialogs dialogs;
    const auto reply = [](const QString& button) {
        return [button](QDialog& dialog) {
            if (button.isEmpty())
                QTest::keyClick(&dialog, Qt::Key_Return);
            else
                press(dialog, button);
        };
    };
    for (const auto& [button, answer] : {std::pair{QStringLiteral("Overwrite"), OverwriteAnswer::Overwrite},
                                         std::pair{QStringLiteral("Save As…"), OverwriteAnswer::SaveAs},
                                         std::pair{QStringLiteral("Cancel"), OverwriteAnswer::Cancel},
                                         std::pair{QString(), OverwriteAnswer::SaveAs}}) {
        whenAsked(reply(button));
        EXPECT_EQ(dialogs.askAboutChangedFile(nullptr, QStringLiteral("a.pdf")), answer) << button.toStdString();
    }
    for (const auto& [button, answer] : {std::pair{QStringLiteral("Save Anyway"), OverwriteAnswer::Overwrite},
                                         std::pair{QString(), OverwriteAnswer::SaveAs}}) {
        whenAsked(reply(button));
        EXPECT_EQ(dialogs.askAboutSignatures(nullptr, QStringLiteral("a.pdf")), answer) << button.toStdString();
    }
    for (const auto& [button, answer] : {std::pair{QStringLiteral("Revert"), true},
                                         std::pair{QStringLiteral("Cancel"), false}, std::pair{QString(), false}}) {
        whenAsked(reply(button));
        EXPECT_EQ(dialogs.askToRevert(nullptr, QStringLiteral("a.pdf")), answer) << button.toStdString();
    }
    for (const auto& [button, answer] :
         {std::pair{QStringLiteral("Reload"), true}, std::pair{QStringLiteral("Keep My Changes"), false},
          std::pair{QString(), false}}) {
        whenAsked(reply(button));
        EXPECT_EQ(dialogs.askToReload(nullptr, QStringLiteral("a.pdf")), answer) << button.toStdString();
    }
    for (const auto& [button, answer] :
         {std::pair{QStringLiteral("Save As…"), true}, std::pair{QStringLiteral("OK"), false}}) {
        whenAsked(reply(button));
        EXPECT_EQ(
            dialogs.offerSaveAs(nullptr, QStringLiteral("It couldn't be saved."), QStringLiteral("The disk is full.")),
            answer);
    }
}

/// The question about the default viewer that is on the screen.
static QMessageBox* shownDefaultViewerQuestion() {
    for (QWidget* widget : QApplication::topLevelWidgets())
        if (widget->objectName() == QLatin1String("defaultViewerQuestion") && widget->isVisible())
            return qobject_cast<QMessageBox*>(widget);
    return nullptr;
}

TEST(DocumentDialogs, theDefaultViewerQuestionTakesItsFirstButtonAsYes) {
    DocumentDialogs dialogs;
    for (const auto& [button, answer] :
         {std::pair{QStringLiteral("Set as Default"), true}, std::pair{QStringLiteral("Not Now"), false}}) {
        std::optional<bool> given;
        dialogs.askToBecomeDefault(nullptr, [&given](bool accepted) { given = accepted; });
        QMessageBox* box = shownDefaultViewerQuestion();
        ASSERT_NE(box, nullptr);
        EXPECT_EQ(box->text(), QStringLiteral("Make Quillo Your Default PDF Viewer?"));
        press(*box, button);
        EXPECT_EQ(given, answer);
    }
}

TEST(DocumentDialogs, theOfferTakesNoKeyThatWasMeantForAnother) {
    DocumentDialogs dialogs;
    std::optional<bool> given;
    dialogs.offerToBecomeDefault([&given](bool accepted) { given = accepted; });
    QMessageBox* box = shownDefaultViewerQuestion();
    ASSERT_NE(box, nullptr);
    EXPECT_TRUE(box->testAttribute(Qt::WA_ShowWithoutActivating));
    EXPECT_EQ(QApplication::activeModalWidget(), nullptr);
    QTest::keyClick(box, Qt::Key_Return); // what ended a password a moment ago
    EXPECT_EQ(given, std::nullopt);
    EXPECT_TRUE(box->isVisible());
    press(*box, QStringLiteral("Set as Default"));
    EXPECT_EQ(given, true);
}

TEST(DocumentDialogs, aQuestionGoesWithItsWindowAsCancelled) {
    DocumentDialogs dialogs;
    QWidget* window = nullptr;
    const auto closed = [&window](const std::function<void()>& asks) {
        window = new QWidget;
        window->show();
        whenAsked([window](QDialog&) { delete window; });
        asks();
    };
    closed([&] { EXPECT_EQ(dialogs.askToSave(window, QStringLiteral("a.pdf")), SaveAnswer::Cancel); });
    closed([&] { EXPECT_EQ(dialogs.askPassword(window), std::nullopt); });
    closed([&] { EXPECT_EQ(dialogs.chooseSaveLocation(window, QStringLiteral("/tmp/a.pdf")), std::nullopt); });
    closed([&] {
        const auto reply = dialogs.askToSaveAll(window, {{QStringLiteral("a.pdf"), {}}, {QStringLiteral("b.pdf"), {}}});
        EXPECT_EQ(reply.answer, SaveAnswer::Cancel);
        EXPECT_EQ(reply.checked.size(), 2U);
    });
}

TEST(DocumentDialogs, thePasswordPromptGivesWhatWasTypedOrNothing) {
    DocumentDialogs dialogs;
    whenAsked([](QDialog& dialog) {
        auto* field = dialog.findChild<QLineEdit*>();
        ASSERT_NE(field, nullptr);
        EXPECT_EQ(field->echoMode(), QLineEdit::Password);
        QTest::keyClicks(field, QStringLiteral("pass word"));
        press(dialog, QStringLiteral("Unlock"));
    });
    EXPECT_EQ(dialogs.askPassword(nullptr), QStringLiteral("pass word"));

    whenAsked([](QDialog& dialog) { press(dialog, QStringLiteral("Unlock")); });
    EXPECT_EQ(dialogs.askPassword(nullptr), QString()) << "An empty password is one like any other.";

    whenAsked([](QDialog& dialog) { press(dialog, QStringLiteral("Cancel")); });
    EXPECT_EQ(dialogs.askPassword(nullptr), std::nullopt);
}

TEST(DocumentDialogs, theSavePanelStartsAtTheSuggestionAndAddsTheExtension) {
    const QTemporaryDir folder;
    DocumentDialogs dialogs;
    whenAsked([](QDialog& dialog) {
        auto& panel = dynamic_cast<QFileDialog&>(dialog);
        EXPECT_EQ(panel.acceptMode(), QFileDialog::AcceptSave);
        auto* field = panel.findChild<QLineEdit*>();
        ASSERT_NE(field, nullptr);
        EXPECT_EQ(field->text(), QStringLiteral("paper.pdf"));
        field->setText(QStringLiteral("copy"));
        QMetaObject::invokeMethod(&panel, "accept");
    });
    EXPECT_EQ(dialogs.chooseSaveLocation(nullptr, folder.filePath(QStringLiteral("paper.pdf"))),
              folder.filePath(QStringLiteral("copy.pdf")));

    // A name without its extension stands for the file that is there; refusing leads back to the panel.
    QFile file(folder.filePath(QStringLiteral("copy.pdf")));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    for (const bool replaces : {true, false}) {
        whenAsked([replaces](QDialog& dialog) {
            whenAsked([replaces](QDialog& question) {
                EXPECT_EQ(dynamic_cast<QMessageBox&>(question).text(),
                          QStringLiteral("“copy.pdf” already exists. Do you want to replace it?"));
                if (!replaces)
                    whenAsked([](QDialog& panel) { panel.reject(); });
                press(question, replaces ? QStringLiteral("Replace") : QStringLiteral("Cancel"));
            });
            dialog.findChild<QLineEdit*>()->setText(QStringLiteral("copy"));
            QMetaObject::invokeMethod(&dialog, "accept");
        });
        const auto chosen = dialogs.chooseSaveLocation(nullptr, folder.filePath(QStringLiteral("paper.pdf")));
        EXPECT_EQ(chosen, replaces ? std::optional(file.fileName()) : std::nullopt);
    }
}
